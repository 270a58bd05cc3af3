#include "parallel.h"

#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

constexpr size_t MOST_THREADS = 8; // more would only wait for their turn to write

struct Crew {
    const std::function<void(size_t)>& work;
    size_t count;
    std::atomic<size_t> next = 0;
};

static void* workOff(void* pointer)
{
    Crew& crew = *static_cast<Crew*>(pointer);
    for (size_t block; (block = crew.next++) < crew.count;)
        crew.work(block);
    return nullptr;
}

void forBlocks(size_t count, const std::function<void(size_t)>& work)
{
    Crew crew = {work, count};
    const size_t threads = std::min({count, MOST_THREADS, size_t{std::thread::hardware_concurrency()}});
    std::vector<pthread_t> others;
    pthread_t thread;
    while (others.size() + 1 < threads && pthread_create(&thread, nullptr, workOff, &crew) == 0)
        others.push_back(thread);
    workOff(&crew);
    for (const pthread_t other : others)
        pthread_join(other, nullptr);
}
