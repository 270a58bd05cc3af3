#include "bounds/packed.h"

#include "bounds/bound.h"
#include "bounds/pqueue.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <utility>

constinit const PackedNode* packedRoot = nullptr;

static constexpr float INFINITE = std::numeric_limits<float>::infinity();
/// A bound as a float, kept within what the walk can calculate with. Its slack is far above the rounding
/// here.
static float packedBound(double value)
{
    return static_cast<float>(std::clamp(value, -1e30, 1e30));
}

namespace
{
/// The work of one packTree.
struct Packing {
    PackedNode* next;       // where the next node goes
    bool isEnclosed = true; // no bound so far that is not a number
};
} // namespace

/// Packs the bounds of one member. Bounds that stand the wrong way round, of a record that nothing can hit,
/// count as turned.
static void packBounds(const Object* member, PackedNode* packed, int lane, Packing* packing)
{
    for (int axis = 0; axis < 3; ++axis) {
        const auto [low, high] = std::minmax(member->boundsMin[axis], member->boundsMax[axis]);
        packing->isEnclosed = packing->isEnclosed && low <= high;
        packed->planes[axis][lane] = packedBound(low);
        packed->planes[3 + axis][lane] = packedBound(high);
    }
}

/// Packs `node`, and its subtrees behind it.
static const PackedNode* pack(const Object* node, Packing* packing)
{
    PackedNode* packed = packing->next++;
    std::fill(packed->planes[0], packed->planes[3], INFINITE);
    std::fill(packed->planes[3], packed->planes[6], -INFINITE);
    int lane = 0;
    for (const Object* member = node->children->first; member != nullptr; member = member->next, ++lane) {
        packBounds(member, packed, lane, packing);
        const void* record =
            member->type == BOUNDING_NODE ? static_cast<const void*>(pack(member, packing)) : member;
        packed->members[lane] = memberOf(record, member->type);
    }
    return packed;
}

void packTree()
{
    releasePackedTree();
    if (myObjectList == nullptr || myObjectList->type != BOUNDING_NODE || bunching > LANES)
        return;
    // A queue that could not be had has to be missed by the first ray.
    void* queue = malloc(static_cast<size_t>(iPQSize) * sizeof(PQEntry));
    if (queue == nullptr)
        return;
    free(queue);
    Packing packing{.next = static_cast<PackedNode*>(aligned_alloc(
                        alignof(PackedNode), static_cast<size_t>(iNumNodes) * sizeof(PackedNode)))};
    if (packing.next == nullptr)
        return;
    packedRoot = pack(myObjectList, &packing);
    if (!packing.isEnclosed)
        releasePackedTree();
}

void releasePackedTree()
{
    free(const_cast<PackedNode*>(packedRoot));
    packedRoot = nullptr;
}
