#pragma once

#include <cmath>

/// A point or a direction, in world coordinates.
struct Vec {
    double x, y, z;

    bool operator==(const Vec&) const = default;
};

/// An RGB colour; 1.0 is full intensity.
struct Color {
    double red, green, blue;
};

// Pictures are compared byte for byte, so every sum here runs x, y, z from left to right, and nothing is
// rearranged into a cheaper form that would round differently. Short functions in headers are static: the
// tree walk is compiled for several sets of instructions, and each keeps its own copy.

static inline Vec operator+(Vec a, Vec b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

static inline Vec operator-(Vec a, Vec b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

static inline Vec operator-(Vec a)
{
    return {-a.x, -a.y, -a.z};
}

static inline Vec operator*(double s, Vec a)
{
    return {s * a.x, s * a.y, s * a.z};
}

static inline double dot(Vec a, Vec b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

static inline Vec cross(Vec a, Vec b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

static inline double lengthOf(Vec a)
{
    return std::sqrt(dot(a, a));
}

/// Coordinate 0, 1 or 2 of a vector: x, y or z.
static inline double coordinate(Vec a, int axis)
{
    return axis == 0 ? a.x : axis == 1 ? a.y : a.z;
}

/// Makes `vec` unit in place and returns it. It divides each component; a reciprocal would round
/// differently. A zero vector becomes non-numbers.
static inline Vec* VecNorm(Vec* vec)
{
    const double length = lengthOf(*vec);
    vec->x /= length;
    vec->y /= length;
    vec->z /= length;
    return vec;
}

/// The unit vector along `a`; see VecNorm for its limits.
static inline Vec unit(Vec a)
{
    return *VecNorm(&a);
}

static inline Color operator+(Color a, Color b)
{
    return {a.red + b.red, a.green + b.green, a.blue + b.blue};
}

static inline Color operator*(double s, Color a)
{
    return {s * a.red, s * a.green, s * a.blue};
}

static inline Color operator/(Color a, double s)
{
    return {a.red / s, a.green / s, a.blue / s};
}
