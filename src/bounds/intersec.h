#pragma once

#include "bounds/pqueue.h"

/// The nearest object that `ray` meets before `limit`, without `exclude` (which may be null). Returns 1 and
/// fills `hit`, or 0, and then `hit` is not to be read. In a scene of one object neither limit nor exclude
/// has an effect. May end the process: a full queue, or no memory for it.
int intersect(const Ray* ray, double limit, Hit* hit, const Object* exclude);

/// Whether anything but `exclude` stands on `ray` before `limit`: the answer of `intersect` for a shadow ray,
/// which may stop at the first blocker that it finds.
bool isBlocked(const Ray* ray, double limit, const Object* exclude);

/// `intersect` by the heap alone, over the records. This defines what a ray hits; what is faster has to
/// agree.
int intersectByHeap(const Ray* ray, double limit, Hit* hit, const Object* exclude);

/// Puts `node` into the queue if it passes the slab test.
void checkAndEnqueue(const Object* node, double limit, const double origin[3], const double direction[3],
                     PQEntry* queue, int* count);
