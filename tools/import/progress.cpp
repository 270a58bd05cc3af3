#include "progress.h"

#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <mutex>
#include <thread>

using Clock = std::chrono::steady_clock;
constexpr std::chrono::milliseconds PATIENCE(2000), STEP(250);

// The main thread sets the phase, the other one shows it.
static std::mutex lock;
static std::condition_variable_any ended;
static const char* current = nullptr;
static bool shown = false;
static std::jthread shower; // last, so that it ends before what it uses

static void wipe()
{
    if (shown)
        fputs("\r\033[K", stderr);
    shown = false;
}

static void show(const std::stop_token& stop)
{
    const Clock::time_point start = Clock::now();
    std::unique_lock hold(lock);
    for (auto wait = PATIENCE; !ended.wait_for(hold, stop, wait, [&] { return stop.stop_requested(); });
         wait = STEP) {
        const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - start).count();
        fprintf(stderr, "\r\033[Kvarlo-import: %s, %lld s", current, static_cast<long long>(seconds));
        shown = true;
    }
    wipe();
}

void showPhase(const char* phase)
{
    const std::lock_guard hold(lock);
    current = phase;
    if (!shower.joinable() && isatty(STDERR_FILENO) != 0)
        shower = std::jthread(show);
}

void pauseProgress()
{
    const std::lock_guard hold(lock);
    wipe();
}

void endProgress()
{
    if (!shower.joinable())
        return;
    shower.request_stop();
    shower.join();
}
