#include "primitives/primitive.h"

#include <algorithm>

void boundPoints(Object* self, const Vec* points, int count, double margin)
{
    for (int i = 0; i < 3; ++i) {
        double lo = NO_LIMIT;
        double hi = -NO_LIMIT;
        for (int k = 0; k < count; ++k) {
            const double d = dot(points[k], Slab[i]);
            lo = std::min(lo, d);
            hi = std::max(hi, d);
        }
        self->boundsMin[i] = lo - margin;
        self->boundsMax[i] = hi + margin;
    }
}

void boundCircle(Vec center, Vec axis, double radius, double low[3], double high[3])
{
    for (int i = 0; i < 3; ++i) {
        const double w = dot(axis, Slab[i]);
        const double extent = std::sqrt(1.0 - w * w) * radius; // no number if the axis could not be made unit
        low[i] = coordinate(center, i) - extent;
        high[i] = coordinate(center, i) + extent;
    }
}

Object* listPrimitive(Object* self)
{
    addToList(&myObjectList, self);
    ++nPrims;
    return self;
}
