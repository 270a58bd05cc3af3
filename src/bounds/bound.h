#pragma once

#include "core/data.h"

// Turns the list of primitives, in place, into a tree of bounding nodes: repeated passes over the list, each
// of which splits it around mean positions until the pieces are small enough to be wrapped into one node.

/// The members of a bounding node.
struct ChildList {
    Object* first; // chained by `next`
    int count;     // at least 2
};

/// Bounds around the bounds of its members. It has no surface.
struct BoundingNode {
    Object head;
    ChildList children;
};

/// The members of a record of type BOUNDING_NODE.
static inline const ChildList& childrenOf(const Object* node)
{
    return recordOf<BoundingNode>(node).children;
}

extern int iNumNodes; // bounding nodes of the tree

/// Builds the tree over myObjectList: afterwards its root, or the only primitive, or null. Raises nPrims by
/// the number of nodes. Without memory it ends the process with status 1.
void buildBoundingSlabs();

/// Splits the `count` records at `*link`, or wraps them into a node when there are few. What stands behind
/// them stays attached. Returns 1 if it split, else 0.
int sortAndSplit(Object** link, int count);

/// Finds the axis along which the centres of `count` records spread the most, and their mean position on it,
/// for sortAndSplit. Ends the process with status 1 if the list is shorter than `count`.
void findAxis(const Object* first, int count);
