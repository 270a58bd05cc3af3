#pragma once

#include "primitives/primitive.h"

struct Sphere {
    Object head;
    Vec center;
    double radius; // as given, sign included
};

extern const Operations sphereOperations;

/// Makes a sphere. A negative radius has the bounds and hits of its positive value.
Object* makeSphere(Vec center, double radius);

/// The distance at which `ray` meets the sphere, in `*t`. A tangent ray hits, and EPSILON itself is far
/// enough from the origin. False on a miss, and for non-numbers.
static inline bool sphereReach(const Sphere& sphere, const Ray& ray, double* t)
{
    const Vec l = sphere.center - ray.origin;
    const double tca = dot(l, ray.direction);
    const double disc = tca * tca - dot(l, l) + sphere.radius * sphere.radius;
    if (!(disc >= 0.0))
        return false;
    const double s = std::sqrt(disc);
    *t = tca - s;
    if (!(*t >= EPSILON))
        *t = tca + s;
    return *t >= EPSILON;
}

/// Whether a ray from `origin` enters the sphere where it meets it: where it starts decides, with a margin,
/// and not which of the two roots was taken.
static inline bool sphereEntered(const Sphere& sphere, Vec origin)
{
    const Vec l = sphere.center - origin;
    return dot(l, l) > sphere.radius * sphere.radius + EPSILON;
}

/// Points outwards.
static inline Vec sphereNormal(const Sphere& sphere, Vec point)
{
    return unit(point - sphere.center);
}
