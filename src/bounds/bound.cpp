#include "bounds/bound.h"

#include "core/fatal.h"
#include "core/records.h"
#include "core/settings.h"

#include <cassert>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <utility>

constinit int iNumNodes = 0;

// A pass sorts an array and not the list: the list lies scattered in memory, and a pass reads it once for
// each level of its splits. The array is filled from the list, and what a pass leaves is linked into a list
// anew.

namespace
{
/// A record of the list, and twice the centre of its bounds: that is only compared, so it is never halved.
struct Placed {
    double center2[3];
    Object* record;
};

/// Consecutive records of the list. `step` is -1 for one that lies backwards in the array.
struct Run {
    Placed* first; // in the order of the list
    int step;
    int count;
};

using Pair = double __attribute__((vector_size(16)));
} // namespace

// Runs of at most so many records have theirs fetched: as many as a small cache holds.
static constexpr int FETCHED = 64;

static constinit int total = 0;           // records in the list that the pass makes
static constinit int Axis = 0;            // result of findAxis: 0, 1 or 2
static constinit double Median = 0.0;     // result of findAxis: a mean position
static constinit Object** tail = nullptr; // where the pass links its next record to
static constinit void* workspace = nullptr;

static Placed* at(const Run& run, int i)
{
    return run.first + static_cast<std::ptrdiff_t>(i) * run.step;
}

static Placed* lowestPlace(const Run& run)
{
    return run.step > 0 ? run.first : at(run, run.count - 1);
}

/// Finds the axis along which the centres of `run` spread the most, and their mean position on it. The sums
/// run in the order of the list, which decides how they round.
static void findAxis(const Run& run)
{
    // x and y go together: of three numbers alike the compiler makes moves through other registers.
    Pair low2 = {NO_LIMIT, NO_LIMIT}, high2 = -low2, sum2 = {};
    double low = NO_LIMIT, high = -NO_LIMIT, sum = 0.0;
    for (int i = 0; i < run.count; ++i) {
        const double* center2 = at(run, i)->center2;
        const Pair xy = {center2[0], center2[1]};
        const double z = center2[2];
        low2 = xy < low2 ? xy : low2;
        high2 = xy > high2 ? xy : high2;
        sum2 += xy;
        low = z < low ? z : low;
        high = z > high ? z : high;
        sum += z;
    }
    const double spreads[3] = {high2[0] - low2[0], high2[1] - low2[1], high - low};
    const double sums[3] = {sum2[0], sum2[1], sum};
    double best = -NO_LIMIT;
    Axis = 0;
    for (int axis = 0; axis < 3; ++axis)
        if (spreads[axis] > best) { // a tie goes to the lower axis
            best = spreads[axis];
            Axis = axis;
        }
    Median = sums[Axis] / run.count;
}

/// Puts the records of `run` below Median into `low`, the others into `high`, each in the opposite order: in
/// the list, either side grew at its front. Both lie in the `run.count` places from `place` on.
static void split(const Run& run, Placed* place, Run* low, Run* high)
{
    // The sides grow towards each other, so that neither has to be counted first.
    Placed* next[2] = {place, place + run.count - 1};
    for (int i = run.count - 1; i >= 0; --i) {
        const Placed& each = *at(run, i);
        const int isLow = each.center2[Axis] < Median;
        *next[isLow] = each;
        next[isLow] += 1 - 2 * isLow;
    }
    const auto highs = static_cast<int>(next[0] - place);
    *high = {.first = place, .step = 1, .count = highs};
    *low = {.first = place + run.count - 1, .step = -1, .count = run.count - highs};
}

/// Gives half of `from` to `to`, which is empty: one record after the other, from the front to the front.
static void share(Run* from, Run* to)
{
    const int moved = from->count / 2;
    *to = {.first = at(*from, moved - 1), .step = -from->step, .count = moved};
    from->first = at(*from, moved);
    from->count -= moved;
}

/// Puts a record at the end of the list that the pass makes.
static void link(Object* record)
{
    *tail = record;
    tail = &record->next;
    ++total;
}

/// Makes a node around the records of `run`.
static void wrap(const Run& run)
{
    auto* node = static_cast<BoundingNode*>(newRecord(sizeof(BoundingNode)));
    if (node == nullptr)
        fatal(OUT_OF_MEMORY);
    Object& head = node->head;
    node->children = {.first = at(run, 0)->record, .count = run.count, .primitives = 0};
    head.type = BOUNDING_NODE;
    for (int axis = 0; axis < 3; ++axis) {
        head.boundsMin[axis] = NO_LIMIT;
        head.boundsMax[axis] = -NO_LIMIT;
    }
    for (int i = 0; i < run.count; ++i) {
        Object* member = at(run, i)->record;
        node->children.primitives += member->type == BOUNDING_NODE ? childrenOf(member).primitives : 1;
        member->next = i + 1 < run.count ? at(run, i + 1)->record : nullptr;
        for (int axis = 0; axis < 3; ++axis) {
            if (member->boundsMin[axis] < head.boundsMin[axis])
                head.boundsMin[axis] = member->boundsMin[axis];
            if (member->boundsMax[axis] > head.boundsMax[axis])
                head.boundsMax[axis] = member->boundsMax[axis];
        }
    }
    link(&head);
    ++nPrims;
    ++iNumNodes;
}

/// Asks for the bounds of all records of `run`, which lie anywhere, before `wrap` needs them one by one.
static void fetch(const Run& run)
{
    for (int i = 0; i < run.count; ++i) {
        const Object* record = at(run, i)->record;
        __builtin_prefetch(record, 1);
        __builtin_prefetch(&record->type, 1);
    }
}

/// Splits `run` until its pieces are small enough to be wrapped, and links those. `spare` has room for as
/// many records, and where the run lies is room again as soon as it is split.
static void sortAndSplit(const Run& run, Placed* spare)
{
    assert(run.count > 0);
    if (run.count == 1) { // stands bare and comes up again in the next pass
        link(at(run, 0)->record);
        return;
    }
    if (run.count <= bunching) {
        wrap(run);
        return;
    }
    if (run.count <= FETCHED && run.count > FETCHED / 4)
        fetch(run);
    findAxis(run);
    Run low, high;
    split(run, spare, &low, &high);
    // However the records lie, both sides get some.
    if (low.count == 0)
        share(&high, &low);
    else if (high.count == 0)
        share(&low, &high);
    sortAndSplit(high, lowestPlace(run) + (lowestPlace(high) - spare));
    sortAndSplit(low, lowestPlace(run) + (lowestPlace(low) - spare));
}

/// Fills `places` from the list of `count` records.
static void placeRecords(Placed* places, int count)
{
    Object* record = myObjectList;
    for (int i = 0; i < count; ++i, record = record->next) {
        if (record == nullptr) {
            char message[64];
            snprintf(message, sizeof message, "NULL top in FindAxis, count = %ld\n",
                     static_cast<long>(count - i - 1));
            fatal(message);
        }
        for (int axis = 0; axis < 3; ++axis)
            places[i].center2[axis] = record->boundsMax[axis] + record->boundsMin[axis];
        places[i].record = record;
    }
}

void buildBoundingSlabs()
{
    iNumNodes = 0;
    total = nPrims;
    if (total <= 1)
        return;
    const auto size = static_cast<size_t>(total);
    free(takeWorkspace());
    workspace = calloc(size, 2 * sizeof(Placed));
    if (workspace == nullptr)
        fatal(OUT_OF_MEMORY);
    auto* places = static_cast<Placed*>(workspace);
    Placed* spare = places + size;
    while (total > 1) {
        placeRecords(places, total);
        const Run all = {.first = places, .step = 1, .count = total};
        total = 0;
        tail = &myObjectList;
        sortAndSplit(all, spare);
        *tail = nullptr;
    }
}

void* takeWorkspace()
{
    return std::exchange(workspace, nullptr);
}
