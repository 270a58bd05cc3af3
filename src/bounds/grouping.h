#pragma once

#include "bounds/packed.h"

/// Packs the primitives below `root` into a tree of its own, with groups of small surface, and sieves at its
/// ends, and returns its root; its block of memory becomes `packedMemory`. 0 if memory does not reach, or a
/// bound is not a number or stands the wrong way round.
PackedMember groupBySurface(const Object* root);
