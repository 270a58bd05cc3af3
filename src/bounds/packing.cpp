#include "bounds/packing.h"

#include "bounds/bound.h"
#include "bounds/grouping.h"
#include "bounds/packed.h"
#include "bounds/pqueue.h"
#include "bounds/room.h"
#include "core/settings.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

// The first members of a node that are fetched ahead; nodes of more are rare.
static constexpr int FETCHED = 4;

// Coordinates beyond this are left to the heap.
static constexpr double FARTHEST = 1e20;

// So few objects, grouped in less than a tenth of a second, are grouped for any picture; more only if there
// are as many pixels.
static constexpr int FEW_PRIMITIVES = 1 << 17;

namespace
{
/// The work of one packRecords.
struct Packing {
    PackedNode* nodes;
    Folded* folded;
    size_t count = 0;       // of nodes so far
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
        packedEncloses = packedEncloses && member->boundsMin[axis] <= member->boundsMax[axis];
        packed->planes[axis][lane] = packedBound(low);
        packed->planes[3 + axis][lane] = packedBound(high);
    }
}

namespace
{
struct Member {
    const Object* object;
    int owner; // the folded node right above it, by number, or -1
};

/// What stands in one packed node: its members, and the nodes that gave up their place to theirs, with the
/// owners of these.
struct Members {
    Member list[LANES];
    int count = 0;
    int foldedOwners[MAX_FOLDED];
    int folded = 0;
};
} // namespace

static void addMembers(const Object* node, int owner, Members* members)
{
    for (const Object* member = childrenOf(node).first; member != nullptr; member = member->next)
        members->list[members->count++] = {member, owner};
}

/// Half the surface of the bounds.
static double surfaceOf(const Object* object)
{
    double e[3];
    for (int axis = 0; axis < 3; ++axis)
        e[axis] = object->boundsMax[axis] - object->boundsMin[axis];
    return e[0] * e[1] + e[1] * e[2] + e[2] * e[0];
}

/// The lane of the node with the largest surface among those whose members have room, or -1.
static int laneToFold(const Members& members)
{
    int found = -1;
    double largest = -1.0;
    for (int lane = 0; lane < members.count; ++lane) {
        const Object* object = members.list[lane].object;
        if (object->type != BOUNDING_NODE || members.count - 1 + childrenOf(object).count > LANES)
            continue;
        if (const double surface = surfaceOf(object); surface > largest) {
            largest = surface;
            found = lane;
        }
    }
    return found;
}

/// The members of `node`, primitives first; as long as there is room for them, those of a member stand in its
/// place.
static Members gatherMembers(const Object* node)
{
    Members members;
    addMembers(node, -1, &members);
    for (int lane; (lane = laneToFold(members)) >= 0;) {
        const Member folded = members.list[lane];
        members.foldedOwners[members.folded] = folded.owner;
        members.list[lane] = members.list[--members.count];
        addMembers(folded.object, members.folded++, &members);
    }
    std::partition(members.list, members.list + members.count,
                   [](const Member& member) { return member.object->type != BOUNDING_NODE; });
    return members;
}

/// Packs `node`, and its subtrees behind it.
static PackedMember pack(const Object* node, Packing* packing)
{
    PackedNode* packed = packing->nodes + packing->count;
    Folded* folded = packing->folded + packing->count++;
    *folded = {};
    clearNode(packed);
    const Members members = gatherMembers(node);
    // The records lie anywhere in memory: ask for the members of all lanes before going down the first, in
    // steps along their lists, so that one is under way while the next is asked for.
    const Object* ahead[LANES];
    for (int lane = 0; lane < members.count; ++lane) {
        const Object* member = members.list[lane].object;
        ahead[lane] = member->type == BOUNDING_NODE ? childrenOf(member).first : nullptr;
    }
    for (int step = 0; step < FETCHED; ++step)
        for (int lane = 0; lane < members.count; ++lane)
            if (const Object* record = ahead[lane]; record != nullptr) {
                if (step > 0)
                    record = ahead[lane] = record->next;
                if (record == nullptr)
                    continue;
                __builtin_prefetch(record);
                __builtin_prefetch(&record->type);
            }
    for (int lane = 0; lane < members.count; ++lane) {
        const auto [member, nearest] = members.list[lane];
        packBounds(member, packed, lane, packing);
        for (int owner = nearest; owner >= 0; owner = members.foldedOwners[owner])
            folded->lanes[owner] |= static_cast<std::uint8_t>(1 << lane);
        packed->members[lane] = member->type == BOUNDING_NODE ? pack(member, packing) : memberOf(member);
    }
    return memberOf(packed, members.folded);
}

/// Whether the rays of the picture are enough to win back the time of the grouping.
static bool groupingPays()
{
    return childrenOf(myObjectList).primitives <=
           std::max<std::int64_t>(FEW_PRIMITIVES, std::int64_t{myDisplay.width} * myDisplay.height);
}

/// Whether there is a tree that the walk can do without the heap.
static bool isWalkable()
{
    if (myObjectList == nullptr || myObjectList->type != BOUNDING_NODE || bunching > LANES)
        return false;
    // A queue that could not be had has to be missed by the first ray.
    void* queue = malloc(static_cast<size_t>(iPQSize) * sizeof(PQEntry));
    free(queue);
    return queue != nullptr;
}

void packTree()
{
    releasePackedTree();
    if (!isWalkable())
        return;
    if (groupingPays() && (packedReach = std::min(originsWithRoom(), FARTHEST)) > 0.0)
        packedRoot = groupBySurface(myObjectList);
    packedIsGrouped = packedRoot != 0;
    if (!packedIsGrouped)
        packRecords();
}

void packRecords()
{
    releasePackedTree();
    packedEncloses = true;
    packedReach = FARTHEST;
    const auto count = static_cast<size_t>(iNumNodes);
    Packing packing{
        .nodes = static_cast<PackedNode*>(aligned_alloc(alignof(PackedNode), count * sizeof(PackedNode))),
        .folded = static_cast<Folded*>(malloc(count * sizeof(Folded)))};
    packedFolded = packing.folded;
    if (packing.nodes == nullptr || packing.folded == nullptr) {
        free(packing.nodes);
        return;
    }
    packedRoot = pack(myObjectList, &packing);
    if (!packing.hasNumbers)
        releasePackedTree();
}
