#include "bounds/packed.h"

#include "bounds/bound.h"
#include "bounds/pqueue.h"
#include "core/settings.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

constinit PackedMember packedRoot = 0;

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
    bool hasNumbers = true; // all bounds so far are numbers
};
} // namespace

/// Packs the bounds of one member. Bounds that stand the wrong way round, of a record that nothing can hit,
/// count as turned.
static void packBounds(const Object* member, PackedNode* packed, int lane, Packing* packing)
{
    for (int axis = 0; axis < 3; ++axis) {
        const auto [low, high] = std::minmax(member->boundsMin[axis], member->boundsMax[axis]);
        packing->hasNumbers = packing->hasNumbers && low <= high;
        packed->planes[axis][lane] = packedBound(low);
        packed->planes[3 + axis][lane] = packedBound(high);
    }
}

namespace
{
/// The members that one packed node gets.
struct Members {
    const Object* objects[LANES];
    int count = 0, folded = 0;
};
} // namespace

static void addMembers(const Object* node, Members* members)
{
    for (const Object* member = childrenOf(node).first; member != nullptr; member = member->next)
        members->objects[members->count++] = member;
}

/// The members of `node`; as long as there is room for them, those of a member stand in its place.
static Members gatherMembers(const Object* node)
{
    Members members;
    addMembers(node, &members);
    for (int i = 0; i < members.count;) {
        const Object* member = members.objects[i];
        if (member->type != BOUNDING_NODE || members.count - 1 + childrenOf(member).count > LANES) {
            ++i;
            continue;
        }
        members.objects[i] = members.objects[--members.count];
        addMembers(member, &members);
        ++members.folded;
        i = 0;
    }
    return members;
}

/// Packs `node`, and its subtrees behind it.
static PackedMember pack(const Object* node, Packing* packing)
{
    PackedNode* packed = packing->next++;
    for (int row = 0; row < 6; ++row)
        for (float& plane : packed->planes[row])
            plane = row < 3 ? INFINITE : -INFINITE;
    const Members members = gatherMembers(node);
    for (int lane = 0; lane < members.count; ++lane) {
        const Object* member = members.objects[lane];
        packBounds(member, packed, lane, packing);
        packed->members[lane] = member->type == BOUNDING_NODE ? pack(member, packing) : memberOf(member);
    }
    return memberOf(packed, members.folded);
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
    if (!packing.hasNumbers)
        releasePackedTree();
}

void releasePackedTree()
{
    free(const_cast<PackedNode*>(nodeOf(packedRoot)));
    packedRoot = 0;
}
