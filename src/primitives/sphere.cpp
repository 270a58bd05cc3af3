#include "primitives/sphere.h"

#include <cstdio>

static int sphereIntersect(const Object* self, const Ray* ray, Hit* hit)
{
    const Sphere& sphere = recordOf<Sphere>(self);
    double t;
    if (!sphereReach(sphere, *ray, &t))
        return 0;
    *hit = {.distance = t, .entering = sphereEntered(sphere, ray->origin), .object = self, .hitNormal = {}};
    return 1;
}

static void spherePrint(const Object* self)
{
    const Sphere& s = recordOf<Sphere>(self);
    printf("Sphere: Cx = %g, Cy = %g, Cz = %g, R = %g\n", s.center.x, s.center.y, s.center.z, s.radius);
}

constinit const Operations sphereOperations = {sphereIntersect, spherePrint};

Object* makeSphere(Vec center, double radius)
{
    auto* sphere = newPrimitive<Sphere>(SPHERE);
    if (sphere == nullptr)
        return nullptr;
    sphere->center = center;
    sphere->radius = radius;
    for (int i = 0; i < 3; ++i) {
        const double c = dot(center, Slab[i]);
        sphere->head.boundsMin[i] = c - std::abs(radius);
        sphere->head.boundsMax[i] = c + std::abs(radius);
    }
    return listPrimitive(&sphere->head);
}
