// A library to be loaded ahead of the C library, in which the n-th call of one kind fails: `VARLO_FAIL` is
// "KIND N once" or "KIND N on", with a KIND of alloc, open, read, write, seek, close or thread. The first
// failure is told by a byte to the descriptor in `VARLO_FAIL_TOLD`.
//
// A stream that is opened goes through the functions here, so that each of its buffers can fail, at fclose
// too. What goes to the standard streams never fails.
#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <iterator>
#include <pthread.h>
#include <unistd.h>

static char kind[8] = "";
static long from = 0;
static bool once = false;
static std::atomic<long> calls{0};

__attribute__((constructor)) static void readPlan()
{
    char mode[8] = "";
    const char* plan = getenv("VARLO_FAIL");
    once =
        plan != nullptr && sscanf(plan, "%7s %ld %7s", kind, &from, mode) == 3 && strcmp(mode, "once") == 0;
}

/// Whether this call of the kind `called` is to fail.
static bool fails(const char* called, int error)
{
    if (strcmp(kind, called) != 0)
        return false;
    const long n = ++calls;
    if (once ? n != from : n < from)
        return false;
    if (n == from)
        if (const char* told = getenv("VARLO_FAIL_TOLD"))
            (void)!pwrite(atoi(told), "!", 1, 0);
    errno = error;
    return true;
}

/// The function of this name that would have been called.
template <class Function>
static Function* next(const char* name, Function*)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}
#define NEXT(name) next(#name, name)

// The allocator's own names: looking the others up would allocate.
extern "C" void* __libc_malloc(size_t size);
extern "C" void* __libc_calloc(size_t count, size_t size);
extern "C" void* __libc_realloc(void* memory, size_t size);
extern "C" void* __libc_memalign(size_t alignment, size_t size);

extern "C" void* malloc(size_t size)
{
    return fails("alloc", ENOMEM) ? nullptr : __libc_malloc(size);
}
extern "C" void* calloc(size_t count, size_t size)
{
    return fails("alloc", ENOMEM) ? nullptr : __libc_calloc(count, size);
}
extern "C" void* realloc(void* memory, size_t size)
{
    return fails("alloc", ENOMEM) ? nullptr : __libc_realloc(memory, size);
}
extern "C" void* aligned_alloc(size_t alignment, size_t size)
{
    return fails("alloc", ENOMEM) ? nullptr : __libc_memalign(alignment, size);
}

extern "C" int open(const char* name, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return fails("open", EMFILE) ? -1 : NEXT(open)(name, flags, mode);
}
extern "C" ssize_t read(int file, void* bytes, size_t count)
{
    return fails("read", EIO) ? -1 : NEXT(read)(file, bytes, count);
}
extern "C" ssize_t write(int file, const void* bytes, size_t count)
{
    return file > STDERR_FILENO && fails("write", ENOSPC) ? -1 : NEXT(write)(file, bytes, count);
}
extern "C" off_t lseek(int file, off_t offset, int whence)
{
    return fails("seek", EIO) ? -1 : NEXT(lseek)(file, offset, whence);
}
extern "C" int close(int file)
{
    const int result = NEXT(close)(file);
    return fails("close", EIO) ? -1 : result;
}

static int fileOf(void* cookie)
{
    return static_cast<int>(reinterpret_cast<intptr_t>(cookie));
}

// The streams that were opened last, for fileno; the program has two or three open at a time.
static struct {
    FILE* stream;
    int file;
} opened[8];
static unsigned openings = 0;

extern "C" int fileno(FILE* stream) noexcept
{
    for (unsigned i = openings; i-- != 0 && openings - i <= std::size(opened);)
        if (opened[i % std::size(opened)].stream == stream)
            return opened[i % std::size(opened)].file;
    return NEXT(fileno)(stream);
}

extern "C" FILE* fopen(const char* name, const char* mode)
{
    const int access = strchr(mode, '+') != nullptr ? O_RDWR : *mode == 'r' ? O_RDONLY : O_WRONLY;
    const int flags = access | (*mode == 'r' ? 0 : O_CREAT | O_TRUNC);
    const int file = open(name, flags, 0666);
    if (file < 0)
        return nullptr;
    const cookie_io_functions_t functions = {
        .read = [](void* cookie, char* bytes, size_t count) { return read(fileOf(cookie), bytes, count); },
        .write = [](void* cookie, const char* bytes,
                    size_t count) { return write(fileOf(cookie), bytes, count); },
        .seek =
            [](void* cookie, off64_t* offset, int whence) {
                *offset = lseek(fileOf(cookie), *offset, whence);
                return *offset < 0 ? -1 : 0;
            },
        .close = [](void* cookie) { return close(fileOf(cookie)); },
    };
    FILE* stream = fopencookie(reinterpret_cast<void*>(static_cast<intptr_t>(file)), mode, functions);
    opened[openings++ % std::size(opened)] = {stream, file};
    return stream;
}

extern "C" int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*start)(void*),
                              void* argument) noexcept
{
    return fails("thread", EAGAIN) ? EAGAIN : NEXT(pthread_create)(thread, attributes, start, argument);
}
