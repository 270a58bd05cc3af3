#include "bounds/slab.h"

bool passesSlabs(const Object* node, double limit, const double origin[3], const double direction[3],
                 double* key)
{
    double near = -NO_LIMIT, far = limit;
    for (int i = 0; i < 3; ++i) {
        // Along this axis the ray stays where it is; the object's own test decides.
        if (direction[i] == 0.0)
            continue;
        const double a = (node->boundsMin[i] - origin[i]) / direction[i];
        const double b = (node->boundsMax[i] - origin[i]) / direction[i];
        const double lesser = a > b ? b : a, greater = a > b ? a : b;
        if (greater < far)
            far = greater;
        if (lesser > near)
            near = lesser;
        if (near > far || EPSILON > far)
            return false;
    }
    *key = near;
    return true;
}
