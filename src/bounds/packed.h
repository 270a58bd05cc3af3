#pragma once

#include "core/data.h"

#include <cstdint>

constexpr int LANES = 4; // members of a packed node, at most `bunching` of them in use

/// A member of a packed node in one word: the address of a PackedNode or of a primitive's Object, and in the
/// low four bits, which the alignment of both leaves free, its type. For a node the next two bits tell how
/// many nodes of the tree were folded into it.
using PackedMember = uintptr_t;

/// A bounding node in the form that the walk reads: the bounds of all its members side by side, so that one
/// test serves them all, in two cache lines. While lanes are free, the members of a member take its place, so
/// that the walk opens fewer nodes than the tree has. The planes stand as lower x, y, z, upper x, y, z. An
/// empty lane lies behind itself: no ray passes it.
struct alignas(64) PackedNode {
    float planes[6][LANES];
    PackedMember members[LANES];
};

static inline int memberType(PackedMember member)
{
    return static_cast<int>(member & 15);
}

static inline int foldedNodes(PackedMember member)
{
    return static_cast<int>(member >> 4 & 3);
}

static inline const PackedNode* memberNode(PackedMember member)
{
    return reinterpret_cast<const PackedNode*>(member & ~PackedMember{63});
}

static inline const Object* memberObject(PackedMember member)
{
    return reinterpret_cast<const Object*>(member & ~PackedMember{15});
}

/// The packed copy of the tree at myObjectList, its root first and a node's subtrees behind it in their
/// order, or 0 if there is none. Written by packTree, only read during the render.
extern PackedMember packedRoot;

/// Makes the packed copy of a finished tree. It makes none, and the walk does without, when there is no tree,
/// no memory, or a bound that is not a number: the shortcuts of the walk reason about bounds that enclose.
void packTree();

/// Gives the packed copy back.
void releasePackedTree();
