#include "bounds/bound.h"

#include "core/fatal.h"
#include "core/settings.h"

#include <cassert>
#include <cstdio>
#include <cstdlib>

constinit int iNumNodes = 0;

static constinit int total = 0;       // records that stand in the top-level list
static constinit int Axis = 0;        // result of findAxis: 0, 1 or 2
static constinit double Median = 0.0; // result of findAxis: a mean position

/// Twice the centre of the bounds: it is only compared, so it is never halved.
static double doubledCenter(const Object* object, int axis)
{
    return object->boundsMax[axis] + object->boundsMin[axis];
}

void findAxis(const Object* first, int count)
{
    double lowest[3] = {NO_LIMIT, NO_LIMIT, NO_LIMIT};
    double highest[3] = {-NO_LIMIT, -NO_LIMIT, -NO_LIMIT};
    double sums[3] = {};
    const Object* top = first;
    for (int i = 0; i < count; ++i, top = top->next) {
        if (top == nullptr) {
            char message[64];
            snprintf(message, sizeof message, "NULL top in FindAxis, count = %ld\n",
                     static_cast<long>(count - i - 1));
            fatal(message);
        }
        for (int axis = 0; axis < 3; ++axis) {
            const double p = doubledCenter(top, axis);
            if (p < lowest[axis])
                lowest[axis] = p;
            if (p > highest[axis])
                highest[axis] = p;
            sums[axis] += p;
        }
    }
    double best = -NO_LIMIT;
    Axis = 0;
    for (int axis = 0; axis < 3; ++axis) {
        const double spread = highest[axis] - lowest[axis];
        if (spread > best) { // a tie goes to the lower axis
            best = spread;
            Axis = axis;
        }
    }
    Median = sums[Axis] / count;
}

namespace
{
/// One side of a split: records pushed onto its front.
struct Side {
    Object* first = nullptr;
    Object* last = nullptr;
    int count = 0;
};
} // namespace

static void push(Side* side, Object* record)
{
    if (side->first == nullptr)
        side->last = record;
    addToList(&side->first, record);
    ++side->count;
}

/// Moves records from the front of `from` to the front of `to`, which is empty.
static void moveRecords(Side* from, Side* to, int count)
{
    for (int i = 0; i < count; ++i) {
        Object* record = from->first;
        assert(record != nullptr);
        from->first = record->next;
        --from->count;
        push(to, record);
    }
}

/// Wraps the `count` records at `*link` into a node that takes their place.
static void wrap(Object** link, int count)
{
    auto* record = static_cast<BoundingNode*>(calloc(1, sizeof(BoundingNode)));
    if (record == nullptr)
        fatal(OUT_OF_MEMORY);
    total -= count - 1;
    record->children = {.first = *link, .count = count};
    Object* node = &record->head;
    node->type = BOUNDING_NODE;
    for (int axis = 0; axis < 3; ++axis) {
        node->boundsMin[axis] = NO_LIMIT;
        node->boundsMax[axis] = -NO_LIMIT;
    }
    Object* last = nullptr;
    for (Object* member = *link; count > 0; --count, member = member->next) {
        for (int axis = 0; axis < 3; ++axis) {
            if (member->boundsMin[axis] < node->boundsMin[axis])
                node->boundsMin[axis] = member->boundsMin[axis];
            if (member->boundsMax[axis] > node->boundsMax[axis])
                node->boundsMax[axis] = member->boundsMax[axis];
        }
        last = member;
    }
    node->next = last->next;
    last->next = nullptr;
    *link = node;
    ++nPrims;
    ++iNumNodes;
}

int sortAndSplit(Object** link, int count)
{
    if (count <= 0)
        return 0;
    if (count <= bunching) {
        if (count > 1) // a single record stands bare and comes up again in the next pass
            wrap(link, count);
        return 0;
    }

    findAxis(*link, count);
    Side low, high;
    Object* rest = *link;
    for (int i = 0; i < count; ++i) {
        Object* record = rest;
        rest = rest->next;
        push(doubledCenter(record, Axis) < Median ? &low : &high, record);
    }
    // However the records lie, both sides get some.
    if (low.count == 0)
        moveRecords(&high, &low, count / 2);
    else if (high.count == 0)
        moveRecords(&low, &high, count / 2);

    assert(low.last != nullptr && high.last != nullptr);
    *link = high.first;
    high.last->next = low.first;
    low.last->next = rest;
    sortAndSplit(&high.last->next, low.count);
    sortAndSplit(link, high.count);
    return 1;
}

void buildBoundingSlabs()
{
    total = nPrims;
    iNumNodes = 0;
    while (sortAndSplit(&myObjectList, total) != 0) {
    }
}
