#include "bounds/intersec.h"

#include "bounds/bound.h"
#include "bounds/packed.h"
#include "bounds/slab.h"
#include "bounds/walk.h"
#include "core/fatal.h"
#include "core/settings.h"
#include "primitives/kinds.h"

#include <cmath>
#include <cstdlib>

void checkAndEnqueue(const Object* node, double limit, const double origin[3], const double direction[3],
                     PQEntry* queue, int* count)
{
    // From inside the bounds the key is negative: that is right and comes out of the heap first.
    if (double key; passesSlabs(node, limit, origin, direction, &key))
        priorityQueueInsert(key, node, queue, count);
}

int intersectByHeap(const Ray* ray, double limit, Hit* hit, const Object* exclude)
{
    const double origin[3] = {ray->origin.x, ray->origin.y, ray->origin.z};
    const double direction[3] = {ray->direction.x, ray->direction.y, ray->direction.z};
    constexpr int SMALL = 1024; // the usual queue needs no allocation
    PQEntry small[SMALL];
    PQEntry* queue = small;
    if (iPQSize > SMALL) {
        queue = static_cast<PQEntry*>(malloc(static_cast<size_t>(iPQSize) * sizeof(PQEntry)));
        if (queue == nullptr)
            fatal(OUT_OF_MEMORY);
    }
    int count = 0;
    double best = limit;
    const Object* closest = nullptr;

    checkAndEnqueue(myObjectList, limit, origin, direction, queue, &count);
    while (count > 0) {
        double key;
        const Object* node;
        priorityQueueDelete(&key, &node, queue, &count);
        if (key > best)
            break; // all that is left begins behind the best hit
        if (node->type == BOUNDING_NODE) {
            for (const Object* member = childrenOf(node).first; member != nullptr; member = member->next)
                if (member != exclude)
                    checkAndEnqueue(member, limit, origin, direction, queue, &count);
            continue;
        }
        Hit scratch;
        if (ObjectIntersect(node, ray, &scratch) && scratch.distance < best) {
            *hit = scratch;
            closest = node;
            best = scratch.distance;
        }
    }
    if (queue != small)
        free(queue);
    return closest != nullptr;
}

/// Whether a component of the ray is not a number; it then meets nothing.
static bool isNoRay(const Ray* ray)
{
    const Vec sum = ray->origin + ray->direction;
    return std::isnan(sum.x + sum.y + sum.z);
}

/// In builds with VARLO_CHECK_WALKS: ends the process unless the heap gives the same answer. `nearest` is
/// null for a shadow ray, of which only the answer itself counts.
static void checkWalk(const Ray* ray, double limit, const Object* exclude, bool isHit, const Object* nearest)
{
    if constexpr (VARLO_CHECK_WALKS) {
        Hit hit{};
        const bool isHitByHeap = intersectByHeap(ray, limit, &hit, exclude) != 0;
        if (isHit != isHitByHeap || (nearest != nullptr && nearest != hit.object))
            fatal("The walk and the heap disagree\n");
    }
}

int intersect(const Ray* ray, double limit, Hit* hit, const Object* exclude)
{
    if (myObjectList == nullptr)
        return 0;
    if (myObjectList->type != BOUNDING_NODE)
        return ObjectIntersect(myObjectList, ray, hit);
    if (packedRoot != 0) {
        const Object* found;
        double distance;
        switch (walkToNearest(*ray, limit, exclude, &found, &distance)) {
        case Answer::NOTHING:
            checkWalk(ray, limit, exclude, false, nullptr);
            return 0;
        case Answer::FOUND:
            checkWalk(ray, limit, exclude, true, found);
            fillHit(found, ray, distance, hit);
            return 1;
        case Answer::UNSURE:
            break;
        }
    }
    return isNoRay(ray) ? 0 : intersectByHeap(ray, limit, hit, exclude);
}

/// Apart from isBlocked, so that what the walk answers needs no room for a hit.
[[gnu::noinline]] static bool isBlockedByHeap(const Ray* ray, double limit, const Object* exclude)
{
    Hit scratch;
    return intersect(ray, limit, &scratch, exclude) != 0;
}

bool isBlocked(const Ray* ray, double limit, const Object* exclude)
{
    if (packedRoot != 0) {
        const Object* found;
        const Answer answer = walkToAny(*ray, limit, exclude, &found);
        if (answer != Answer::UNSURE) {
            checkWalk(ray, limit, exclude, answer == Answer::FOUND, nullptr);
            return answer == Answer::FOUND;
        }
    }
    return isBlockedByHeap(ray, limit, exclude);
}
