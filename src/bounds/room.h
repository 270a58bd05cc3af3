#pragma once

/// Finds out whether the queue has room for all that any ray can put into it. Returns how far from the middle
/// of the world, on each axis, a ray may start of which this is sure, or 0 if of none. There must be a tree,
/// of bounds that enclose what is below them.
double originsWithRoom();
