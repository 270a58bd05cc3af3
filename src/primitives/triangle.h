#pragma once

#include "core/data.h"
#include "primitives/outline.h"

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
