#pragma once

#include <assimp/color4.h>
#include <assimp/matrix4x4.h>
#include <assimp/types.h>
#include <assimp/vector3.h>

#include <algorithm>
#include <cmath>

// The library's own types, in doubles: it reads floats, and what is turned, moved and scaled between them
// and the output should not lose more than that. `a * b` is the dot product, `a ^ b` the cross product.
using Vec = aiVector3t<double>;
using Matrix = aiMatrix4x4t<double>;
using Colour = aiColor3D;

constexpr double PI = 3.14159265358979323846;

inline Vec widen(const aiVector3D& v)
{
    return {v.x, v.y, v.z};
}

inline bool isFinite(const Vec& v)
{
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

inline Vec least(const Vec& a, const Vec& b)
{
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z)};
}

inline Vec most(const Vec& a, const Vec& b)
{
    return {std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z)};
}

/// `v` with the length 1; the zero vector stays zero.
inline Vec unit(const Vec& v)
{
    const double length = v.Length();
    return length > 0.0 ? v / length : Vec();
}

/// Turns and scales `v` by the upper left part of `m`: directions do not move.
inline Vec turned(const Matrix& m, const Vec& v)
{
    return {m.a1 * v.x + m.a2 * v.y + m.a3 * v.z, m.b1 * v.x + m.b2 * v.y + m.b3 * v.z,
            m.c1 * v.x + m.c2 * v.y + m.c3 * v.z};
}

/// The matrix that takes normals along when `m` takes the points: the cofactors of its upper left part,
/// which are the inverse transposed times the determinant, and exist for a flattening `m` too.
inline Matrix forNormals(const Matrix& m)
{
    const Vec x(m.a1, m.a2, m.a3), y(m.b1, m.b2, m.b3), z(m.c1, m.c2, m.c3);
    const Vec a = y ^ z, b = z ^ x, c = x ^ y;
    return {a.x, a.y, a.z, 0, b.x, b.y, b.z, 0, c.x, c.y, c.z, 0, 0, 0, 0, 1};
}

/// The largest component.
inline double brightest(const Colour& c)
{
    return std::fmax(c.r, std::fmax(c.g, c.b));
}
