#include "core/fatal.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <unistd.h>

static constinit std::atomic_flag ending; // set by the first thread that meets a fatal condition

void fatal(const char* message, FILE* stream)
{
    while (ending.test_and_set())
        pause();
    fputs(message, stream);
    exit(EXIT_FAILURE);
}

void endForFile(const char* fileName, int reason, int status)
{
    fflush(stdout); // so that a terminal shows the reason below what was said of the file
    errno = reason;
    perror(fileName);
    exit(status);
}
