#include "bounds/grouping.h"

#include "bounds/bound.h"
#include "bounds/sieve.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

// Primitives are grouped from the top: a range of them is cut in two between equal slices along an axis,
// where the sum over both sides of surface times number of tests is least, until one test is enough for it.
// See Wald, "On fast Construction of SAH-based Bounding Volume Hierarchies", 2007. Then, from below, it is
// known what a branch of that tree costs at least as one member of a node, as two at most, and so on: the sum
// of the surfaces of all that is tested in it. So the nodes are those of least cost. See Ylitie, Karras and
// Laine, "Efficient Incoherent Ray Traversal on GPUs Through Compressed Wide BVHs", 2017.

static constexpr int SLICES = 16;

// A range of so few items is not cut: they stand apart, or in a node.
static constexpr int FEW_ITEMS = 3;

// Of the surface around all: an item with more is large.
static constexpr double LARGE = 0.25;

// Cuts that lead to a branch at most; then halves are made, so that no scene makes the recursion deep.
static constexpr int MOST_CUTS = 100;

// A cost is no higher than that of a surface as large, so that sums of them stay floats.
static constexpr double MOST_COST = 1e30;

namespace
{
using Four = float __attribute__((vector_size(16)));

/// A primitive and its bounds: lower x, y, z, upper x, y, z.
struct Item {
    float bounds[6];
    PackedMember member;
};

/// Bounds, in the lanes that two loads from an Item give: lower x, y, z, any; any, upper x, y, z.
struct Box {
    Four low = {INFINITE, INFINITE, INFINITE, INFINITE};
    Four high = {-INFINITE, -INFINITE, -INFINITE, -INFINITE};
};

struct Slice {
    Box box;
    int weight = 0;
};

/// How many slices there are, where they begin, and how many to a length.
struct Slicing {
    int count;
    float origin[3], scale[3];
};

struct Cut {
    int axis = -1; // -1 is none
    int slice = 0; // the first on the upper side
};

/// A branch of the tree of cuts: consecutive items. The branch of its lower half stands right behind it.
struct alignas(64) Branch {
    float bounds[6];
    int first, count;
    int upper;              // how far behind it the branch of its upper half stands; 0 at an end
    float costs[LANES - 1]; // the least as one member of a node, as two at most, ..
};

/// Items that become a member of a node: those of a branch, or one that stands apart, with no branch.
struct Part {
    const Branch* branch;
    int first, count;
};

struct Parts {
    int count = 0;
    Part list[LANES];
};

/// What a tree is made of, and the block that it is packed into.
struct Work {
    Item* items;
    Branch* branches; // the next one
    char* memory;
    size_t used;
};
} // namespace

static Four load(const float* from)
{
    Four four;
    memcpy(&four, from, sizeof four);
    return four;
}

static void enclose(Box* box, const Box& other)
{
    box->low = other.low < box->low ? other.low : box->low;
    box->high = box->high < other.high ? other.high : box->high;
}

static Box boxOf(const float* bounds)
{
    return {load(bounds), load(bounds + 2)};
}

/// Half the surface of a box, 0 for one around nothing.
static double surfaceOf(const Box& box)
{
    const double x = static_cast<double>(box.high[1]) - box.low[0];
    const double y = static_cast<double>(box.high[2]) - box.low[1];
    const double z = static_cast<double>(box.high[3]) - box.low[2];
    return x >= 0.0 ? x * y + y * z + z * x : 0.0;
}

/// Twice the centre of an item.
static float center2(const Item& item, int axis)
{
    return item.bounds[axis] + item.bounds[3 + axis];
}

static SieveKind sieveFor(const Item& item)
{
    return sieveFor(typeOf(item.member));
}

/// How much of a sieve an item takes; one that no sieve can hold is a test by itself.
static int weightOf(const Item& item)
{
    return sieveFor(item) != NO_SIEVE ? 1 : LANES;
}

static int testsFor(int weight)
{
    return (weight + LANES - 1) / LANES;
}

static int sliceOf(const Item& item, const Slicing& slicing, int axis)
{
    const auto slice = static_cast<int>((center2(item, axis) - slicing.origin[axis]) * slicing.scale[axis]);
    return std::min(slice, slicing.count - 1);
}

/// The cut of least cost between `count` slices that leaves something on both sides.
static Cut bestCut(const Slice (&slices)[3][SLICES], int count)
{
    Cut best;
    double least = std::numeric_limits<double>::infinity();
    for (int axis = 0; axis < 3; ++axis) {
        double surfaces[SLICES]; // of all slices from this one on
        int weights[SLICES];
        Slice upper, lower;
        for (int i = count - 1; i > 0; --i) {
            enclose(&upper.box, slices[axis][i].box);
            weights[i] = upper.weight += slices[axis][i].weight;
            surfaces[i] = surfaceOf(upper.box);
        }
        for (int i = 1; i < count; ++i) {
            enclose(&lower.box, slices[axis][i - 1].box);
            lower.weight += slices[axis][i - 1].weight;
            if (lower.weight == 0 || weights[i] == 0)
                continue;
            const double cost =
                surfaceOf(lower.box) * testsFor(lower.weight) + surfaces[i] * testsFor(weights[i]);
            if (cost < least) {
                least = cost;
                best = {.axis = axis, .slice = i};
            }
        }
    }
    return best;
}

/// Slices the room of `count` items.
static Slicing slicingOf(const Item* items, int count)
{
    float least[3] = {INFINITE, INFINITE, INFINITE}, most[3] = {-INFINITE, -INFINITE, -INFINITE};
    for (int i = 0; i < count; ++i)
        for (int axis = 0; axis < 3; ++axis) {
            const float center = center2(items[i], axis);
            least[axis] = std::min(least[axis], center);
            most[axis] = std::max(most[axis], center);
        }
    Slicing slicing = {.count = std::min(count, SLICES), .origin = {}, .scale = {}};
    for (int axis = 0; axis < 3; ++axis) {
        const float extent = most[axis] - least[axis];
        slicing.origin[axis] = least[axis];
        slicing.scale[axis] = extent > 1e-30F ? static_cast<float>(slicing.count) / extent : 0.0F;
    }
    return slicing;
}

/// Cuts `count` items, two at least, where it costs least, and returns how many are on the lower side, which
/// comes first. Items whose centres cannot be told apart are shared.
static int split(Item* items, int count)
{
    if (count == 2)
        return 1;
    const Slicing slicing = slicingOf(items, count);
    Slice slices[3][SLICES];
    for (int i = 0; i < count; ++i) {
        const Box box = boxOf(items[i].bounds);
        const int weight = weightOf(items[i]);
        for (int axis = 0; axis < 3; ++axis) {
            Slice& slice = slices[axis][sliceOf(items[i], slicing, axis)];
            enclose(&slice.box, box);
            slice.weight += weight;
        }
    }
    const Cut cut = bestCut(slices, slicing.count);
    if (cut.axis < 0)
        return count / 2;
    const auto isLower = [&](const Item& item) { return sliceOf(item, slicing, cut.axis) < cut.slice; };
    return static_cast<int>(std::partition(items, items + count, isLower) - items);
}

/// The kind of sieve that can hold all of the items.
static SieveKind sieveFor(const Item* items, int count)
{
    const SieveKind kind = count <= LANES ? sieveFor(*items) : NO_SIEVE;
    for (int i = 1; kind != NO_SIEVE && i < count; ++i)
        if (sieveFor(items[i]) != kind)
            return NO_SIEVE;
    return kind;
}

/// How many of `lanes` lanes the lower half of a branch takes at best.
static int lowerShare(const Branch* branch, int lanes)
{
    const float *lower = branch[1].costs, *upper = branch[branch->upper].costs;
    int best = 1;
    for (int share = 2; share < lanes; ++share)
        if (lower[share - 1] + upper[lanes - share - 1] < lower[best - 1] + upper[lanes - best - 1])
            best = share;
    return best;
}

static float costOf(const Box& box)
{
    return static_cast<float>(std::min(surfaceOf(box), MOST_COST));
}

/// What a branch costs as `lanes` members at most if it is taken apart.
static float costApart(const Item* items, const Branch* branch, int lanes)
{
    if (branch->upper != 0) {
        const int share = lowerShare(branch, lanes);
        return branch[1].costs[share - 1] + branch[branch->upper].costs[lanes - share - 1];
    }
    if (branch->count > lanes)
        return INFINITE;
    float cost = 0.0F;
    for (int i = 0; i < branch->count; ++i)
        cost += costOf(boxOf(items[branch->first + i].bounds));
    return cost;
}

/// Makes the branch of `count` items, `depth` below the root, and all below it.
static const Branch* grow(Work* work, int first, int count, int depth)
{
    Branch* const branch = work->branches++;
    *branch = {.bounds = {}, .first = first, .count = count, .upper = 0, .costs = {}};
    const Item* const items = work->items;
    const bool isOneTest = count == 1 || sieveFor(items + first, count) != NO_SIEVE;
    Box box;
    if (isOneTest || count <= FEW_ITEMS) {
        for (int i = first; i < first + count; ++i)
            enclose(&box, boxOf(items[i].bounds));
    } else {
        const int lower = depth < MOST_CUTS ? split(work->items + first, count) : count / 2;
        enclose(&box, boxOf(grow(work, first, lower, depth + 1)->bounds));
        const Branch* const upper = grow(work, first + lower, count - lower, depth + 1);
        enclose(&box, boxOf(upper->bounds));
        branch->upper = static_cast<int>(upper - branch);
    }
    for (int axis = 0; axis < 3; ++axis) {
        branch->bounds[axis] = box.low[axis];
        branch->bounds[3 + axis] = box.high[1 + axis];
    }
    branch->costs[0] = costOf(box) + (isOneTest ? 0.0F : costApart(items, branch, LANES));
    for (int lanes = 2; lanes < LANES; ++lanes)
        branch->costs[lanes - 1] = std::min(branch->costs[lanes - 2], costApart(items, branch, lanes));
    return branch;
}

static void addBranch(const Item* items, const Branch* branch, int lanes, Parts* parts);

/// Adds what a branch consists of, as `lanes` members at most.
static void addApart(const Item* items, const Branch* branch, int lanes, Parts* parts)
{
    if (branch->upper != 0) {
        const int share = lowerShare(branch, lanes);
        addBranch(items, branch + 1, share, parts);
        addBranch(items, branch + branch->upper, lanes - share, parts);
        return;
    }
    for (int i = 0; i < branch->count; ++i)
        parts->list[parts->count++] = {.branch = nullptr, .first = branch->first + i, .count = 1};
}

/// Adds a branch as `lanes` members at most, fewer than a node has.
static void addBranch(const Item* items, const Branch* branch, int lanes, Parts* parts)
{
    while (lanes > 1 && costApart(items, branch, lanes) > branch->costs[lanes - 1])
        --lanes;
    if (lanes > 1 || branch->count == 1)
        addApart(items, branch, lanes, parts);
    else
        parts->list[parts->count++] = {.branch = branch, .first = branch->first, .count = branch->count};
}

static void* take(Work* work, size_t size)
{
    return work->memory + std::exchange(work->used, work->used + size);
}

template <class Sieve>
static PackedMember packSieve(Work* work, const Branch& branch, SieveKind kind)
{
    const Object* objects[LANES];
    for (int i = 0; i < branch.count; ++i)
        objects[i] = objectOf(work->items[branch.first + i].member);
    auto* sieve = static_cast<Sieve*>(take(work, sizeof(Sieve)));
    fillSieve(sieve, objects, branch.count);
    return memberOf(sieve, kind);
}

static PackedMember packNode(Work* work, Parts* parts);

static PackedMember packBranch(Work* work, const Branch& branch)
{
    const SieveKind kind = sieveFor(work->items + branch.first, branch.count);
    switch (kind) {
    case FACE_SIEVE:
        return packSieve<FaceSieve>(work, branch, kind);
    case BALL_SIEVE:
        return packSieve<BallSieve>(work, branch, kind);
    case PLANE_SIEVE:
        return packSieve<PlaneSieve>(work, branch, kind);
    default:
        Parts parts;
        addApart(work->items, &branch, LANES, &parts);
        return packNode(work, &parts);
    }
}

/// Packs a node, and what is below it behind it: primitives, sieves, nodes, each kind by size.
static PackedMember packNode(Work* work, Parts* parts)
{
    auto* node = static_cast<PackedNode*>(take(work, sizeof(PackedNode)));
    clearNode(node);
    const auto orderOf = [&](const Part& part) {
        const bool isNode = part.count > 1 && sieveFor(work->items + part.first, part.count) == NO_SIEVE;
        return std::pair(isNode, part.count);
    };
    std::sort(parts->list, parts->list + parts->count,
              [&](const Part& a, const Part& b) { return orderOf(a) < orderOf(b); });
    for (int lane = 0; lane < parts->count; ++lane) {
        const auto& [branch, first, count] = parts->list[lane];
        const Item& item = work->items[first];
        for (int i = 0; i < 6; ++i)
            node->planes[i][lane] = branch == nullptr ? item.bounds[i] : branch->bounds[i];
        node->members[lane] = branch == nullptr ? item.member : packBranch(work, *branch);
    }
    return memberOf(node, 0);
}

/// Writes the primitives below `node` as items. False if a bound is not a number or stands the wrong way.
static bool collect(const Object* node, Item** next)
{
    for (const Object* member = childrenOf(node).first; member != nullptr; member = member->next) {
        if (member->type == BOUNDING_NODE) {
            if (!collect(member, next))
                return false;
            continue;
        }
        Item& item = *(*next)++;
        item.member = memberOf(member);
        for (int axis = 0; axis < 3; ++axis) {
            if (!(member->boundsMin[axis] <= member->boundsMax[axis]))
                return false;
            item.bounds[axis] = packedBound(member->boundsMin[axis]);
            item.bounds[3 + axis] = packedBound(member->boundsMax[axis]);
        }
    }
    return true;
}

/// Puts those of the items to the front that are nearly as large as all the others together, like planes and
/// grounds, which would spoil the groups that they are in. Returns the number of those for which a node has
/// lanes.
static int bringLarge(Item* items, int count)
{
    int large = 0;
    for (int found = 1; found > 0; large += found) {
        Box all;
        for (int i = large; i < count; ++i)
            enclose(&all, boxOf(items[i].bounds));
        const double least = surfaceOf(all) * LARGE;
        const auto isLarge = [&](const Item& item) { return surfaceOf(boxOf(item.bounds)) > least; };
        found = static_cast<int>(std::partition(items + large, items + count, isLarge) - (items + large));
        if (large + found >= std::min(LANES, count))
            break;
    }
    std::sort(items, items + large,
              [](const Item& a, const Item& b) { return typeOf(a.member) < typeOf(b.member); });
    return large;
}

/// Packs the root over `count` items, and all below it. The large ones stand apart from the others, those of
/// one kind of sieve as one member.
static PackedMember packRoot(Work* work, int count)
{
    const int large = bringLarge(work->items, count);
    Parts parts;
    for (int first = 0, size; first < large; first += size) {
        size = 1;
        while (first + size < large && sieveFor(work->items + first, size + 1) != NO_SIEVE)
            ++size;
        addBranch(work->items, grow(work, first, size, 0), 1, &parts);
    }
    const Branch* const rest = grow(work, large, count - large, 0);
    if (large == 0 && sieveFor(work->items, count) == NO_SIEVE)
        addApart(work->items, rest, LANES, &parts);
    else
        addBranch(work->items, rest, std::min(LANES - parts.count, LANES - 1), &parts);
    return packNode(work, &parts);
}

PackedMember groupBySurface(const Object* root)
{
    // Nodes and sieves have two members or more, so there are fewer of them than primitives, and the largest
    // is a sieve; only a root may have a sieve alone, for which there is room too. Of branches there are
    // fewer than two for each primitive.
    const int count = childrenOf(root).primitives;
    const auto size = static_cast<size_t>(count);
    if (size > SIZE_MAX / sizeof(FaceSieve))
        return 0;
    auto* const branches = static_cast<Branch*>(aligned_alloc(alignof(Branch), 2 * size * sizeof(Branch)));
    Work work = {.items = static_cast<Item*>(malloc(size * sizeof(Item))),
                 .branches = branches,
                 .memory = static_cast<char*>(aligned_alloc(alignof(FaceSieve), size * sizeof(FaceSieve))),
                 .used = 0};
    PackedMember packed = 0;
    Item* next = work.items;
    if (work.items != nullptr && branches != nullptr && work.memory != nullptr && collect(root, &next)) {
        packed = packRoot(&work, count);
        packedMemory = work.memory;
    } else
        free(work.memory);
    free(work.items);
    free(branches);
    return packed;
}
