#include "primitives/primitive.h"

#include <cstdlib>

Object* newPrimitive(int type, IntersectOperation intersect, NormalOperation normal, PrintOperation print)
{
    auto* self = static_cast<Object*>(calloc(1, sizeof(Object)));
    if (self == nullptr)
        return nullptr;
    self->type = type;
    self->ObjectIntersect = intersect;
    self->ObjectNormal = normal;
    self->ObjectPrint = print;
    return self;
}

void boundPoints(Object* self, const Vec* points, int count, double margin)
{
    for (int i = 0; i < 3; ++i) {
        double lo = NO_LIMIT;
        double hi = -NO_LIMIT;
        for (int k = 0; k < count; ++k) {
            const double d = dot(points[k], Slab[i]);
            if (d < lo)
                lo = d;
            if (d > hi)
                hi = d;
        }
        self->boundsMin[i] = lo - margin;
        self->boundsMax[i] = hi + margin;
    }
}

double circleExtent(Vec axis, Vec direction)
{
    const double w = dot(axis, direction);
    const double squared = 1.0 - w * w;
    return squared < 0.0 ? 0.0 : std::sqrt(squared); // the axis may be rounded to a little more than unit
}

Object* listPrimitive(Object* self)
{
    addToList(&myObjectList, self);
    ++nPrims;
    return self;
}
