#pragma once

#include "core/data.h"

/// One entry of a traversal queue: `key` is where the ray enters the bounds of `node`.
struct PQEntry {
    double key;
    const Object* node;
};

/// Adds an entry to a heap of iPQSize entries, of which index 0 is never used and the least key stands at 1.
/// Of entries with the same key their places in the heap decide which comes out first, and not their age.
/// Ends the process with status 1 when `count` reaches iPQSize.
void priorityQueueInsert(double key, const Object* node, PQEntry* queue, int* count);

/// Takes the entry of the least key out. Of two children of the same key the right one rises. Ends the
/// process with status 1 if there is none.
void priorityQueueDelete(double* key, const Object** node, PQEntry* queue, int* count);
