#pragma once

#include "core/data.h"

/// The slab test: whether the ray meets the bounds of `node` before `limit`, and where it enters them. From
/// inside, `*key` is negative.
bool passesSlabs(const Object* node, double limit, const double origin[3], const double direction[3],
                 double* key);
