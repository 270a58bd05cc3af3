#pragma once

#include "vec.h"

#include <cstdint>
#include <vector>

/// A colour of bytes: red, green, blue from the lowest.
using Rgb = uint32_t;

inline Rgb packRgb(const Colour& c)
{
    const auto byte = [](float part) {
        return static_cast<Rgb>(std::lround(std::fmin(std::fmax(part, 0.0f), 1.0f) * 255.0f));
    };
    return byte(c.r) | byte(c.g) << 8 | byte(c.b) << 16;
}

/// Replaces each of `colours` by its place in a palette of at most `count` colours, which comes back. Colours
/// that are at most `count` stay exact.
std::vector<Colour> quantise(std::vector<Rgb>& colours, size_t count);
