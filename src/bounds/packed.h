#pragma once

#include "core/data.h"

#include <cstdint>
#include <limits>

constexpr float INFINITE = std::numeric_limits<float>::infinity();

constexpr int LANES = 8;              // members of a packed node
constexpr int MAX_FOLDED = LANES - 2; // nodes that can be folded into one

/// A member of a packed node in one word: the address of a PackedNode or of a primitive, and in the low bits,
/// which the alignment of both leaves free, what it is. 0 is no member.
using PackedMember = uintptr_t;

/// A bounding node in the form that the walk reads: the bounds of all its members side by side, so that one
/// test serves them all. In a copy of the tree, while lanes are free, the members of a member take its place,
/// that with the largest surface first, so that the walk opens fewer nodes than the tree has. The planes
/// stand as lower x, y, z, upper x, y, z. Primitives stand ahead of nodes. An empty lane lies behind itself:
/// no ray passes it.
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
// hold the number of nodes that were folded into a node. In a grouped tree nothing is folded: there they tell
// the kinds of sieve from a node.
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

/// A bound as a float, kept within what the walk can calculate with. The slack of the walk is far above the
/// rounding here.
float packedBound(double value);

/// Leaves all lanes empty.
void clearNode(PackedNode* node);

/// The root of the packed tree, or 0 if there is none. In a copy of the tree at myObjectList it comes first,
/// and a node's subtrees behind it in their order. All that is packed is only read during the render.
extern PackedMember packedRoot;

/// Whether the packed tree is one of groupBySurface, whose nodes have nothing to do with those of the
/// records.
extern bool packedIsGrouped;

/// How far from the middle of the world, on each axis, a ray may start that is walked through the packed
/// tree.
extern double packedReach;

/// The memory that the nodes lie in.
extern void* packedMemory;

/// What was folded into each node of a copy, in the same order.
extern Folded* packedFolded;

/// Whether all bounds of a copy enclose those below them.
extern bool packedEncloses;

/// Gives the packed tree back.
void releasePackedTree();
