#pragma once

#include "core/data.h"

/// What the walk can say of a ray. UNSURE means that the heap has to be asked.
enum class Answer { NOTHING, FOUND, UNSURE };

/// Whether a walk tests eight members at a time, or four and four. It starts as the processor allows.
extern bool isWideWalk;

/// Looks in the packed tree, which must exist, for the object that `ray` meets first before `limit`, without
/// `exclude`. On FOUND, `*found` and `*distance` are set.
Answer walkToNearest(const Ray& ray, double limit, const Object* exclude, const Object** found,
                     double* distance);

/// Looks for any object that stands on `ray` before `limit`, likewise.
Answer walkToAny(const Ray& ray, double limit, const Object* exclude, const Object** found);
