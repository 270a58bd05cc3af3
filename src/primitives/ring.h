#pragma once

#include "primitives/primitive.h"

/// A disc is a ring with an inner radius of 0.
struct Ring {
    Object head;
    Vec center;
    Vec normal;
    double offset;
    double innerSquared;
    double outerSquared;
};

constexpr auto ringNormal = flatNormal<Ring>;
extern const Operations ringOperations;

/// Makes a flat ring, seen from both sides; both circles belong to it, and an inner radius of 0 makes a disc.
/// The normal is made unit; a normal of length 0 is allowed, and such a ring is never hit.
Object* makeRing(Vec center, Vec normal, double innerRadius, double outerRadius);

/// The distance at which `ray` meets the ring, in `*t`; EPSILON itself is far enough. However flat the ray
/// comes in, only a den of 0 misses for its direction alone. False on a miss, and for non-numbers.
static inline bool ringReach(const Ring& ring, const Ray& ray, double* t)
{
    const double den = dot(ring.normal, ray.direction);
    if (den == 0.0)
        return false;
    *t = -(dot(ring.normal, ray.origin) + ring.offset) / den;
    if (!(*t >= EPSILON))
        return false;
    const Vec fromCenter = ray.origin + *t * ray.direction - ring.center;
    const double q = dot(fromCenter, fromCenter);
    return q <= ring.outerSquared && q >= ring.innerSquared;
}
