#pragma once

#include "core/data.h"

#include <bit>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// A flat face with straight edges: what triangle and polygon share. Inside or outside is decided in two
// dimensions, over the coordinates u and v that are left when the one in which the normal is largest is
// dropped, by counting the edges that a level line from the point crosses on its left.

/// The unit normal of the plane through the first three vertices; non-numbers if they lie in one line.
Vec faceNormal(const Vec* vertices);

/// Chooses the two coordinates to keep. A tie drops x before y and y before z.
void chooseAxes(Vec normal, int* axisU, int* axisV);

/// Fills `u` and `v`, `count` + 1 of each, with the kept coordinates; the first vertex comes again at the
/// end.
void projectOutline(const Vec* vertices, int count, int axisU, int axisV, double* u, double* v);

/// The distance at which `ray` meets the plane normal . p + offset = 0, from either side. EPSILON itself is
/// steep enough, and far enough. False on a miss, and for non-numbers.
static inline bool faceReach(Vec normal, double offset, const Ray& ray, double* t)
{
    const double den = dot(normal, ray.direction);
    if (!(den <= -EPSILON || den >= EPSILON))
        return false;
    *t = -(dot(normal, ray.origin) + offset) / den;
    return *t >= EPSILON;
}

/// Which of the four edges from vertex `v[0]` to `v[4]` cross the height `py`, a bit each. A vertex at
/// exactly this height counts as above, so that two edges that meet there cross once, or twice, or not at
/// all, as they should. An edge that lies level never crosses, and nothing crosses a height that is not a
/// number.
static inline int crossingEdges(const double* v, double py)
{
#if defined(__SSE2__)
    const __m128d height = _mm_set1_pd(py);
    const auto pair = [&](const double* from) {
        return _mm_movemask_pd(_mm_xor_pd(_mm_cmplt_pd(_mm_loadu_pd(from), height),
                                          _mm_cmplt_pd(_mm_loadu_pd(from + 1), height)));
    };
    return pair(v) | pair(v + 2) << 2;
#else
    int edges = 0;
    for (int i = 0; i < 4; ++i)
        edges |= static_cast<int>((py > v[i]) != (py > v[i + 1])) << i;
    return edges;
#endif
}

/// Whether an edge that crosses the height `py` does so to the left of `px`.
static inline bool crossesLeft(const double* u, const double* v, double px, double py)
{
    const double x0 = u[0], x1 = u[1];
    const bool right0 = px > x0, right1 = px > x1;
    if (right0 == right1)
        return right0;
    const double y0 = v[0], y1 = v[1];
    const double m = (y1 - y0) / (x1 - x0);
    const double q = -((y1 - py) - (x1 - px) * m) / m; // the crossing, seen from the point
    return q < EPSILON;
}

/// Whether the point `px`, `py` lies inside an outline of `count` edges, by the even-odd rule. The inside
/// ends EPSILON short of a sloping edge on its right. False for a point of non-numbers.
static inline bool outlineHolds(const double* u, const double* v, int count, double px, double py)
{
    bool odd = false;
    int i = 0;
    for (; i + 4 <= count; i += 4)
        for (int edges = crossingEdges(v + i, py); edges != 0; edges &= edges - 1) {
            const int edge = i + std::countr_zero(static_cast<unsigned>(edges));
            odd ^= crossesLeft(u + edge, v + edge, px, py);
        }
    for (; i < count; ++i)
        if ((py > v[i]) != (py > v[i + 1]))
            odd ^= crossesLeft(u + i, v + i, px, py);
    return odd;
}

/// Whether `ray` at parameter `t` lies inside the outline.
static inline bool outlineHolds(const double* u, const double* v, int count, int axisU, int axisV,
                                const Ray& ray, double t)
{
    const double px = coordinate(ray.origin, axisU) + t * coordinate(ray.direction, axisU);
    const double py = coordinate(ray.origin, axisV) + t * coordinate(ray.direction, axisV);
    return outlineHolds(u, v, count, px, py);
}
