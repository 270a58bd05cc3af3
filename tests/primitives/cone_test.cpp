#include "primitives/cone.h"

#include "fixture.h"

using ConeTest = PrimitiveTest;

static const double s = std::sqrt(0.5);

TEST_F(ConeTest, Hits)
{
    const std::vector<Shot> cylinder = {
        {"from outside", {-3, 1, 0}, {1, 0, 0}, 2, 0},
        {"behind", {3, 1, 0}, {1, 0, 0}, MISS},
        {"outwards from the wall", {1, 1, 0}, {1, 0, 0}, MISS},
        {"inwards from the wall", {1, 1, 0}, {-1, 0, 0}, 2, 0},
        {"tangent", {-3, 1, 1}, {1, 0, 0}, 3, 0},
        {"beside", {-3, 1, 1.0001}, {1, 0, 0}, MISS},
        {"on the rim of the base", {-3, 0, 0}, {1, 0, 0}, 2, 0},
        {"below the base", {-3, -0.0001, 0}, {1, 0, 0}, MISS},
        {"on the rim of the cap", {-3, 5, 0}, {1, 0, 0}, 2, 0},
        {"above the cap", {-3, 5.0001, 0}, {1, 0, 0}, MISS},
        {"parallel, inside", {0.2, -3, 0.1}, {0, 1, 0}, MISS},
        {"parallel, outside", {2, -3, 0}, {0, 1, 0}, MISS},
        {"through the open end", {0, -1, 0}, {0.6, 0.8, 0}, 1 / 0.6, 0},
        {"past the near wall to the far one", {-2, -2, 0}, {0.6, 0.8, 0}, 5, 0},
    };
    const std::vector<Shot> cone = {
        {"across", {-3, 0.5, 0}, {1, 0, 0}, 2.5, 0},
        {"the mirror cone is not there", {-3, -0.5, 0}, {1, 0, 0}, MISS},
        {"steeper than the wall, from above", {0.25, 3, 0}, {0, -1, 0}, 2.75, 0},
        {"steeper, past the mirror cone", {0.25, -3, 0}, {0, 1, 0}, 3.25, 0},
        {"parallel to the other wall", {-0.75, 0.25, 0}, {s, s, 0}, 0.25 / s, 0},
        {"the same, behind", {-0.25, 0.75, 0}, {s, s, 0}, MISS},
    };
    const std::vector<Shot> displaced = {
        {"along one side of the frame", {1, 2, -7}, {0, 0, 1}, 5, 0},
        {"at a slant", {-4, -2, 0}, {0.6, 0.8, 0}, 5, 0},
    };
    const double next = std::nextafter(EPSILON, 1);
    const Vec below = {0, 0, -1}, above = {0, 0, 1};
    expectShots(makeCone({0, 0, 0}, 1, {0, 5, 0}, 1), cylinder);
    expectShots(makeCone({0, 0, 0}, 0, {0, 1, 0}, 1), cone);
    expectShots(makeCone({1, 0, 0}, 1, {1, 4, 0}, 3), displaced);
    expectShots(makeCone(below, EPSILON, above, EPSILON), {{"limit", {0, 0, 0}, {1, 0, 0}, MISS}});
    expectShots(makeCone(below, next, above, next), {{"nearest", {0, 0, 0}, {1, 0, 0}, next, 0}});
}

TEST_F(ConeTest, FrameBoundsAndNormal)
{
    const Vec o = {0, 0, 0};
    expectVec(makeCone(o, 1, {0, 2, 0}, 1)->cone.frameU, {1, 0, 0});
    expectVec(makeCone(o, 1, {0, 0, 2}, 1)->cone.frameU, {-1, 0, 0});
    expectVec(makeCone(o, 1, {0, 0, 2}, 1)->cone.frameV, {0, 1, 0});
    expectVec(makeCone(o, 1, {0.0447, 0, -1}, 1)->cone.frameU, unit({1, 0, 0.0447})); // still near z
    expectVec(makeCone(o, 1, {0.0448, 0, -1}, 1)->cone.frameU, {0, -1, 0});

    expectBounds(makeCone({0, 0, 0}, 1, {1, 0, 1}, 1), {-s, -1, -s}, {1 + s, 1, 1 + s});
    expectBounds(makeCone({1, 0, 0}, 1, {1, 4, 0}, 3), {-2, 0, -3}, {4, 4, 3}); // the cap is wider
    expectBounds(makeCone({1, 4, 0}, 3, {1, 0, 0}, 1), {-2, 0, -3}, {4, 4, 3}); // the base is
    // An axis so short that made unit it is longer than that.
    expectBounds(makeCone({0, 0, 0}, 1, {0, 0, 2.7e-162}, 1), {-1, -1, 0}, {1, 1, 0});

    expectVec(normalAt(makeCone({3, 1, 0}, 1, {3, 5, 0}, 1), {4, 2, 0}), {1, 0, 0});
    expectVec(normalAt(makeCone({0, 0, 0}, 0, {0, 1, 0}, 1), {0.5, 0.5, 0}), {s, -s, 0});
}
