#pragma once

#include "primitives/outline.h"
#include "primitives/primitive.h"

struct Polygon {
    Object head;
    Vec* vertices; // vertexCount, given by the caller, owned by the record until the process ends
    Vec normal;    // of the plane through the first three vertices
    int vertexCount;
    double offset;
    int axisU, axisV;
    const double* u; // vertexCount + 1, as in a triangle; one heap block with v behind it, never freed either
    const double* v;
};

extern const Operations polygonOperations;

/// Makes a polygon, seen from both sides, from an array of `count` vertices on the heap, at least 3, which
/// the record takes over. The outline may be concave and may cross itself. The first three vertices alone
/// give the plane: if they lie in one line it is never hit, and vertices off the plane are projected along a
/// coordinate axis. Returns the record, which myObjectList owns, or null without memory; then the array stays
/// with the caller.
Object* makePolygon(Vec* vertices, int count);

/// The distance at which `ray` meets the polygon, in `*t`. False on a miss, and for non-numbers.
static inline bool polygonReach(const Polygon& polygon, const Ray& ray, double* t)
{
    return faceReach(polygon.normal, polygon.offset, ray, t) &&
           outlineHolds(polygon.u, polygon.v, polygon.vertexCount, polygon.axisU, polygon.axisV, ray, *t);
}
