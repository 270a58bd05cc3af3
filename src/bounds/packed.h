#pragma once

#include "core/data.h"

#include <cstdint>

constexpr int LANES = 8;              // members of a packed node
constexpr int MAX_FOLDED = LANES - 2; // nodes that can be folded into one

/// A member of a packed node in one word: the address of a PackedNode or of a primitive, and in the low bits,
/// which the alignment of both leaves free, what it is. 0 is no member.
using PackedMember = uintptr_t;

/// A bounding node in the form that the walk reads: the bounds of all its members side by side, so that one
/// test serves them all. While lanes are free, the members of a member take its place, that with the largest
/// surface first, so that the walk opens fewer nodes than the tree has. The planes stand as lower x, y, z,
/// upper x, y, z. Primitives stand ahead of nodes. An empty lane lies behind itself: no ray passes it.
struct alignas(64) PackedNode {
    float planes[6][LANES];
    PackedMember members[LANES];
};

/// The nodes of the tree that were folded into a packed one: for each the lanes that lie below it, a bit
/// each; 0 for none.
struct Folded {
    std::uint8_t lanes[MAX_FOLDED];
};

// The lowest three bits tell a node from the kinds of primitive, which are numbered from 0; the next three
// hold the number of nodes that were folded into a node.
constexpr PackedMember TAG_BITS = 7, NODE_TAG = 7;
constexpr int FOLDED_SHIFT = 3;
constexpr PackedMember FOLDED_BITS = 7 << FOLDED_SHIFT;
static_assert(PATCH - SPHERE < NODE_TAG && MAX_FOLDED <= FOLDED_BITS >> FOLDED_SHIFT);
static_assert(alignof(Object) > TAG_BITS && alignof(PackedNode) > (TAG_BITS | FOLDED_BITS));

static inline PackedMember memberOf(const Object* primitive)
{
    return reinterpret_cast<PackedMember>(primitive) | static_cast<PackedMember>(primitive->type - SPHERE);
}

static inline PackedMember memberOf(const PackedNode* node, int folded)
{
    return reinterpret_cast<PackedMember>(node) | NODE_TAG |
           static_cast<PackedMember>(folded) << FOLDED_SHIFT;
}

static inline bool isNode(PackedMember member)
{
    return (member & TAG_BITS) == NODE_TAG;
}

static inline const PackedNode* nodeOf(PackedMember member)
{
    return reinterpret_cast<const PackedNode*>(member & ~(TAG_BITS | FOLDED_BITS));
}

static inline int foldedNodesOf(PackedMember member)
{
    return static_cast<int>((member & FOLDED_BITS) >> FOLDED_SHIFT);
}

static inline const Object* objectOf(PackedMember member)
{
    return reinterpret_cast<const Object*>(member & ~TAG_BITS);
}

/// The type of a primitive, known without a look at its record.
static inline int typeOf(PackedMember member)
{
    return static_cast<int>(member & TAG_BITS) + SPHERE;
}

/// The packed copy of the tree at myObjectList, its root first and a node's subtrees behind it in their
/// order, or 0 if there is none. Written by packTree, only read during the render.
extern PackedMember packedRoot;

/// What was folded into each of the packed nodes, in the same order.
extern const Folded* packedFolded;

/// Whether all bounds of the packed tree enclose those below them.
extern bool packedEncloses;

/// Makes the packed copy of a finished tree. It makes none, and the walk does without, when there is no tree,
/// no memory, or a bound that is not a number: the shortcuts of the walk reason about bounds that enclose.
void packTree();

/// Gives the packed copy back.
void releasePackedTree();
