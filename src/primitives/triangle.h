#pragma once

#include "primitives/outline.h"
#include "primitives/primitive.h"

/// The face is tested in two dimensions: the coordinate in which the normal is largest is dropped.
struct Triangle {
    Object head;
    Vec normal;
    double offset;
    int axisU, axisV;
    double outline[9]; // 4 u, then 5 v: the fourth edge, from the first vertex to itself, can do without its
                       // last u
};

constexpr auto triangleNormal = flatNormal<Triangle>;
extern const Operations triangleOperations;

/// Makes a triangle, seen from both sides, from 3 vertices. Corners in one line are allowed; such a triangle
/// is never hit.
Object* makeTriangle(const Vec* vertices);

/// The distance at which `ray` meets the triangle, in `*t`. False on a miss, and for non-numbers.
static inline bool triangleReach(const Triangle& triangle, const Ray& ray, double* t)
{
    return faceReach(triangle.normal, triangle.offset, ray, t) &&
           crossesOddly(triangle.outline, triangle.outline + 4, keptCoordinate(ray, *t, triangle.axisU),
                        keptCoordinate(ray, *t, triangle.axisV));
}
