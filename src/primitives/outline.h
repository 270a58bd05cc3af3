#pragma once

#include "core/data.h"

#include <cstring>
#if defined(__SSE2__)
#include <emmintrin.h>
#endif

// A flat face with straight edges: what triangle and polygon share. Inside or outside is decided in two
// dimensions, over the coordinates u and v that are left when the one in which the normal is largest is
// dropped, by counting the edges that a level line from the point crosses on its left.

/// The unit normal of the plane through the first three vertices; non-numbers if they lie in one line.
Vec faceNormal(const Vec* vertices);

/// Chooses the two coordinates to keep. A tie drops x before y and y before z.
void chooseAxes(Vec normal, int* axisU, int* axisV);

/// How many edges an outline of `count` corners has in memory: the last group of four is filled up with edges
/// from the first vertex to itself, which nothing crosses.
constexpr int edgesOf(int count)
{
    return (count + 3) / 4 * 4;
}

/// Fills `u` and `v`, edgesOf(`count`) + 1 of each, with the kept coordinates of the vertices, and of the
/// first one again up to the end; all of `u` before `v`.
void projectOutline(const Vec* vertices, int count, int axisU, int axisV, double* u, double* v);

/// The distance at which `ray` meets the plane normal . p + offset = 0, from either side. EPSILON itself is
/// steep enough, and far enough. False on a miss, and for non-numbers.
static inline bool faceReach(Vec normal, double offset, const Ray& ray, double* t)
{
    const double den = dot(normal, ray.direction);
    if (!(std::abs(den) >= EPSILON))
        return false;
    *t = -(dot(normal, ray.origin) + offset) / den;
    return *t >= EPSILON;
}

// Edges are tested four at a time, in vectors of two that every machine has.
constexpr int EDGES_IN_GROUP = 4;
using EdgePair = double __attribute__((vector_size(16)));
using EdgeMask = long long __attribute__((vector_size(16)));

static inline EdgePair loadPair(const double* from)
{
    EdgePair pair;
    memcpy(&pair, from, sizeof pair);
    return pair;
}

/// A bit for each lane of the mask that is set.
static inline int lanesOf(EdgeMask mask)
{
#if defined(__SSE2__)
    return _mm_movemask_pd(reinterpret_cast<__m128d>(mask));
#else
    return static_cast<int>((mask[0] & 1) | (mask[1] & 2));
#endif
}

/// Whether a level line from `px`, `py` to the left crosses an odd number of the four edges between the five
/// vertices from `u`, `v` on. A vertex at exactly this height counts as above, so that two edges that meet
/// there cross once, or twice, or not at all, as they should. An edge that lies level never crosses, and
/// nothing crosses a height that is not a number.
[[gnu::always_inline]] static inline bool crossesOddly(const double* u, const double* v, double px, double py)
{
    const EdgePair x = {px, px}, y = {py, py};
    const EdgePair y0[2] = {loadPair(v), loadPair(v + 2)}, y1[2] = {loadPair(v + 1), loadPair(v + 3)};
    const EdgeMask crossing[2] = {(y0[0] < y) ^ (y1[0] < y), (y0[1] < y) ^ (y1[1] < y)};
    if (lanesOf(crossing[0] | crossing[1]) == 0)
        return false;
    const EdgePair x0[2] = {loadPair(u), loadPair(u + 2)}, x1[2] = {loadPair(u + 1), loadPair(u + 3)};
    EdgeMask left{}, sloping[2];
    for (int i = 0; i < 2; ++i) {
        left ^= crossing[i] & (x0[i] < x) & (x1[i] < x);
        sloping[i] = crossing[i] & ((x0[i] < x) ^ (x1[i] < x));
    }
    // Only an edge with an end on either side of the point has to be divided.
    if (lanesOf(sloping[0] | sloping[1]) != 0)
        for (int i = 0; i < 2; ++i) {
            const EdgePair m = (y1[i] - y0[i]) / (x1[i] - x0[i]);
            const EdgePair q = -((y1[i] - y) - (x1[i] - x) * m) / m; // the crossing, seen from the point
            left ^= sloping[i] & (q < EdgePair{EPSILON, EPSILON});
        }
    const int lanes = lanesOf(left);
    return lanes == 1 || lanes == 2;
}

/// Whether the point `px`, `py` lies inside an outline of `edges` edges, a multiple of four, by the even-odd
/// rule. The inside ends EPSILON short of a sloping edge on its right. False for a point of non-numbers.
static inline bool outlineHolds(const double* u, const double* v, int edges, double px, double py)
{
    bool odd = false;
    for (int i = 0; i < edges; i += EDGES_IN_GROUP)
        odd ^= crossesOddly(u + i, v + i, px, py);
    return odd;
}

/// One of the strips that an outline is cut into by height, as far as its edges touch it. Where no edge comes
/// near, left of all of them, right of all, or between two, comparisons alone count those on the left: either
/// both ends of an edge are, or neither. And no height of the strip changes their parity, since both edges
/// that meet at a corner are on the same side.
struct OutlineStrip {
    double left, right;    // the extent of the edges
    double gapFrom, gapTo; // the widest gap between them, or nothing
    bool isGapInside;
    int first; // the place of its list in OutlineBins::groups, which ends where the next begins
};

/// The edges of a large outline by height: for each of `count` equal strips the groups of four that touch it,
/// so that a point asks a few of them, if any. A height goes to its strip by a formula that keeps the order,
/// for points as for ends of edges, so that rounding loses no crossing.
struct OutlineBins {
    double low, high; // the extent of the outline
    double perUnit;   // strips to a unit of height
    int count;
    const OutlineStrip* strips; // count + 1
    const int* groups;          // the first edge of each, strip by strip
};

/// Makes the bins of an outline of projectOutline; null for one that is better off without, and without
/// memory.
const OutlineBins* makeOutlineBins(const double* u, const double* v, int edges);

/// The strip of a height of the outline.
static inline int binOf(const OutlineBins& bins, double height)
{
    const int bin = static_cast<int>((height - bins.low) * bins.perUnit);
    return bin < bins.count ? bin : bins.count - 1;
}

/// The same as above, by way of bins.
static inline bool outlineHolds(const double* u, const double* v, const OutlineBins& bins, double px,
                                double py)
{
    if (!(py > bins.low && py <= bins.high))
        return false; // nothing crosses this height
    const OutlineStrip* strip = bins.strips + binOf(bins, py);
    if (px < strip->left || px > strip->right)
        return false;
    if (px > strip->gapFrom && px < strip->gapTo)
        return strip->isGapInside;
    bool odd = false;
    for (int i = strip[0].first; i < strip[1].first; ++i)
        odd ^= crossesOddly(u + bins.groups[i], v + bins.groups[i], px, py);
    return odd;
}

/// The point of `ray` at parameter `t` along a kept coordinate. It is read by its place: jumps that depend on
/// how a face lies are anybody's guess.
static inline double keptCoordinate(const Ray& ray, double t, int axis)
{
    static_assert(sizeof(Vec) == 3 * sizeof(double));
    return reinterpret_cast<const double*>(&ray.origin)[axis] +
           t * reinterpret_cast<const double*>(&ray.direction)[axis];
}
