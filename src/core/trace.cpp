#include "core/trace.h"

#include "core/data.h"
#include "core/progress.h"
#include "core/settings.h"
#include "engine/ray.h"
#include "engine/sampler.h"
#include "picture/image.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <pthread.h>

void initMTBounds(int threads)
{
    const bool isKnown = setThreads(threads);
    threads = numThreads;
    const long height = myDisplay.height;
    if (height % threads != 0)
        puts(" Warning the height and the number of threads are incompatible.\n"
             " The number of threads must be a multiplier of the height.");
    for (long i = 0; i < threads; ++i)
        iBounds[i] = {.first = static_cast<int>(i * height / threads),
                      .end = static_cast<int>((i + 1) * height / threads)};
    if (isKnown)
        printf(" Running %d threads\n", threads);
}

void doTrace()
{
    puts(" Multi-threaded version of VARLO running.\n");
    initMTBounds(numThreads);
    openImage(myDisplay.outputName, myDisplay.width, myDisplay.height);
    showProgressInit();
    screenInit(); // the threads only read the camera

    static constexpr void* (*samplers[])(void*) = {scanNone, scanCorners, scanAdaptive};
    const clock_t start = clock();
    pthread_t threads[MAX_THREADS];
    for (int i = 0; i < numThreads; ++i) {
        void* band = reinterpret_cast<void*>(static_cast<intptr_t>(i));
        if (pthread_create(&threads[i], nullptr, samplers[iAntialias], band) != 0) {
            puts(" Thread creation failed!!\n");
            exit(EXIT_SUCCESS);
        }
    }
    for (int i = 0; i < numThreads; ++i)
        pthread_join(threads[i], nullptr);
    printf("\n\n Rendering time: %4.2f second(s)\n", static_cast<double>(clock() - start) / 1000000.0);

    closeImage();
    myObjectList = nullptr;
    freeList(&myLightList);
}
