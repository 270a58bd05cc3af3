#pragma once

#include "core/data.h"
#include "core/records.h"

// What all kinds of primitive share. A constructor takes a record with newPrimitive, fills its tail and its
// bounds and ends with listPrimitive. It returns the record, which myObjectList owns, or null without memory;
// then nothing was listed or counted.

/// What a kind of primitive does; `primitives/kinds.h` calls it by the type of the record.
struct Operations {
    int (*intersect)(const Object* self, const Ray* ray, Hit* hit);
    void (*print)(const Object* self);
};

/// A zeroed record with its type set and with `more` bytes behind it, or null without memory.
template <class Record>
static inline Record* newPrimitive(ObjectType type, size_t more = 0)
{
    auto* self = static_cast<Record*>(newRecord(sizeof(Record) + more));
    if (self != nullptr)
        self->head.type = type;
    return self;
}

/// Sets the bounds to the extent of `count` points along the Slab directions, widened by `margin`.
void boundPoints(Object* self, const Vec* points, int count, double margin);

/// Fills `low` and `high` with the extent of a circle square to the unit vector `axis`.
void boundCircle(Vec center, Vec axis, double radius, double low[3], double high[3]);

/// Puts the finished record onto myObjectList, counts it in nPrims and returns it.
Object* listPrimitive(Object* self);

/// The normal of a record that is flat, the same at all points.
template <class Record>
static inline Vec flatNormal(const Record& record)
{
    return record.normal;
}

/// The intersection test of a record whose hits are alike from both sides: a flat one is always entered.
template <class Record, bool (*reach)(const Record& record, const Ray& ray, double* t), int entering = 1>
static int evenIntersect(const Object* self, const Ray* ray, Hit* hit)
{
    double t;
    if (!reach(recordOf<Record>(self), *ray, &t))
        return 0;
    *hit = {.distance = t, .entering = entering, .object = self, .hitNormal = {}};
    return 1;
}
