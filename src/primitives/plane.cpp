#include "primitives/plane.h"

#include <cstdio>

static void planePrint(const Object* self)
{
    const Plane& p = recordOf<Plane>(self);
    printf("Plane: Nx = %g, Ny = %g, Nz = %g, D = %g\n", p.normal.x, p.normal.y, p.normal.z, p.offset);
}

constexpr auto planeIntersect = evenIntersect<Plane, planeReach>;

constinit const Operations planeOperations = {planeIntersect, planePrint};

Object* makePlane(Vec normal, double distance)
{
    auto* plane = newPrimitive<Plane>(PLANE);
    if (plane == nullptr)
        return nullptr;
    plane->normal = unit(normal);
    plane->offset = -distance;
    for (int i = 0; i < 3; ++i) {
        plane->head.boundsMin[i] = -NO_LIMIT;
        plane->head.boundsMax[i] = NO_LIMIT;
    }
    return listPrimitive(&plane->head);
}
