#include "primitives/ring.h"

#include <cstdio>

static void ringPrint(const Object* self)
{
    const Ring& r = recordOf<Ring>(self);
    printf("Ring: Nx = %g, Ny = %g, Nz = %g\n Cx = %g, Cy = %g, Cz = %g\n", r.normal.x, r.normal.y,
           r.normal.z, r.center.x, r.center.y, r.center.z);
}

constexpr auto ringIntersect = evenIntersect<Ring, ringReach>;

constinit const Operations ringOperations = {ringIntersect, ringPrint};

Object* makeRing(Vec center, Vec normal, double innerRadius, double outerRadius)
{
    auto* ring = newPrimitive<Ring>(RING);
    if (ring == nullptr)
        return nullptr;
    // The bounds and the shading rest on a unit normal, and scenes may give any. A zero normal must not
    // become non-numbers, which would spoil the bounds: as it is, it yields those of a sphere.
    if (lengthOf(normal) != 0.0)
        VecNorm(&normal);
    ring->center = center;
    ring->normal = normal;
    ring->offset = -dot(normal, center);
    ring->innerSquared = innerRadius * innerRadius;
    ring->outerSquared = outerRadius * outerRadius;
    boundCircle(center, normal, outerRadius, ring->head.boundsMin, ring->head.boundsMax);
    return listPrimitive(&ring->head);
}
