#pragma once

#include "core/data.h"

// What all kinds of primitive share. A constructor takes a record with newPrimitive, fills its tail and its
// bounds and ends with listPrimitive; a null record means no memory, and then nothing was listed or counted.

/// A zeroed record with its type and operations set, or null without memory.
Object* newPrimitive(int type, IntersectOperation intersect, NormalOperation normal, PrintOperation print);

/// Sets the bounds to the extent of `count` points along the Slab directions, widened by `margin`.
void boundPoints(Object* self, const Vec* points, int count, double margin);

/// Half the extent along the unit vector `direction` of a circle of radius 1 square to the unit vector
/// `axis`.
double circleExtent(Vec axis, Vec direction);

/// Puts the finished record onto myObjectList, counts it in nPrims and returns it.
Object* listPrimitive(Object* self);
