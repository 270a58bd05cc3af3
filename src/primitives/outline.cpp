#include "primitives/outline.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <utility>

// Below this an outline is tested as quickly group by group.
static constexpr int LEAST_EDGES = 16;
static constexpr int MOST_EDGES = 1 << 29; // so that an int counts all entries of the lists
// How many bins a group may touch, in the mean: bounds the memory of an outline that goes up and down.
static constexpr size_t MOST_LISTS = 8;

Vec faceNormal(const Vec* vertices)
{
    return unit(cross(vertices[0] - vertices[1], vertices[2] - vertices[1]));
}

void chooseAxes(Vec normal, int* axisU, int* axisV)
{
    const double x = std::abs(normal.x);
    const double y = std::abs(normal.y);
    const double z = std::abs(normal.z);
    const bool dropX = !(x < y) && !(x < z);
    const bool dropY = !dropX && !(y < x) && !(y < z);
    *axisU = dropX ? 1 : 0;
    *axisV = dropX || dropY ? 2 : 1;
}

void projectOutline(const Vec* vertices, int count, int axisU, int axisV, double* u, double* v)
{
    const auto project = [&](double* kept, int axis) {
        for (int i = 0; i <= edgesOf(count); ++i)
            kept[i] = coordinate(vertices[i < count ? i : 0], axis);
    };
    project(u, axisU);
    project(v, axisV);
}

/// Calls `add` with each group of the outline and the first and the last bin that it touches.
template <class Add>
static void forGroups(const OutlineBins& bins, const double* v, int edges, Add add)
{
    for (int i = 0; i < edges; i += EDGES_IN_GROUP) {
        const auto [low, high] = std::minmax_element(v + i, v + i + EDGES_IN_GROUP + 1);
        add(i, binOf(bins, *low), binOf(bins, *high));
    }
}

/// Chooses the number of bins, one to two edges or fewer. False if the outline has no heights to share out.
static bool chooseBins(OutlineBins* bins, const double* v, int edges, size_t* entries)
{
    const auto [low, high] = std::minmax_element(v, v + edges);
    bins->low = *low;
    bins->high = *high;
    bins->count = edges / 2;
    const size_t most = MOST_LISTS * static_cast<size_t>(bins->count);
    do {
        bins->perUnit = bins->count / (bins->high - bins->low);
        if (!std::isnormal(bins->perUnit))
            return false;
        *entries = 0;
        forGroups(*bins, v, edges,
                  [&](int, int first, int last) { *entries += static_cast<size_t>(last - first + 1); });
    } while (*entries > most && (bins->count /= 2) > 1);
    return bins->count > 1;
}

/// Fills the extents and the gaps of the strips. `order` is room for as many numbers as there are edges.
static void findGaps(const OutlineBins& bins, OutlineStrip* strips, const double* u, const double* v,
                     int edges, int* order)
{
    std::for_each(strips, strips + bins.count, [](OutlineStrip& strip) { strip.left = HUGE_VAL; });
    // From left to right, so that a gap is where an edge begins to the right of all before it.
    const auto leftOf = [u](int edge) { return std::min(u[edge], u[edge + 1]); };
    std::iota(order, order + edges, 0);
    std::sort(order, order + edges, [&](int a, int b) { return leftOf(a) < leftOf(b); });
    for (int i = 0; i < edges; ++i) {
        const int edge = order[i];
        const double left = leftOf(edge), right = std::max(u[edge], u[edge + 1]);
        const auto [low, high] = std::minmax(v[edge], v[edge + 1]);
        const int last = binOf(bins, high);
        for (int bin = binOf(bins, low); bin <= last; ++bin) {
            OutlineStrip& strip = strips[bin];
            if (left < strip.left) // its first edge
                strip.left = strip.right = left;
            if (left - strip.right > strip.gapTo - strip.gapFrom) {
                strip.gapFrom = strip.right;
                strip.gapTo = left;
            }
            strip.right = std::max(strip.right, right);
        }
    }
    for (int bin = 0; bin < bins.count; ++bin) {
        // One point of the gap tells for all, asked while there is no gap yet.
        const double from = std::exchange(strips[bin].gapFrom, 0.0);
        const double to = std::exchange(strips[bin].gapTo, 0.0);
        const double height = bins.low + (bin + 0.5) / bins.perUnit;
        if (binOf(bins, height) != bin)
            continue; // rounding left the strip no height of its own
        strips[bin].isGapInside = outlineHolds(u, v, bins, std::midpoint(from, to), height);
        strips[bin].gapFrom = from;
        strips[bin].gapTo = to;
    }
}

const OutlineBins* makeOutlineBins(const double* u, const double* v, int edges)
{
    OutlineBins plan;
    size_t entries;
    const auto isFinite = [edges](const double* kept) {
        return std::all_of(kept, kept + edges, [](double x) { return std::isfinite(x); });
    };
    if (edges < LEAST_EDGES || edges > MOST_EDGES || !isFinite(u) || !isFinite(v) ||
        !chooseBins(&plan, v, edges, &entries))
        return nullptr;
    const size_t count = static_cast<size_t>(plan.count) + 1;
    auto* bins = static_cast<OutlineBins*>(
        calloc(1, sizeof plan + count * sizeof(OutlineStrip) + entries * sizeof(int)));
    auto* order = static_cast<int*>(malloc(static_cast<size_t>(edges) * sizeof(int)));
    if (bins == nullptr || order == nullptr) {
        free(bins);
        free(order);
        return nullptr;
    }
    auto* strips = reinterpret_cast<OutlineStrip*>(bins + 1);
    auto* groups = reinterpret_cast<int*>(strips + count);
    *bins = plan;
    bins->strips = strips;
    bins->groups = groups;
    // Sorted by counting: the lengths of the lists are summed to their ends, and filling them from the back
    // leaves the starts.
    forGroups(plan, v, edges, [&](int, int first, int last) {
        for (int bin = first; bin <= last; ++bin)
            ++strips[bin].first;
    });
    int end = 0;
    for (size_t bin = 0; bin < count; ++bin)
        strips[bin].first = end += strips[bin].first;
    forGroups(plan, v, edges, [&](int group, int first, int last) {
        for (int bin = first; bin <= last; ++bin)
            groups[--strips[bin].first] = group;
    });
    findGaps(*bins, strips, u, v, edges, order);
    free(order);
    return bins;
}
