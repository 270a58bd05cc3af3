#include "bounds/walk.h"

#include "bounds/packed.h"
#include "bounds/sieve.h"
#include "bounds/slab.h"
#include "core/settings.h"
#include "primitives/kinds.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#if defined(__SSE2__)
#include <immintrin.h>
#endif

// The fast walk: depth first over the packed tree, with a small stack; of a node first the primitives, then
// what else it holds, the nearest first. `intersect` and its heap define what a ray hits; this walk finds the
// same in less time, or says that it cannot be sure, and then the heap is asked. Why the same:
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
// In a grouped tree the nodes are others than the heap's. (1) and (2) prove what they did, for they speak of
// objects and of the heap's own bounds; a sieve leaves out what the ray misses, and what it hits behind the
// best hit by more than the slack, which changes nothing. Where a ray meets a primitive well within, by more
// than the slack of a sieve, the exact test finds that hit, and the slab test lets it pass, since the bounds
// hold its place, and reach as much around it but along one axis: nothing more is asked of it by a shadow
// ray, and nothing but its distance by another. (3) is not needed: such a tree is built where no ray that
// starts within `packedReach` can fill the queue.
//
// The slab test here runs on eight members at a time, in floats, which lets twice as many nodes into a cache.
// Its errors go one way: it lets through whatever the heap would let through, with a key that is not above
// the heap's. The slack for that is relative to the distance from the ray's origin to a plane and to the
// coordinates of the origin, and so covers the rounding of the planes too. Planes are cut to 1e30. With
// coordinates of the origin and a limit below 1e20, and a direction of length 1, a plane that was cut lies,
// in floats as in doubles, some 1e30 along the ray, far behind the limit; other rays are the heap's.
//
// The code of the walk stands in walk.inc and is compiled twice: once with two halves of four lanes, for
// every machine, and once with all eight in a register of AVX2, which is used where the processor has it. The
// sieves of the latter multiply and add in one step, which rounds less.

// Well above the rounding of doubles, well below what tells two hits apart.
static constexpr double SLACK = 1e-9;
// More than a few roundings of a float.
static constexpr float FLOAT_SLACK = 1e-6F;
// Limits of what the proof covers. A ray of a longer direction finds a sphere wider than it is, by the root
// of what is left of the length's square: far away that soon is more than a sieve allows.
static constexpr double MOST_INVERSE = 1e30, MOST = 1e20, OFF_UNIT = 1e-12;
// Some thirty roundings of a float, where a sieve has half as many; and how far from the middle of the world
// its products stay floats.
static constexpr float SIEVE_SLACK = 2e-6F, MOST_SIFTED = 1e9F;
// What a sieve is sure of is this far away, before this part of the limit, and as steep by this part of the
// square of the longest edge.
static constexpr float SURELY_AWAY = 1.01F * static_cast<float>(EPSILON);
static constexpr float SURELY_BEFORE = 0.99F, SURELY_STEEP = 0.01F;

// What opening a node may add to the heap, by its passing members: their number less one, or nothing.
static constexpr auto gainOf = [] {
    std::array<std::uint8_t, 1 << LANES> gains{};
    for (unsigned passing = 1; passing < gains.size(); ++passing)
        gains[passing] = static_cast<std::uint8_t>(std::popcount(passing) - 1);
    return gains;
}();

// The moments of a sweep: MOMENTS_IN_OCTAVE to each doubling of the distance, from 2 to the power of
// FIRST_OCTAVE on; what is before or behind falls to the first or the last.
static constexpr int MOMENTS_IN_OCTAVE = 32, FIRST_OCTAVE = -14, OCTAVES = 40;
static constexpr int MOMENTS = MOMENTS_IN_OCTAVE * OCTAVES;

namespace
{
/// Where in a node the planes stand that a ray enters by and leaves by, in floats.
struct Octant {
    std::ptrdiff_t entry[3], leave[3];
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

/// What a walk found: the object with the nearest hit, and whether that is well within it; the distances of
/// the hit and of the next one behind it; a bound on the entries of the heap.
struct Findings {
    const Object* closest;
    bool isWithin;
    double best, second;
    int queued;
};
} // namespace

/// The octants, by the signs of a direction, a bit each.
static constexpr auto octants = [] {
    std::array<Octant, 8> all{};
    for (unsigned octant = 0; octant < all.size(); ++octant)
        for (int axis = 0; axis < 3; ++axis) {
            const bool isBackward = (octant >> axis & 1) != 0;
            all[octant].entry[axis] = LANES * (isBackward ? axis + 3 : axis);
            all[octant].leave[axis] = LANES * (isBackward ? axis : axis + 3);
        }
    return all;
}();

/// The row of a node's planes at a place that the octant of a ray tells, in floats from the node on.
static inline const float* planesAt(const PackedNode& node, std::ptrdiff_t place)
{
    static_assert(offsetof(PackedNode, planes) == 0);
    return reinterpret_cast<const float*>(&node) + place;
}

static inline double withSlack(double distance)
{
    return distance + (std::abs(distance) * SLACK + SLACK);
}

/// Where a member has to begin that may still matter, as a float that is not below `distance` and its slack.
static inline float reachOf(double distance)
{
    return static_cast<float>(withSlack(distance) * (1.0 + FLOAT_SLACK));
}

static inline int momentOf(float key)
{
    // The bits of a float that is not negative grow with it: eight of exponent, then the fraction.
    constexpr int SHIFT = 23 - std::countr_zero(static_cast<unsigned>(MOMENTS_IN_OCTAVE));
    constexpr int FIRST = (127 + FIRST_OCTAVE) * MOMENTS_IN_OCTAVE;
    const int moment = (std::bit_cast<std::int32_t>(key) >> SHIFT) - FIRST;
    return moment < 0 ? 0 : moment < MOMENTS ? moment : MOMENTS - 1;
}

using Four = float __attribute__((vector_size(16)));
using FourInts = int __attribute__((vector_size(16)));

static constexpr int SIGN = std::numeric_limits<int>::min();

/// The coordinates of a vector, and `fourth`. They are read one by one, being volatile: a ray has only just
/// been written, in pieces, and a load that spans two of them would have to wait until both are in the cache.
static inline Four floatsOf(const volatile Vec& v, float fourth)
{
    return Four{static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z), fourth};
}

static inline Four magnitudeOf(Four v)
{
    return reinterpret_cast<Four>(reinterpret_cast<FourInts>(v) & ~SIGN);
}

/// The signs of four numbers, or a mask, a bit each.
static inline unsigned bitsOf(FourInts mask)
{
#if defined(__SSE2__)
    return static_cast<unsigned>(_mm_movemask_ps(reinterpret_cast<__m128>(mask)));
#elif defined(__wasm_simd128__)
    return __builtin_wasm_bitmask_i32x4(mask);
#else
    return static_cast<unsigned>((mask[0] < 0) | (mask[1] < 0) << 1 | (mask[2] < 0) << 2 |
                                 (mask[3] < 0) << 3);
#endif
}

namespace halves
{
// Two vectors of four floats; one for a number that all lanes share.
using Shared = float __attribute__((vector_size(16)));
struct Lanes {
    Shared low, high;
};

static inline Shared share(float value)
{
    return Shared{value, value, value, value};
}

/// Three numbers, each of them kept as `share` gives it.
struct Coordinates {
    Shared each[3];
};

static inline Coordinates coordinatesOf(Four v)
{
    return {share(v[0]), share(v[1]), share(v[2])};
}

static inline Shared share(const Coordinates& numbers, int axis)
{
    return numbers.each[axis];
}

static inline Lanes distances(const float* planes, Shared origin, Shared inverse)
{
    const auto* halves = reinterpret_cast<const Shared*>(planes);
    return {(halves[0] - origin) * inverse, (halves[1] - origin) * inverse};
}

static inline Shared greater(Shared a, Shared b)
{
    return b < a ? a : b; // this way round it is one instruction in browsers too
}

static inline Shared lesser(Shared a, Shared b)
{
    return a < b ? a : b;
}

static inline Lanes greater(const Lanes& a, const Lanes& b)
{
    return {greater(a.low, b.low), greater(a.high, b.high)};
}

static inline Lanes lesser(const Lanes& a, const Lanes& b)
{
    return {lesser(a.low, b.low), lesser(a.high, b.high)};
}

static inline Lanes operator+(const Lanes& a, const Lanes& b)
{
    return {a.low + b.low, a.high + b.high};
}

static inline Lanes operator-(const Lanes& a, const Lanes& b)
{
    return {a.low - b.low, a.high - b.high};
}

static inline Lanes operator*(const Lanes& a, const Lanes& b)
{
    return {a.low * b.low, a.high * b.high};
}

/// sum + a * b
static inline Lanes plusProduct(const Lanes& sum, const Lanes& a, const Lanes& b)
{
    return sum + a * b;
}

/// a * b - c
static inline Lanes productMinus(const Lanes& a, const Lanes& b, const Lanes& c)
{
    return a * b - c;
}

static inline Lanes load(const float* list)
{
    const auto* halves = reinterpret_cast<const Shared*>(list);
    return {halves[0], halves[1]};
}

/// Lanes for which something holds.
struct Which {
    FourInts low, high;
};

/// Which lanes of `a` are not above those of `b`.
static inline Which notAbove(const Lanes& a, const Lanes& b)
{
    return {a.low <= b.low, a.high <= b.high};
}

static inline Which operator&(const Which& a, const Which& b)
{
    return {a.low & b.low, a.high & b.high};
}

/// A bit for each lane.
static inline unsigned maskOf(const Which& which)
{
    return bitsOf(which.low) | bitsOf(which.high) << 4;
}

static inline Lanes all(Shared value)
{
    return {value, value};
}

static inline void store(const Lanes& lanes, float* list)
{
    auto* halves = reinterpret_cast<Shared*>(list);
    halves[0] = lanes.low;
    halves[1] = lanes.high;
}

#include "bounds/walk.inc"
} // namespace halves

#if defined(__x86_64__) || defined(__i386__)
#define VARLO_HAS_WIDE 1
#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2,fma,bmi"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2,fma,bmi")
#endif
namespace wide
{
using Shared = __m256;
using Lanes = __m256;

static inline Shared share(float value)
{
    return _mm256_set1_ps(value);
}

/// Here a number is shared as fast as it is read.
using Coordinates = Four;

static inline Coordinates coordinatesOf(Four v)
{
    return v;
}

static inline Shared share(const Coordinates& numbers, int axis)
{
    return share(numbers[axis]);
}

static inline Lanes distances(const float* planes, Shared origin, Shared inverse)
{
    return _mm256_mul_ps(_mm256_sub_ps(_mm256_load_ps(planes), origin), inverse);
}

static inline Lanes plusProduct(Lanes sum, Lanes a, Lanes b)
{
    return _mm256_fmadd_ps(a, b, sum);
}

static inline Lanes productMinus(Lanes a, Lanes b, Lanes c)
{
    return _mm256_fmsub_ps(a, b, c);
}

static inline Lanes load(const float* list)
{
    return _mm256_load_ps(list);
}

static inline Lanes greater(Lanes a, Lanes b)
{
    return _mm256_max_ps(a, b);
}

static inline Lanes lesser(Lanes a, Lanes b)
{
    return _mm256_min_ps(a, b);
}

using Which = int __attribute__((vector_size(32)));

static inline Which notAbove(Lanes a, Lanes b)
{
    return reinterpret_cast<Which>(_mm256_cmp_ps(a, b, _CMP_LE_OQ));
}

static inline unsigned maskOf(Which which)
{
    return static_cast<unsigned>(_mm256_movemask_ps(reinterpret_cast<Lanes>(which)));
}

static inline Lanes all(Shared value)
{
    return value;
}

static inline void store(Lanes lanes, float* list)
{
    _mm256_store_ps(list, lanes);
}

#include "bounds/walk.inc"
} // namespace wide
#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

bool isWideWalk = __builtin_cpu_supports("avx2") != 0 && __builtin_cpu_supports("fma") != 0 &&
                  __builtin_cpu_supports("bmi") != 0;
#else
bool isWideWalk = false;
namespace wide = halves;
#endif

Answer walkToNearest(const Ray& ray, double limit, const Object* exclude, const Object** found,
                     double* distance)
{
    return isWideWalk ? wide::walkToNearest(ray, limit, exclude, found, distance)
                      : halves::walkToNearest(ray, limit, exclude, found, distance);
}

Answer walkToAny(const Ray& ray, double limit, const Object* exclude, const Object** found)
{
    return isWideWalk ? wide::walkToAny(ray, limit, exclude, found)
                      : halves::walkToAny(ray, limit, exclude, found);
}
