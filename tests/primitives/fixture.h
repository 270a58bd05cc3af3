#pragma once

#include "core/data.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <list>
#include <vector>

constexpr double MISS = -1.0; // stands where a hit has its distance

struct Shot {
    const char* name;
    Vec origin, direction;
    double distance;
    int entering = 1;
};

inline const double BELOW = std::nextafter(EPSILON, 0);
inline const Vec FLATTEST = {std::sqrt(1 - EPSILON * EPSILON), 0, -EPSILON};
inline const Vec TOO_FLAT = {FLATTEST.x, 0, -BELOW};

/// For a face in z = 0 that holds 0.25, 0.25: what triangle, polygon and patch have in common.
inline const std::vector<Shot> FACE_SHOTS = {
    {"from above, at a slant", {0.25, 1.75, 2}, {0, -0.6, -0.8}, 2.5},
    {"from below", {0.25, 0.25, -2}, {0, 0, 1}, 2},
    {"behind", {0.25, 0.25, 2}, {0, 0, 1}, MISS},
    {"flattest that hits", {0, 0.25, 0.00025}, FLATTEST, 0.25},
    {"flattest, from below", {0.5, 0.25, -0.00025}, -FLATTEST, 0.25},
    {"too flat", {0, 0.25, 0.00025}, TOO_FLAT, MISS},
    {"too flat, from below", {0.5, 0.25, -0.00025}, -TOO_FLAT, MISS},
    {"nearest that hits", {0.25, 0.25, EPSILON}, {0, 0, -1}, EPSILON},
    {"too near", {0.25, 0.25, BELOW}, {0, 0, -1}, MISS},
};

class PrimitiveTest : public testing::Test
{
protected:
    PrimitiveTest()
    {
        Slab[0] = {1, 0, 0};
        Slab[1] = {0, 1, 0};
        Slab[2] = {0, 0, 1};
    }

    ~PrimitiveTest() override
    {
        for (Object* object = myObjectList; object != nullptr; object = object->next)
            free(object->type == POLYGON ? const_cast<double*>(object->polygon.u) : nullptr);
        freeList(&myObjectList);
        nPrims = 0;
    }

    /// An array for a record to take over, which lives as long as the test.
    Vec* keep(std::vector<Vec> vertices)
    {
        return kept.emplace_back(std::move(vertices)).data();
    }

    static void expectShots(const Object* object, const std::vector<Shot>& shots)
    {
        for (const Shot& shot : shots) {
            SCOPED_TRACE(shot.name);
            const Ray ray = {shot.origin, shot.direction};
            Hit hit{};
            ASSERT_EQ(object->ObjectIntersect(object, &ray, &hit), shot.distance != MISS);
            if (shot.distance == MISS)
                continue;
            EXPECT_DOUBLE_EQ(hit.distance, shot.distance);
            EXPECT_EQ(hit.entering, shot.entering);
            EXPECT_EQ(hit.object, object);
            for (const Vec& spoil : {Vec{NAN, 0, 0}, Vec{0, NAN, 0}, Vec{0, 0, NAN}}) {
                const Ray rays[] = {{ray.origin + spoil, ray.direction}, {ray.origin, ray.direction + spoil}};
                EXPECT_FALSE(object->ObjectIntersect(object, &rays[0], &hit));
                EXPECT_FALSE(object->ObjectIntersect(object, &rays[1], &hit));
            }
        }
    }

    /// Shoots straight down from each point.
    static void expectBelow(const Object* object, const std::vector<Vec>& points, double distance)
    {
        for (const Vec& p : points) {
            SCOPED_TRACE(testing::Message() << p.x << " " << p.y);
            expectShots(object, {{"down", p, {0, 0, -1}, distance}});
        }
    }

    static void expectVec(Vec actual, Vec expected)
    {
        EXPECT_LT(lengthOf(actual - expected), 1e-12) << actual.x << " " << actual.y << " " << actual.z;
    }

    static void expectBounds(const Object* object, Vec low, Vec high)
    {
        expectVec({object->boundsMin[0], object->boundsMin[1], object->boundsMin[2]}, low);
        expectVec({object->boundsMax[0], object->boundsMax[1], object->boundsMax[2]}, high);
    }

    /// The normal at `point`, for kinds that do not look at the hit.
    static Vec normalAt(const Object* object, Vec point)
    {
        return object->ObjectNormal(object, point, nullptr);
    }

private:
    std::list<std::vector<Vec>> kept;
};
