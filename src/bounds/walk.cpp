#include "bounds/walk.h"

#include "bounds/packed.h"
#include "bounds/slab.h"
#include "core/settings.h"
#include "primitives/kinds.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <utility>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// The fast walk: depth first over the packed tree, with a small stack, the nearest member first. `intersect`
// and its heap define what a ray hits; this walk finds the same in less time, or says that it cannot be sure,
// and then the heap is asked. Why the same:
//
// The heap opens nodes and tests objects in the order of their keys, the distances at which the ray enters
// their bounds, and a member's key is never below that of its node, because bounds enclose and rounding keeps
// the order. Let W be the object with the nearest hit that this walk has seen, at distance t, and let
//   (1) no other hit that it saw lie within a slack of t,
//   (2) W pass the exact slab test of the heap, with a key within the slack of t.
// This walk leaves out only what begins behind the best hit so far by more than the slack, so all that it
// left out has a key above t and the slack. Until the heap comes to W, a node around W or W itself waits in
// it with a key within the slack of t, and the best distance that the heap knows lies behind t by more than
// the slack, by (1). So it goes on, it comes to W before anything that this walk left out, and it takes W.
// Nothing that it tests later can replace W: that would be a hit nearer than t, and this walk would have seen
// it.
//
// The heap may also run over, which ends the render. It never holds more entries than one plus, for every
// node that it opens, the members that pass less one. It opens no node that this walk did not, and of a node
// that was folded into another it holds one entry for a while. So
//   (3) that sum over the nodes opened here, plus the folded ones, stays below the size of the queue
// proves that it does not run over. A ray that fails (1), (2) or (3) is traced by the heap.
//
// A shadow ray needs less: any object before the limit that passes the exact slab test is one that the heap
// would have come to, unless it had stopped at another one. Only a ray that nothing blocks needs (3).
//
// The slab test here runs on four members at a time, in floats, which lets twice as many nodes into a cache.
// Its errors go one way: it lets through whatever the heap would let through, with a key that is not above
// the heap's. The slack for that is relative to the distance from the ray's origin to a plane and to the
// coordinates of the origin, and so covers the rounding of the planes too.

using Lanes = float __attribute__((vector_size(LANES * sizeof(float))));
using LaneMask = int __attribute__((vector_size(LANES * sizeof(int))));

// Well above the rounding of doubles, well below what tells two hits apart.
static constexpr double SLACK = 1e-9;
// More than a few roundings of a float.
static constexpr double FLOAT_SLACK = 1e-6;
// Reciprocals and coordinates that floats hold with their full precision.
static constexpr double LEAST = 1e-30, MOST = 1e30;

static constexpr PackedMember NO_MEMBER = 0;

// What opening a node may add to the heap, by its passing members: their number less one, or nothing.
static constexpr std::uint8_t gainOf[16] = {0, 0, 0, 1, 0, 1, 1, 2, 0, 1, 1, 2, 1, 2, 2, 3};

namespace
{
/// A ray as the slab test wants it. The planes that it enters by and leaves by are told by the sign of its
/// direction.
struct WalkRay {
    double origin[3], direction[3];
    int entry[3], leave[3]; // rows of PackedNode::planes
    // Rounded so that a ray enters too early and leaves too late.
    Lanes entryOrigin[3], entryInverse[3];
    Lanes leaveOrigin[3], leaveInverse[3];
    Lanes limit;
};

/// A member that waits, and where the ray enters its bounds.
struct Pending {
    float key;
    PackedMember member;
};

/// The members that wait: the nearest of those found last on top.
struct Stack {
    static constexpr int SIZE = 256;
    Pending entries[SIZE + LANES];
    int size = 0;
};
} // namespace

static inline double withSlack(double distance)
{
    return distance + (std::abs(distance) * SLACK + SLACK);
}

/// Where a member has to begin that may still matter, as a float that is not below `distance` and its slack.
static inline float reachOf(double distance)
{
    return static_cast<float>(withSlack(distance) * (1.0 + FLOAT_SLACK));
}

static inline Lanes spread(double value)
{
    return Lanes{} + static_cast<float>(value);
}

static inline int lanesOf(const LaneMask& mask)
{
#if defined(__SSE2__)
    return _mm_movemask_ps(reinterpret_cast<__m128>(mask));
#else
    return (mask[0] & 1) | (mask[1] & 2) | (mask[2] & 4) | (mask[3] & 8);
#endif
}

/// Sets up the ray. False for one that is better left to the heap: a component of 0, where the slab test
/// skips the axis, or of something that floats cannot calculate with.
static inline bool prepare(const Ray& ray, double limit, WalkRay* w)
{
    for (int axis = 0; axis < 3; ++axis) {
        const double origin = w->origin[axis] = coordinate(ray.origin, axis);
        const double direction = w->direction[axis] = coordinate(ray.direction, axis);
        const double inverse = 1.0 / direction;
        if (!(std::abs(inverse) > LEAST && std::abs(inverse) < MOST && std::abs(origin) < MOST))
            return false;
        const bool forward = inverse > 0.0;
        const double margin = (forward ? FLOAT_SLACK : -FLOAT_SLACK) * std::abs(origin);
        w->entry[axis] = forward ? axis : 3 + axis;
        w->leave[axis] = forward ? 3 + axis : axis;
        w->entryOrigin[axis] = spread(origin + margin);
        w->leaveOrigin[axis] = spread(origin - margin);
        w->entryInverse[axis] = spread(inverse * (1.0 - FLOAT_SLACK));
        w->leaveInverse[axis] = spread(inverse * (1.0 + FLOAT_SLACK));
    }
    w->limit = spread(limit * (1.0 + FLOAT_SLACK));
    return true;
}

/// Which members of `node` the ray may meet before its limit, a bit each, and where it enters them, at least
/// 0.
static inline int enterMembers(const PackedNode& node, const WalkRay& ray, Lanes* keys)
{
    Lanes in[3], out[3];
    for (int axis = 0; axis < 3; ++axis) {
        const auto& entry = reinterpret_cast<const Lanes&>(node.planes[ray.entry[axis]]);
        const auto& leave = reinterpret_cast<const Lanes&>(node.planes[ray.leave[axis]]);
        in[axis] = (entry - ray.entryOrigin[axis]) * ray.entryInverse[axis];
        out[axis] = (leave - ray.leaveOrigin[axis]) * ray.leaveInverse[axis];
    }
    const auto greater = [](Lanes a, Lanes b) { return a > b ? a : b; };
    const auto lesser = [](Lanes a, Lanes b) { return a < b ? a : b; };
    *keys = greater(greater(in[0], in[1]), greater(in[2], Lanes{}));
    return lanesOf(*keys <= lesser(lesser(out[0], out[1]), lesser(out[2], ray.limit)));
}

/// Takes one of the members in `mask`, which holds one at least, and puts the others onto the stack: the
/// nearest first, or in any order, which is quicker.
template <bool nearestFirst>
static inline PackedMember takeFirst(Stack* stack, const PackedNode& node, int mask, const Lanes& keys)
{
    int first = std::countr_zero(static_cast<unsigned>(mask));
    const int base = stack->size;
    for (mask &= mask - 1; mask != 0; mask &= mask - 1) {
        int lane = std::countr_zero(static_cast<unsigned>(mask));
        int i = stack->size++;
        if (nearestFirst) {
            if (keys[lane] < keys[first])
                std::swap(lane, first);
            for (; i > base && stack->entries[i - 1].key < keys[lane]; --i)
                stack->entries[i] = stack->entries[i - 1];
        }
        stack->entries[i] = {.key = keys[lane], .member = node.members[lane]};
    }
    return node.members[first];
}

/// Takes the next member that begins before `reachable` from the stack. False if there is none.
static inline bool pop(Stack* stack, float reachable, PackedMember* member)
{
    while (stack->size > 0) {
        const Pending& top = stack->entries[--stack->size];
        *member = top.member;
        if (!(top.key > reachable))
            return true;
    }
    return false;
}

/// The nearest object before `limit`, or, if `any` is set, any one that the heap would have come to.
template <bool any>
static Answer walk(const Ray& ray, double limit, const Object* exclude, const Object** found)
{
    WalkRay lanes;
    if (!prepare(ray, limit, &lanes))
        return Answer::UNSURE;

    const Object* closest = nullptr;
    double best = limit, second = limit; // distances of the nearest hit and of the next one behind it
    float reachable = reachOf(best);
    int queued = 1; // the heap would hold at most so many entries
    Stack stack;
    PackedMember member = packedRoot;
    do {
        while (isNode(member)) {
            const PackedNode& node = *nodeOf(member);
            Lanes keys;
            const int passing = enterMembers(node, lanes, &keys);
            queued += gainOf[passing] + foldedNodesOf(member);
            const int mask = passing & lanesOf(keys <= reachable);
            if (stack.size > Stack::SIZE)
                return Answer::UNSURE;
            member = mask != 0 ? takeFirst<!any>(&stack, node, mask, keys) : NO_MEMBER;
        }
        if (member == NO_MEMBER)
            continue;
        const Object* object = objectOf(member);
        double t;
        if (object == exclude || !reach(object, typeOf(member), ray, &t) || !(t < second))
            continue;
        if (double exact; any && passesSlabs(object, limit, lanes.origin, lanes.direction, &exact)) {
            *found = object;
            return Answer::FOUND;
        }
        second = t < best ? best : t;
        if (t < best) {
            best = t;
            closest = object;
            reachable = reachOf(best);
        }
    } while (pop(&stack, reachable, &member));

    if (queued >= iPQSize)
        return Answer::UNSURE;
    if (closest == nullptr)
        return Answer::NOTHING;
    double exact;
    if (second <= withSlack(best) || !passesSlabs(closest, limit, lanes.origin, lanes.direction, &exact) ||
        exact > withSlack(best))
        return Answer::UNSURE;
    *found = closest;
    return Answer::FOUND;
}

Answer walkToNearest(const Ray& ray, double limit, const Object* exclude, const Object** found)
{
    return walk<false>(ray, limit, exclude, found);
}

Answer walkToAny(const Ray& ray, double limit, const Object* exclude, const Object** found)
{
    return walk<true>(ray, limit, exclude, found);
}
