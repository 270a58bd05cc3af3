#include "primitives/cone.h"

#include <algorithm>
#include <cstdio>

static int coneIntersect(const Object* self, const Ray* ray, Hit* hit)
{
    double t;
    if (!coneReach(recordOf<Cone>(self), *ray, &t))
        return 0;
    *hit = {.distance = t, .entering = 0, .object = self, .hitNormal = {}}; // 0 from either side
    return 1;
}

/// Points away from the axis; on a cone it is tilted, to stand square on the wall.
static Vec coneNormal(const Object* self, Vec point, const Hit*)
{
    const Cone& cone = recordOf<Cone>(self);
    const double d = -(dot(cone.axis, point) + cone.axisOffset);
    const Vec inBasePlane = point + d * cone.axis;
    const Vec radial = unit(inBasePlane - cone.base);
    return unit(radial - cone.slope * cone.axis);
}

static void conePrint(const Object* self)
{
    const Cone& c = recordOf<Cone>(self);
    printf("Cone: %g %g %g %g %g %g %g %g\n", c.base.x, c.base.y, c.base.z, c.baseRadius, c.cap.x, c.cap.y,
           c.cap.z, c.capRadius);
}

constinit const Operations coneOperations = {coneIntersect, coneNormal, conePrint};

/// Fills the right-angled frame around the axis.
static void makeFrame(Cone* cone)
{
    constexpr Vec Z = {0.0, 0.0, 1.0};
    constexpr Vec Y = {0.0, 1.0, 0.0};
    const bool alongZ = 1.0 - std::abs(dot(cone->axis, Z)) < EPSILON; // too near for a cross product with z
    cone->frameU = unit(cross(cone->axis, alongZ ? Y : Z));
    cone->frameV = cross(cone->frameU, cone->axis);
}

/// The extent of the two end circles: straight flanks lie within it.
static void boundCone(Cone* self)
{
    const Cone& cone = *self;
    double *low = self->head.boundsMin, *high = self->head.boundsMax;
    for (int i = 0; i < 3; ++i) {
        const double f = circleExtent(cone.axis, Slab[i]);
        low[i] = coordinate(cone.base, i) - f * cone.baseRadius;
        high[i] = coordinate(cone.base, i) + f * cone.baseRadius;
        const double lo = coordinate(cone.cap, i) - f * cone.capRadius;
        const double hi = coordinate(cone.cap, i) + f * cone.capRadius;
        low[i] = std::min(low[i], lo);
        high[i] = std::max(high[i], hi);
    }
}

Object* makeCone(Vec base, double baseRadius, Vec cap, double capRadius)
{
    auto* cone = newPrimitive<Cone>(CONE);
    if (cone == nullptr)
        return nullptr;
    cone->base = base;
    cone->baseRadius = baseRadius;
    cone->cap = cap;
    cone->capRadius = capRadius;
    cone->axis = cap - base;
    cone->slope = (capRadius - baseRadius) / lengthOf(cone->axis);
    VecNorm(&cone->axis);
    cone->axisOffset = -dot(cone->axis, base);
    makeFrame(cone);
    const double atBase = dot(cone->axis, base);
    const double atCap = dot(cone->axis, cap);
    cone->axisMin = std::min(atBase, atCap);
    cone->axisMax = std::max(atBase, atCap);
    boundCone(cone);
    return listPrimitive(&cone->head);
}
