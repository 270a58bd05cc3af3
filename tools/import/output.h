#pragma once

#include "vec.h"

#include <functional>
#include <string_view>

/// Begins the scene that is written, one at a time. `path` null stands for standard output. A file of that
/// name appears, or is replaced, by `finishOutput` and not before; a device or a pipe is written to as it is.
/// False, with a message, if it cannot be created.
bool openOutput(const char* path);

/// True when all was written. False, with a message, when any write failed: then no file is left behind.
bool finishOutput();

/// Calls `putPart` with the number of each part below `count`, on several threads. What a part appends comes
/// out behind that of all parts before it.
void putInOrder(size_t count, const std::function<void(size_t part)>& putPart);

// Each of these appends to the output. A failure is kept for `finishOutput`.

void put(std::string_view text);
inline void put(const char* text)
{
    put(std::string_view(text));
}
void put(size_t number);

/// The shortest decimal that reads back as the same float.
void put(double number);

/// The number rounded to that many digits behind the point, from 0 to 15, without zeros at its end.
void putRounded(double number, int decimals);

/// The same, and a vector `<x y z>` of such numbers, into `out`, which has LONGEST_NUMBER bytes for each; the
/// end of what it holds comes back.
constexpr size_t LONGEST_NUMBER = 40;
char* formatRounded(char* out, double number, int decimals);
char* formatVector(char* out, const Vec& v, int decimals);

/// Digits behind the point for points, and what sets them: a millionth of `extent` or up to ten times finer.
extern int pointDecimals;
void setExtent(double extent);

/// A point, as `<x y z>`.
void put(const Vec& v);

/// Red, green and blue without brackets, from 0 to 1, by thousandths.
void put(const Colour& c);

/// `text` as a comment of one line: what would end it becomes a blank.
void putComment(std::string_view text);

void putAll(const auto&... parts)
{
    (put(parts), ...);
}
