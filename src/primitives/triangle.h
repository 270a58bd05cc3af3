#pragma once

#include "primitives/outline.h"
#include "primitives/primitive.h"

/// The face is tested in two dimensions: the coordinate in which the normal is largest is dropped.
struct Triangle {
    Object head;
    Vec* vertices; // 3, given by the caller, owned by the record until the process ends
    Vec normal;
    double offset;
    int axisU, axisV;
    double u[4], v[4]; // the two kept coordinates of each vertex, the first vertex again at the end
};

extern const Operations triangleOperations;

/// Makes a triangle, seen from both sides, from an array of 3 on the heap, which the record takes over.
/// Corners in one line are allowed; such a triangle is never hit. Returns the record, which myObjectList
/// owns, or null without memory; then the array stays with the caller.
Object* makeTriangle(Vec* vertices);

/// The distance at which `ray` meets the triangle, in `*t`. False on a miss, and for non-numbers.
static inline bool triangleReach(const Triangle& triangle, const Ray& ray, double* t)
{
    return faceReach(triangle.normal, triangle.offset, ray, t) &&
           outlineHolds(triangle.u, triangle.v, 3, triangle.axisU, triangle.axisV, ray, *t);
}
