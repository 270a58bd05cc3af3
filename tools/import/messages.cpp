#include "messages.h"

#include "progress.h"

#include <cstdarg>
#include <cstdio>

static constinit const char* subject = "";

void setMessageFile(const char* file)
{
    subject = file;
}

static void say(const char* format, va_list arguments)
{
    pauseProgress();
    fprintf(stderr, "varlo-import: %s: ", subject);
    vfprintf(stderr, format, arguments);
    fputc('\n', stderr);
}

void warn(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    say(format, arguments);
    va_end(arguments);
}

bool refuse(const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    say(format, arguments);
    va_end(arguments);
    return false;
}
