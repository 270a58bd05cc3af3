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

double circleExtent(Vec axis, Vec direction)
{
    const double w = dot(axis, direction);
    return std::sqrt(1.0 - w * w); // no number for an axis that could not be made unit
}

Object* listPrimitive(Object* self)
{
    addToList(&myObjectList, self);
    ++nPrims;
    return self;
}
