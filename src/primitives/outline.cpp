#include "primitives/outline.h"

#include <algorithm>
#include <cstdlib>

// Below this an outline is tested as quickly group by group.
static constexpr int LEAST_EDGES = 32;
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

/// Chooses the number of bins, one to a group or fewer. False if the outline has no heights to share out.
static bool chooseBins(OutlineBins* bins, const double* v, int edges, size_t* entries)
{
    const auto [low, high] = std::minmax_element(v, v + edges);
    bins->low = *low;
    bins->high = *high;
    bins->count = edges / EDGES_IN_GROUP;
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

const OutlineBins* makeOutlineBins(const double* v, int edges)
{
    OutlineBins plan;
    size_t entries;
    if (edges < LEAST_EDGES || edges > MOST_EDGES ||
        !std::all_of(v, v + edges, [](double height) { return std::isfinite(height); }) ||
        !chooseBins(&plan, v, edges, &entries))
        return nullptr;
    auto* bins = static_cast<OutlineBins*>(
        calloc(1, sizeof plan + (static_cast<size_t>(plan.count) + 1 + entries) * sizeof(int)));
    if (bins == nullptr)
        return nullptr;
    auto* starts = reinterpret_cast<int*>(bins + 1);
    *bins = plan;
    bins->starts = starts;
    // Sorted by counting: the length of each list goes to the place behind it, then they are summed to the
    // ends of the lists, and filling them from the back leaves the starts.
    forGroups(plan, v, edges, [&](int, int first, int last) {
        for (int bin = first; bin <= last; ++bin)
            ++starts[bin];
    });
    int end = plan.count + 1;
    for (int bin = 0; bin < plan.count; ++bin)
        starts[bin] = end += starts[bin];
    starts[plan.count] = end;
    forGroups(plan, v, edges, [&](int group, int first, int last) {
        for (int bin = first; bin <= last; ++bin)
            starts[--starts[bin]] = group;
    });
    return bins;
}
