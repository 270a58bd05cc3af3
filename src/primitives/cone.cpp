#include "primitives/cone.h"

#include <algorithm>
#include <cstdio>

static void conePrint(const Object* self)
{
    const Cone& c = recordOf<Cone>(self);
    printf("Cone: %g %g %g %g %g %g %g %g\n", c.base.x, c.base.y, c.base.z, c.baseRadius, c.cap.x, c.cap.y,
           c.cap.z, c.capRadius);
}

// not entered, from either side
constexpr auto coneIntersect = evenIntersect<Cone, coneReach, 0>;

constinit const Operations coneOperations = {coneIntersect, conePrint};

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
    double *low = self->head.boundsMin, *high = self->head.boundsMax, capLow[3], capHigh[3];
    boundCircle(self->base, self->axis, self->baseRadius, low, high);
    boundCircle(self->cap, self->axis, self->capRadius, capLow, capHigh);
    for (int i = 0; i < 3; ++i) {
        low[i] = std::min(low[i], capLow[i]);
        high[i] = std::max(high[i], capHigh[i]);
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
