#pragma once

#include "primitives/outline.h"
#include "primitives/primitive.h"

struct Polygon {
    Object head;
    Vec normal; // of the plane through the first three vertices
    int edges;
    double offset;
    int axisU, axisV;
    const OutlineBins* bins; // null for a small outline; never freed
    // Behind the record stand the u and v of the outline, edges + 1 of each.
};

constexpr auto polygonNormal = flatNormal<Polygon>;
extern const Operations polygonOperations;

/// Makes a polygon, seen from both sides, from `count` vertices, at least 3. The outline may be concave and
/// may cross itself. The first three vertices alone give the plane: if they lie in one line it is never hit,
/// and vertices off the plane are projected along a coordinate axis.
Object* makePolygon(const Vec* vertices, int count);

/// Whether the point lies inside the outline of a polygon of more than four corners. Not for the inside of
/// the walk, which is faster when it is short.
bool longOutlineHolds(const Polygon& polygon, double px, double py);

/// The distance at which `ray` meets the polygon, in `*t`. False on a miss, and for non-numbers.
static inline bool polygonReach(const Polygon& polygon, const Ray& ray, double* t)
{
    if (!faceReach(polygon.normal, polygon.offset, ray, t))
        return false;
    const double px = keptCoordinate(ray, *t, polygon.axisU);
    const double py = keptCoordinate(ray, *t, polygon.axisV);
    const auto* u = reinterpret_cast<const double*>(&polygon + 1);
    return polygon.edges == EDGES_IN_GROUP ? crossesOddly(u, u + EDGES_IN_GROUP + 1, px, py)
                                           : longOutlineHolds(polygon, px, py);
}
