#include "output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

// One output at a time: openOutput fills these, finishOutput and dropOutput give them back.
static constinit int file = -1;
static constinit int failure = 0;              // errno of the first write that failed
static constinit const char* wanted = nullptr; // null: standard output
static std::string temporary;                  // empty: written to directly
static constinit char buffer[1 << 16] = {};
static constinit size_t filled = 0;

constexpr size_t LONGEST_NUMBER = 32;

static bool fail(int error)
{
    fprintf(stderr, "varlo-import: %s: %s\n", wanted != nullptr ? wanted : "standard output",
            strerror(error));
    return false;
}

/// Leaves no half file behind when a user stops the program.
static void stopped(int signal)
{
    unlink(temporary.c_str());
    _exit(128 + signal);
}

bool openOutput(const char* path)
{
    wanted = path;
    failure = 0;
    filled = 0;
    temporary.clear();
    if (path == nullptr) {
        file = STDOUT_FILENO;
        return true;
    }

    struct stat there = {};
    const bool exists = stat(path, &there) == 0;
    if (exists && S_ISDIR(there.st_mode))
        return fail(EISDIR);
    if (exists && !S_ISREG(there.st_mode)) {
        file = open(path, O_WRONLY | O_CLOEXEC);
        return file >= 0 || fail(errno);
    }

    temporary = std::string(path) + ".XXXXXX";
    file = mkstemp(temporary.data());
    if (file < 0)
        return fail(errno);
    signal(SIGINT, stopped);
    signal(SIGTERM, stopped);
    const mode_t mask = umask(0);
    umask(mask);
    fchmod(file, exists ? there.st_mode & 0777 : 0666 & ~mask);
    return true;
}

static void flush()
{
    for (size_t done = 0; done < filled && failure == 0;) {
        const ssize_t n = write(file, buffer + done, filled - done);
        if (n >= 0)
            done += static_cast<size_t>(n);
        else if (errno != EINTR)
            failure = errno;
    }
    filled = 0;
}

bool finishOutput()
{
    flush();
    if (close(file) != 0 && failure == 0)
        failure = errno;
    if (failure == 0 && !temporary.empty() && rename(temporary.c_str(), wanted) != 0)
        failure = errno;
    if (failure == 0)
        return true;
    if (!temporary.empty())
        unlink(temporary.c_str());
    return fail(failure);
}

void put(std::string_view text)
{
    while (text.size() > sizeof buffer - filled) {
        const size_t part = sizeof buffer - filled;
        memcpy(buffer + filled, text.data(), part);
        filled += part;
        text.remove_prefix(part);
        flush();
    }
    memcpy(buffer + filled, text.data(), text.size());
    filled += text.size();
}

void put(double number)
{
    if (sizeof buffer - filled < LONGEST_NUMBER)
        flush();
    // Adding 0 turns -0 into 0. What overflows a float cannot come: the model would have been refused.
    const auto value = static_cast<float>(number) + 0.0f;
    filled = static_cast<size_t>(std::to_chars(buffer + filled, buffer + sizeof buffer, value).ptr - buffer);
}

void put(size_t number)
{
    put(std::string_view(std::to_string(number)));
}

void put(const Vec& v)
{
    put("<");
    put(v.x);
    put(" ");
    put(v.y);
    put(" ");
    put(v.z);
    put(">");
}

static double thousandths(float part)
{
    return std::round(std::fmin(std::fmax(static_cast<double>(part), 0.0), 1.0) * 1000.0) / 1000.0;
}

void put(const Colour& c)
{
    put(thousandths(c.r));
    put(" ");
    put(thousandths(c.g));
    put(" ");
    put(thousandths(c.b));
}

void putComment(std::string_view text)
{
    put("; ");
    for (const char c : text)
        put(static_cast<unsigned char>(c) < ' ' ? std::string_view(" ") : std::string_view(&c, 1));
    put("\n");
}
