#pragma once

#include "primitives/primitive.h"

struct Plane {
    Object head;
    Vec normal;
    double offset; // the points p with normal . p + offset = 0
};

constexpr auto planeNormal = flatNormal<Plane>;
extern const Operations planeOperations;

/// Makes the plane of the points p with n . p = `distance`, where n is `normal` made unit; the distance is
/// not rescaled. Only rays that travel along n can hit it.
Object* makePlane(Vec normal, double distance);

/// The distance at which `ray` meets the plane, in `*t`. EPSILON itself is steep enough, and unlike the other
/// primitives a plane is hit at a distance of 0. False on a miss, and for non-numbers.
static inline bool planeReach(const Plane& plane, const Ray& ray, double* t)
{
    const double den = dot(plane.normal, ray.direction);
    if (!(den >= EPSILON))
        return false;
    *t = -(dot(plane.normal, ray.origin) + plane.offset) / den;
    return *t >= 0.0;
}
