#include "bounds/packed.h"

#include "bounds/pqueue.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

constinit const PackedNode* packedRoot = nullptr;

static constexpr float INFINITE = std::numeric_limits<float>::infinity();
/// A bound as a float, kept within what the walk can calculate with. Its slack is far above the rounding
/// here.
static float packedBound(double value)
{
    return static_cast<float>(std::clamp(value, -1e30, 1e30));
}

/// Counts the nodes of a tree. False if one of its bounds is not a number.
static bool countNodes(const Object* node, size_t* count)
{
    ++*count;
    for (const Object* member = node->children->first; member != nullptr; member = member->next) {
        for (int axis = 0; axis < 3; ++axis)
            if (std::isnan(member->boundsMin[axis]) || std::isnan(member->boundsMax[axis]))
                return false;
        if (member->type == BOUNDING_NODE && !countNodes(member, count))
            return false;
    }
    return true;
}

/// Packs `node` into `*next`, its subtrees behind it, and moves `*next` on.
static const PackedNode* pack(const Object* node, PackedNode** next)
{
    PackedNode* packed = (*next)++;
    const Object* member = node->children->first;
    for (int lane = 0; lane < LANES; ++lane) {
        for (int axis = 0; axis < 3; ++axis) {
            // Bounds that stand the wrong way round, of a record that nothing can hit, count as turned.
            packed->planes[axis][lane] =
                member == nullptr ? INFINITE
                                  : packedBound(std::min(member->boundsMin[axis], member->boundsMax[axis]));
            packed->planes[3 + axis][lane] =
                member == nullptr ? -INFINITE
                                  : packedBound(std::max(member->boundsMin[axis], member->boundsMax[axis]));
        }
        packed->members[lane] = 0;
        if (member == nullptr)
            continue;
        const void* record =
            member->type == BOUNDING_NODE ? static_cast<const void*>(pack(member, next)) : member;
        packed->members[lane] = memberOf(record, member->type);
        member = member->next;
    }
    return packed;
}

void packTree()
{
    releasePackedTree();
    size_t count = 0;
    if (myObjectList == nullptr || myObjectList->type != BOUNDING_NODE || bunching > LANES ||
        !countNodes(myObjectList, &count))
        return;
    // A queue that could not be had has to be missed by the first ray.
    void* queue = malloc(static_cast<size_t>(iPQSize) * sizeof(PQEntry));
    if (queue == nullptr)
        return;
    free(queue);
    auto* nodes = static_cast<PackedNode*>(aligned_alloc(alignof(PackedNode), count * sizeof(PackedNode)));
    if (nodes != nullptr)
        packedRoot = pack(myObjectList, &nodes);
}

void releasePackedTree()
{
    free(const_cast<PackedNode*>(packedRoot));
    packedRoot = nullptr;
}
