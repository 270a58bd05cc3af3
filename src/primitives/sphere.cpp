#include "primitives/sphere.h"

#include "primitives/primitive.h"

#include <cstdio>

static int sphereIntersect(const Object* self, const Ray* ray, Hit* hit)
{
    const Sphere& sphere = self->sphere;
    double t;
    if (!sphereReach(sphere, *ray, &t))
        return 0;
    // Where the ray starts decides, with a margin, and not which of the two roots was taken.
    const Vec l = sphere.center - ray->origin;
    *hit = {.distance = t,
            .entering = dot(l, l) > sphere.radiusSquared + EPSILON,
            .object = self,
            .hitNormal = {}};
    return 1;
}

static Vec sphereNormal(const Object* self, Vec point, const Hit*)
{
    return unit(point - self->sphere.center);
}

static void spherePrint(const Object* self)
{
    const Sphere& s = self->sphere;
    printf("Sphere: Cx = %g, Cy = %g, Cz = %g, R = %g\n", s.center.x, s.center.y, s.center.z, s.radius);
}

Object* makeSphere(Vec center, double radius)
{
    Object* self = newPrimitive(SPHERE, sphereIntersect, sphereNormal, spherePrint);
    if (self == nullptr)
        return nullptr;
    self->sphere = {.center = center, .radius = radius, .radiusSquared = radius * radius};
    for (int i = 0; i < 3; ++i) {
        const double c = dot(center, Slab[i]);
        self->boundsMin[i] = c - std::abs(radius);
        self->boundsMax[i] = c + std::abs(radius);
    }
    return listPrimitive(self);
}
