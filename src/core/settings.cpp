#include "core/settings.h"

#include "core/data.h"
#include "core/surface.h"

#include <algorithm>
#include <cstdio>

bool setThreads(int threads)
{
    numThreads = threads;
    if (threads == 2 || threads == 4 || threads == 8)
        return true;
    puts(" Invalid number of threads: defaulting to 2 threads");
    numThreads = 2;
    return false;
}

void setStartValues()
{
    myObjectList = nullptr;
    myLightList = nullptr;
    nPrims = 0;
    forgetSurface();

    myViewPoint = {};
    myDisplay = {};
    myHaze = {};
    myBackGroundColor = {};
    iAntialias = AA_NONE;
    adapt_dist = 20;
    jitter = 0;
    iImageType = BMP;
    jpeg_quality = 0;
    bunching = 4;
    iPQSize = 128;
    numThreads = 2;
    std::fill(iBounds, iBounds + MAX_THREADS, Band{});
    use3ds = 0;
    inputFileName[0] = '\0';
    iCameraIndex = 0;
}
