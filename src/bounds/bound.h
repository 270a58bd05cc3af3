#pragma once

#include "core/data.h"

// Turns the list of primitives into a tree of bounding nodes around the same records: repeated passes, each
// of which splits the list around mean positions until the pieces are small enough to be wrapped into one
// node.

/// The members of a bounding node.
struct ChildList {
    Object* first;  // chained by `next`
    int count;      // at least 2
    int primitives; // below this node, at any depth
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

/// Hands over the memory that the last build worked in, for realloc or free, or null if there is none. The
/// pages of a large one are at hand, which fresh ones are not.
void* takeWorkspace();
