#pragma once

#include "primitives/outline.h"
#include "primitives/primitive.h"

/// The face is tested in two dimensions: the coordinate in which the normal is largest is dropped.
struct Triangle {
    Object head;
    Vec normal;
    double offset;
    int axisU, axisV;
    double u[4], v[4]; // the two kept coordinates of each vertex, the first vertex again at the end
};

extern const Operations triangleOperations;

/// Makes a triangle, seen from both sides, from 3 vertices. Corners in one line are allowed; such a triangle
/// is never hit.
Object* makeTriangle(const Vec* vertices);

/// The distance at which `ray` meets the triangle, in `*t`. False on a miss, and for non-numbers.
static inline bool triangleReach(const Triangle& triangle, const Ray& ray, double* t)
{
    return faceReach(triangle.normal, triangle.offset, ray, t) &&
           outlineHolds(triangle.u, triangle.v, 3, triangle.axisU, triangle.axisV, ray, *t);
}
