#include "primitives/plane.h"

#include "primitives/primitive.h"

#include <cstdio>

static int planeIntersect(const Object* self, const Ray* ray, Hit* hit)
{
    double t;
    if (!planeReach(self->plane, *ray, &t))
        return 0;
    *hit = {.distance = t, .entering = 1, .object = self, .hitNormal = {}};
    return 1;
}

static Vec planeNormal(const Object* self, Vec, const Hit*)
{
    return self->plane.normal;
}

static void planePrint(const Object* self)
{
    const Plane& p = self->plane;
    printf("Plane: Nx = %g, Ny = %g, Nz = %g, D = %g\n", p.normal.x, p.normal.y, p.normal.z, p.offset);
}

Object* makePlane(Vec normal, double distance)
{
    Object* self = newPrimitive(PLANE, planeIntersect, planeNormal, planePrint);
    if (self == nullptr)
        return nullptr;
    self->plane = {.normal = unit(normal), .offset = -distance};
    for (int i = 0; i < 3; ++i) {
        self->boundsMin[i] = -NO_LIMIT;
        self->boundsMax[i] = NO_LIMIT;
    }
    return listPrimitive(self);
}
