#include "output.h"

#include "parallel.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

// One output at a time: openOutput fills these, finishOutput and dropOutput give them back.
static constinit int file = -1;
static constinit int failure = 0;              // errno of the first write that failed
static constinit const char* wanted = nullptr; // null: standard output
static std::string temporary;                  // empty: written to directly

// Each thread fills a buffer with the part that it puts, and writes when it is that part's turn.
static thread_local constinit char buffer[1 << 17] = {};
static thread_local constinit size_t filled = 0;
static thread_local constinit size_t ownPart = 0;
static constinit std::atomic<size_t> turn = 0;

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
    for (size_t part; (part = turn) != ownPart;)
        turn.wait(part);
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

void putInOrder(size_t count, const std::function<void(size_t)>& putPart)
{
    if (count == 1) // as most materials have
        return putPart(0);
    flush();
    forBlocks(count, [&](size_t part) {
        ownPart = part;
        putPart(part);
        flush();
        turn = part + 1;
        turn.notify_all();
    });
    ownPart = turn = 0;
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

char* formatRounded(char* out, double number, int decimals)
{
    constexpr double MOST = 9e15; // what a double holds to the last digit
    constexpr size_t MOST_DIGITS = 16;
    static constexpr double POWERS[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                        1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    const double scaled = std::fabs(number) * POWERS[decimals] + 0.5;
    if (!(scaled < MOST))
        return std::to_chars(out, out + LONGEST_NUMBER, static_cast<float>(number)).ptr;
    if (scaled < 1.0) {
        *out++ = '0';
        return out;
    }
    *out = '-';
    out += number < 0.0 ? 1 : 0; // no branch: nothing foretells a sign
    // Zeros ahead of the digits, for a point that stands further to the left. Both parts are moved as 16
    // bytes, whatever their length.
    char digits[MOST_DIGITS + LONGEST_NUMBER] = "0000000000000000";
    char* const first = digits + MOST_DIGITS;
    const char* end = std::to_chars(first, std::end(digits), static_cast<uint64_t>(scaled)).ptr;
    const char* const point = end - decimals;
    const char* const begin = std::min<const char*>(first, point - 1);
    memcpy(out, begin, MOST_DIGITS);
    out += point - begin;
    while (end > point && end[-1] == '0')
        --end;
    if (end == point)
        return out;
    *out = '.';
    memcpy(out + 1, point, MOST_DIGITS);
    return out + 1 + (end - point);
}

void putRounded(double number, int decimals)
{
    char text[LONGEST_NUMBER];
    put(std::string_view(text, formatRounded(text, number, decimals)));
}

constinit int pointDecimals = 6;

void setExtent(double extent)
{
    pointDecimals = std::clamp(6 - static_cast<int>(std::floor(std::log10(extent))), 0, 15);
}

char* formatVector(char* out, const Vec& v, int decimals)
{
    *out++ = '<';
    out = formatRounded(out, v.x, decimals);
    *out++ = ' ';
    out = formatRounded(out, v.y, decimals);
    *out++ = ' ';
    out = formatRounded(out, v.z, decimals);
    *out++ = '>';
    return out;
}

void put(const Vec& v)
{
    char text[3 * LONGEST_NUMBER];
    put(std::string_view(text, formatVector(text, v, pointDecimals)));
}

void put(const Colour& c)
{
    putRounded(static_cast<double>(c.r), 3);
    put(" ");
    putRounded(static_cast<double>(c.g), 3);
    put(" ");
    putRounded(static_cast<double>(c.b), 3);
}

void putComment(std::string_view text)
{
    put("; ");
    for (const char c : text)
        put(static_cast<unsigned char>(c) < ' ' ? std::string_view(" ") : std::string_view(&c, 1));
    put("\n");
}
