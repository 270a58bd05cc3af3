#pragma once

#include "core/data.h"

/// The slab test: whether the ray meets the bounds of `node` before `limit`, and where it enters them. From
/// inside, `*key` is negative. But for a component of 0 it has no jumps: which of two planes comes first is
/// anybody's guess.
static inline bool passesSlabs(const Object* node, double limit, const double origin[3],
                               const double direction[3], double* key)
{
    double near = -NO_LIMIT, far = limit;
    int misses = 0;
    for (int i = 0; i < 3; ++i) {
        // Along this axis the ray stays where it is; the object's own test decides.
        if (direction[i] == 0.0)
            continue;
        const double a = (node->boundsMin[i] - origin[i]) / direction[i];
        const double b = (node->boundsMax[i] - origin[i]) / direction[i];
        const double lesser = a > b ? b : a, greater = a > b ? a : b;
        far = greater < far ? greater : far;
        near = lesser > near ? lesser : near;
        misses |= static_cast<int>(near > far) | static_cast<int>(EPSILON > far);
    }
    if (misses != 0)
        return false;
    *key = near;
    return true;
}
