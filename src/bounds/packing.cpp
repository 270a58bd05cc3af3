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

// Coordinates beyond this are left to the heap.
static constexpr double FARTHEST = 1e20;

// So few objects, grouped in a tenth of a second, are grouped for any picture; more only if there
// are as many pixels.
static constexpr int FEW_PRIMITIVES = 1 << 17;

// Runs of primitives that wait for their records: enough for the memory to answer meanwhile, few enough for a
// small cache.
static constexpr int PENDING = 32;

namespace
{
/// Primitives that follow each other in a list and have places in one packed node. The next one is fetched.
struct Filling {
    const Object* primitive;
    PackedNode* packed;
    std::uint32_t lanes; // of the next one on, four bits each: 1 more than the lane, 0 behind the last
};

/// The work of one packRecords.
struct Packing {
    PackedNode* nodes;
    Folded* folded;
    size_t count = 0;           // of nodes so far
    bool hasNumbers = true;     // all bounds so far are numbers
    Filling pending[PENDING]{}; // taken in turns
    size_t turn = 0;
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

static void fetch(const Object* record)
{
    __builtin_prefetch(record);
    __builtin_prefetch(&record->type);
}

/// Ends the turn of one run of primitives, whose next one is filled in. False if there was none.
static bool fillNext(Packing* packing)
{
    Filling& run = packing->pending[packing->turn++ % PENDING];
    if (run.lanes == 0)
        return false;
    const int lane = static_cast<int>(run.lanes & 15) - 1;
    packBounds(run.primitive, run.packed, lane, packing);
    run.packed->members[lane] = memberOf(run.primitive);
    run.lanes >>= 4;
    if (run.lanes != 0)
        fetch(run.primitive = run.primitive->next);
    return true;
}

/// Puts a run of primitives into the place of one that has ended.
static void fillLater(const Filling& run, Packing* packing)
{
    while (packing->pending[packing->turn % PENDING].lanes != 0)
        fillNext(packing);
    packing->pending[packing->turn++ % PENDING] = run;
    fetch(run.primitive);
}

static void fillAll(Packing* packing)
{
    for (int idle = 0; idle < PENDING;)
        idle = fillNext(packing) ? 0 : idle + 1;
}

namespace
{
/// A bounding node, or a primitive that need not be looked at: number `place` of run `run`.
struct Member {
    const Object* node; // null for a primitive
    int owner;          // the folded node right above it, by number, or -1
    int run, place;
};

/// What stands in one packed node: its members, and the nodes that gave up their place to theirs, with the
/// owners of these.
struct Members {
    Member list[LANES];
    int count = 0;
    int foldedOwners[MAX_FOLDED];
    int folded = 0;
    const Object* runs[LANES]; // the first primitive of each
    int runCount = 0;
};
} // namespace

static void addPrimitives(const Object* first, int count, int owner, Members* members)
{
    for (int place = 0; place < count; ++place)
        members->list[members->count++] = {nullptr, owner, members->runCount, place};
    members->runs[members->runCount++] = first;
}

static void addMembers(const Object* node, int owner, Members* members)
{
    const ChildList& children = childrenOf(node);
    if (children.primitives == children.count) {
        addPrimitives(children.first, children.count, owner, members);
        return;
    }
    for (const Object* member = children.first; member != nullptr; member = member->next)
        if (member->type == BOUNDING_NODE)
            members->list[members->count++] = {.node = member, .owner = owner, .run = 0, .place = 0};
        else
            addPrimitives(member, 1, owner, members);
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
        const Object* node = members.list[lane].node;
        if (node == nullptr || members.count - 1 + childrenOf(node).count > LANES)
            continue;
        if (const double surface = surfaceOf(node); surface > largest) {
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
        addMembers(folded.node, members.folded++, &members);
    }
    std::partition(members.list, members.list + members.count,
                   [](const Member& member) { return member.node == nullptr; });
    return members;
}

/// Packs `node`, and its subtrees behind it. Its primitives, whose records lie anywhere in memory, are asked
/// for and filled in later.
static PackedMember pack(const Object* node, Packing* packing)
{
    PackedNode* packed = packing->nodes + packing->count;
    Folded* folded = packing->folded + packing->count++;
    *folded = {};
    clearNode(packed);
    const Members members = gatherMembers(node);
    std::uint32_t lanes[LANES]{}; // of each run
    for (int lane = 0; lane < members.count; ++lane) {
        const Member& member = members.list[lane];
        for (int owner = member.owner; owner >= 0; owner = members.foldedOwners[owner])
            folded->lanes[owner] |= static_cast<std::uint8_t>(1 << lane);
        if (member.node == nullptr)
            lanes[member.run] |= static_cast<std::uint32_t>(lane + 1) << 4 * member.place;
    }
    for (int run = 0; run < members.runCount; ++run)
        fillLater({members.runs[run], packed, lanes[run]}, packing);
    for (int lane = 0; lane < members.count; ++lane)
        if (const Object* inner = members.list[lane].node; inner != nullptr) {
            packBounds(inner, packed, lane, packing);
            packed->members[lane] = pack(inner, packing);
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
    if (isWalkable()) {
        if (groupingPays() && (packedReach = std::min(originsWithRoom(), FARTHEST)) > 0.0) {
            free(takeWorkspace());
            packedRoot = groupBySurface(myObjectList);
        }
        packedIsGrouped = packedRoot != 0;
        if (!packedIsGrouped)
            packRecords();
    }
    free(takeWorkspace());
}

/// The first place for a node in a memory.
static PackedNode* firstNode(void* memory)
{
    const auto address = reinterpret_cast<uintptr_t>(memory);
    return reinterpret_cast<PackedNode*>((address + alignof(PackedNode) - 1) / alignof(PackedNode) *
                                         alignof(PackedNode));
}

void packRecords()
{
    releasePackedTree();
    packedEncloses = true;
    packedReach = FARTHEST;
    const auto count = static_cast<size_t>(iNumNodes);
    packedMemory = takeWorkspace();
    void* grown =
        realloc(packedMemory, (count + 1) * sizeof(PackedNode)); // one more, to begin at a cache line
    if (grown != nullptr)
        packedMemory = grown;
    packedFolded = static_cast<Folded*>(malloc(count * sizeof(Folded)));
    if (grown == nullptr || packedFolded == nullptr) {
        releasePackedTree();
        return;
    }
    Packing packing{.nodes = firstNode(packedMemory), .folded = packedFolded};
    packedRoot = pack(myObjectList, &packing);
    fillAll(&packing);
    if (!packing.hasNumbers)
        releasePackedTree();
}
