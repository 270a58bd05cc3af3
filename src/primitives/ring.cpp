#include "primitives/ring.h"

#include "primitives/primitive.h"

#include <cstdio>

static int ringIntersect(const Object* self, const Ray* ray, Hit* hit)
{
    double t;
    if (!ringReach(self->ring, *ray, &t))
        return 0;
    *hit = {.distance = t, .entering = 1, .object = self, .hitNormal = {}};
    return 1;
}

static Vec ringNormal(const Object* self, Vec, const Hit*)
{
    return self->ring.normal;
}

static void ringPrint(const Object* self)
{
    const Ring& r = self->ring;
    printf("Ring: Nx = %g, Ny = %g, Nz = %g\n Cx = %g, Cy = %g, Cz = %g\n", r.normal.x, r.normal.y,
           r.normal.z, r.center.x, r.center.y, r.center.z);
}

Object* makeRing(Vec center, Vec normal, double innerRadius, double outerRadius)
{
    Object* self = newPrimitive(RING, ringIntersect, ringNormal, ringPrint);
    if (self == nullptr)
        return nullptr;
    // The bounds and the shading rest on a unit normal, and scenes may give any. A zero normal must not
    // become non-numbers, which would spoil the bounds: as it is, it yields those of a sphere.
    if (lengthOf(normal) != 0.0)
        VecNorm(&normal);
    self->ring = {.center = center,
                  .normal = normal,
                  .offset = -dot(normal, center),
                  .innerSquared = innerRadius * innerRadius,
                  .outerSquared = outerRadius * outerRadius};
    for (int i = 0; i < 3; ++i) {
        const double extent = circleExtent(normal, Slab[i]) * outerRadius;
        self->boundsMin[i] = coordinate(center, i) - extent;
        self->boundsMax[i] = coordinate(center, i) + extent;
    }
    return listPrimitive(self);
}
