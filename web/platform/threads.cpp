#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <emscripten/threading.h>
#include <pthread.h>
#include <unistd.h>

// Where threads share memory, it is the main thread that ends the program, and that writes what a thread
// writes: it serves one request after another while it waits for the threads. Emscripten makes the end such a
// request, which flushes standard output; where another thread has that locked, in a write that waits to be
// served, both wait for ever. So a thread only says that the program is to end. The main thread ends it from
// between two requests, and still serves what the end has to wait for. The linker puts these in the place of
// the C library's.

static constinit std::atomic<bool> isEnding = false;
static constinit std::atomic<int> status = 0; // of the program that is ending

extern "C" {
[[noreturn]] void __real_exit(int code);
[[noreturn]] void __wrap_exit(int code);
int __wrap_pthread_join(pthread_t thread, void** result);
int pthread_tryjoin_np(pthread_t thread, void** result);
}

void __wrap_exit(int code)
{
    if (emscripten_is_main_runtime_thread())
        __real_exit(code);
    status = code;
    isEnding = true;
    for (;;)
        sleep(1);
}

int __wrap_pthread_join(pthread_t thread, void** result)
{
    for (;;) {
        if (isEnding)
            exit(status);
        const int reason = pthread_tryjoin_np(thread, result);
        if (reason != EBUSY)
            return reason;
        emscripten_thread_sleep(1.0); // serves the threads
    }
}
