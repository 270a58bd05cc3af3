#pragma once

#include "core/data.h"

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

/// Whether the point `px`, `py` lies inside an outline of `count` edges, by the even-odd rule. The inside
/// ends EPSILON short of a sloping edge on its right. False for a point of non-numbers.
static inline bool outlineHolds(const double* u, const double* v, int count, double px, double py)
{
    bool odd = false;
    for (int i = 0; i < count; ++i) {
        // A vertex at exactly this height counts as above, so that two edges that meet there cross once, or
        // twice, or not at all, as they should. An edge that lies level never crosses.
        if ((py > v[i]) == (py > v[i + 1]))
            continue;
        const double x0 = u[i], x1 = u[i + 1];
        const bool right0 = px > x0, right1 = px > x1;
        if (right0 != right1) {
            const double y0 = v[i], y1 = v[i + 1];
            const double m = (y1 - y0) / (x1 - x0);
            const double q = -((y1 - py) - (x1 - px) * m) / m; // the crossing, seen from the point
            odd ^= q < EPSILON;
        } else {
            odd ^= right0;
        }
    }
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
