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
// where the sum over both sides of surface times number of nodes is least; a node cuts the range of the
// largest surface until it has eight. See Wald, "On fast Construction of SAH-based Bounding Volume
// Hierarchies", 2007, and Wald, Benthin and Boulos, "Getting Rid of Packets", 2008.

static constexpr int SLICES = 16;

// A range of so few primitives is better off in the lanes that a node has left than in a sieve.
static constexpr int FEW_ITEMS = 4;

// Of the surface around all: an item with more is large.
static constexpr double LARGE = 0.25;

// In place of the surface of a range that is to be no larger or smaller.
static constexpr double APART = -1.0;

namespace
{
using Four = float __attribute__((vector_size(16)));

/// A primitive and its bounds: lower x, y, z, upper x, y, z.
struct Item {
    float bounds[6];
    const Object* object;
};

/// Bounds, in the lanes that two loads from an Item give: lower x, y, z, any; any, upper x, y, z.
struct Box {
    Four low = {INFINITE, INFINITE, INFINITE, INFINITE};
    Four high = {-INFINITE, -INFINITE, -INFINITE, -INFINITE};
};

/// Consecutive items.
struct Range {
    Item* first;
    int count;
    double surface;
};

struct Slice {
    Box box;
    int count = 0;
};

/// Where slices begin, and how many there are to a length.
struct Slicing {
    float origin[3], scale[3];
};

struct Cut {
    int axis = -1;               // -1 is none
    int slice = 0;               // the first on the upper side
    double lower = 0, upper = 0; // surfaces of the sides
};

/// The block that one call fills.
struct Block {
    char* memory;
    size_t used = 0;
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

static Box boxOf(const Item& item)
{
    return {load(item.bounds), load(item.bounds + 2)};
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

static int nodesFor(int items)
{
    return (items + LANES - 1) / LANES;
}

static int sliceOf(const Item& item, const Slicing& slicing, int axis)
{
    const auto slice = static_cast<int>((center2(item, axis) - slicing.origin[axis]) * slicing.scale[axis]);
    return std::min(slice, SLICES - 1);
}

/// The cut of least cost between slices that leaves something on both sides.
static Cut bestCut(const Slice (&slices)[3][SLICES])
{
    Cut best;
    double least = std::numeric_limits<double>::infinity();
    for (int axis = 0; axis < 3; ++axis) {
        double surfaces[SLICES]; // of all slices from this one on
        int counts[SLICES];
        Slice upper, lower;
        for (int i = SLICES - 1; i > 0; --i) {
            enclose(&upper.box, slices[axis][i].box);
            counts[i] = upper.count += slices[axis][i].count;
            surfaces[i] = surfaceOf(upper.box);
        }
        for (int i = 1; i < SLICES; ++i) {
            enclose(&lower.box, slices[axis][i - 1].box);
            lower.count += slices[axis][i - 1].count;
            if (lower.count == 0 || counts[i] == 0)
                continue;
            const double surface = surfaceOf(lower.box);
            const double cost = surface * nodesFor(lower.count) + surfaces[i] * nodesFor(counts[i]);
            if (cost < least) {
                least = cost;
                best = {.axis = axis, .slice = i, .lower = surface, .upper = surfaces[i]};
            }
        }
    }
    return best;
}

/// Cuts the slices of `range`.
static Slicing slicingOf(const Range& range)
{
    float least[3] = {INFINITE, INFINITE, INFINITE}, most[3] = {-INFINITE, -INFINITE, -INFINITE};
    for (int i = 0; i < range.count; ++i)
        for (int axis = 0; axis < 3; ++axis) {
            const float center = center2(range.first[i], axis);
            least[axis] = std::min(least[axis], center);
            most[axis] = std::max(most[axis], center);
        }
    Slicing slicing;
    for (int axis = 0; axis < 3; ++axis) {
        const float extent = most[axis] - least[axis];
        slicing.origin[axis] = least[axis];
        slicing.scale[axis] = extent > 1e-30F ? static_cast<float>(SLICES) / extent : 0.0F;
    }
    return slicing;
}

/// Splits `range`, of two items at least, where it costs least: `range` keeps the lower side. Items whose
/// centres cannot be told apart are shared.
static Range split(Range* range)
{
    const Slicing slicing = slicingOf(*range);
    Slice slices[3][SLICES];
    for (int i = 0; i < range->count; ++i) {
        const Item& item = range->first[i];
        const Box box = boxOf(item);
        for (int axis = 0; axis < 3; ++axis) {
            Slice& slice = slices[axis][sliceOf(item, slicing, axis)];
            enclose(&slice.box, box);
            ++slice.count;
        }
    }
    const Cut cut = bestCut(slices);
    int lower = range->count / 2;
    if (cut.axis >= 0) {
        const auto isLower = [&](const Item& item) { return sliceOf(item, slicing, cut.axis) < cut.slice; };
        lower = static_cast<int>(std::partition(range->first, range->first + range->count, isLower) -
                                 range->first);
    }
    const Range upper = {.first = range->first + lower,
                         .count = range->count - lower,
                         .surface = cut.axis >= 0 ? cut.upper : range->surface};
    range->count = lower;
    if (cut.axis >= 0)
        range->surface = cut.lower;
    return upper;
}

/// The kind of sieve that can hold `range`.
static SieveKind sieveFor(const Range& range)
{
    const SieveKind kind = sieveFor(range.first->object->type);
    for (int i = 1; i < range.count; ++i)
        if (sieveFor(range.first[i].object->type) != kind)
            return NO_SIEVE;
    return kind;
}

static void* take(Block* block, size_t size)
{
    return block->memory + std::exchange(block->used, block->used + size);
}

template <class Sieve>
static PackedMember makeSieve(const Range& range, SieveKind kind, Block* block)
{
    const Object* objects[LANES];
    for (int i = 0; i < range.count; ++i)
        objects[i] = range.first[i].object;
    auto* sieve = static_cast<Sieve*>(take(block, sizeof(Sieve)));
    fillSieve(sieve, objects, range.count);
    return memberOf(sieve, kind);
}

static void setLane(PackedNode* node, int lane, const Range& range, PackedMember member)
{
    Box box;
    for (int i = 0; i < range.count; ++i)
        enclose(&box, boxOf(range.first[i]));
    for (int axis = 0; axis < 3; ++axis) {
        node->planes[axis][lane] = box.low[axis];
        node->planes[3 + axis][lane] = box.high[1 + axis];
    }
    node->members[lane] = member;
}

static PackedMember makeSieve(const Range& range, SieveKind kind, Block* block)
{
    switch (kind) {
    case FACE_SIEVE:
        return makeSieve<FaceSieve>(range, kind, block);
    case BALL_SIEVE:
        return makeSieve<BallSieve>(range, kind, block);
    default:
        return makeSieve<PlaneSieve>(range, kind, block);
    }
}

/// Packs the items of `range` into a node, and what is below it behind it. The first `large` of them stand
/// apart from the others, those of one kind of sieve in one lane.
static PackedMember group(const Range& range, int large, Block* block)
{
    auto* node = static_cast<PackedNode*>(take(block, sizeof(PackedNode)));
    clearNode(node);
    Range parts[LANES];
    int count = 0;
    for (Item* next = range.first; next < range.first + large; next += parts[count++].count) {
        const SieveKind kind = sieveFor(next->object->type);
        Range& part = parts[count] = {next, 1, APART};
        while (kind != NO_SIEVE && next + part.count < range.first + large &&
               sieveFor(next[part.count].object->type) == kind)
            ++part.count;
    }
    parts[count++] = {range.first + large, range.count - large, range.surface};
    while (count < LANES) {
        Range* largest = nullptr;
        for (Range* part = parts; part < parts + count; ++part)
            if (part->count > LANES && (largest == nullptr || part->surface > largest->surface))
                largest = part;
        if (largest == nullptr)
            break;
        parts[count++] = split(largest);
    }
    // First the items of small parts, as long as there are lanes for them; then sieves, then nodes.
    std::sort(parts, parts + count, [](const Range& a, const Range& b) { return a.count < b.count; });
    SieveKind kinds[LANES];
    int lane = 0, left = LANES - count;
    bool isOpen[LANES];
    for (int i = 0; i < count; ++i) {
        const auto& [first, size, surface] = parts[i];
        kinds[i] = size <= LANES ? sieveFor(parts[i]) : NO_SIEVE;
        isOpen[i] = size == 1 ||
                    (size - 1 <= left && (kinds[i] == NO_SIEVE || (size <= FEW_ITEMS && surface != APART)));
        if (!isOpen[i])
            continue;
        left -= size - 1;
        for (int item = 0; item < size; ++item)
            setLane(node, lane++, {first + item, 1, 0.0}, memberOf(first[item].object));
    }
    for (int i = 0; i < count; ++i)
        if (!isOpen[i] && kinds[i] != NO_SIEVE)
            setLane(node, lane++, parts[i], makeSieve(parts[i], kinds[i], block));
    for (int i = 0; i < count; ++i)
        if (!isOpen[i] && kinds[i] == NO_SIEVE)
            setLane(node, lane++, parts[i], group(parts[i], 0, block));
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
        item.object = member;
        for (int axis = 0; axis < 3; ++axis) {
            if (!(member->boundsMin[axis] <= member->boundsMax[axis]))
                return false;
            item.bounds[axis] = packedBound(member->boundsMin[axis]);
            item.bounds[3 + axis] = packedBound(member->boundsMax[axis]);
        }
    }
    return true;
}

/// Puts those items to the front of `range` that are nearly as large as all the others together, like planes
/// and grounds, which would spoil the groups that they are in. Returns the number of those for which a node
/// has lanes.
static int bringLarge(const Range& range)
{
    int large = 0;
    for (int found = 1; found > 0; large += found) {
        Box all;
        for (int i = large; i < range.count; ++i)
            enclose(&all, boxOf(range.first[i]));
        const double least = surfaceOf(all) * LARGE;
        Item* const rest = range.first + large;
        Item* const end = std::partition(rest, range.first + range.count,
                                         [&](const Item& item) { return surfaceOf(boxOf(item)) > least; });
        found = static_cast<int>(end - rest);
        if (large + found >= std::min(LANES, range.count))
            break;
    }
    std::sort(range.first, range.first + large,
              [](const Item& a, const Item& b) { return a.object->type < b.object->type; });
    return large;
}

PackedMember groupBySurface(const Object* root)
{
    // Of what has two members or more there is less than there are primitives; the largest is a sieve.
    const int count = childrenOf(root).primitives;
    const auto size = static_cast<size_t>(count);
    if (size > SIZE_MAX / sizeof(FaceSieve))
        return 0;
    auto* items = static_cast<Item*>(malloc(size * sizeof(Item)));
    Block block = {.memory = static_cast<char*>(aligned_alloc(alignof(FaceSieve), size * sizeof(FaceSieve)))};
    PackedMember packed = 0;
    Item* next = items;
    if (items != nullptr && block.memory != nullptr && collect(root, &next))
        packed = group({items, count, 0.0}, bringLarge({items, count, 0.0}), &block);
    free(items);
    if (packed == 0)
        free(block.memory);
    else
        packedMemory = block.memory;
    return packed;
}
