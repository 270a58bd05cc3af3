#include "primitives/triangle.h"

#include "fixture.h"

using TriangleTest = PrimitiveTest;

TEST_F(TriangleTest, Face)
{
    const Object* triangle = makeTriangle(keep({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}));
    expectShots(triangle, FACE_SHOTS);
    expectVec(normalAt(triangle, {}), {0, 0, -1});
    expectBounds(triangle, {-0.001, -0.001, -0.001}, {1.001, 1.001, 0.001});

    const Object* turned = makeTriangle(keep({{0, 0, 0}, {0, 1, 0}, {1, 0, 0}}));
    expectShots(turned, FACE_SHOTS);
    expectVec(normalAt(turned, {}), {0, 0, 1});

    expectBelow(makeTriangle(keep({{0, 0, 0}, {1, 1, 0}, {2, 2, 0}})), {{1, 1, 5}}, MISS);
    expectBelow(makeTriangle(keep({{1, 1, 0}, {1, 1, 0}, {1, 1, 0}})), {{1, 1, 5}}, MISS);
}

TEST_F(TriangleTest, Inside)
{
    const std::vector<Vec> inside = {{0.25, 0.25, 2}, {0.4989, 0.5, 2}, {1e-9, 0.5, 2}, {0.25, 1e-5, 2}};
    const std::vector<Vec> outside = {{0, 0, 2},        {1, 0, 2},     {0, 1, 2},
                                      {0.5, 0, 2},      {0, 0.5, 2},   {0.5, 0.5, 2},
                                      {0.4991, 0.5, 2}, {-1, 0.25, 2}, {2, 0.25, 2}};
    const Object* triangle = makeTriangle(keep({{0, 0, 1}, {1, 0, 1}, {0, 1, 1}}));
    expectBelow(triangle, inside, 1);
    expectBelow(triangle, outside, MISS);

    // An edge that crosses EPSILON to the right of 0, 0 leaves it inside, and one just nearer does not.
    expectBelow(makeTriangle(keep({{-0.999, -1, 0}, {EPSILON, 0, 0}, {-5, 5, 0}})), {{0, 0, 1}}, 1);
    expectBelow(makeTriangle(keep({{-0.999, -1, 0}, {BELOW, 0, 0}, {-5, 5, 0}})), {{0, 0, 1}}, MISS);
}

TEST_F(TriangleTest, DropsTheLargestCoordinateOfTheNormal)
{
    const auto axes = [](Vec normal) {
        int u, v;
        chooseAxes(normal, &u, &v);
        return 10 * u + v;
    };
    for (const Vec& dropX : {Vec{-3, 1, 2}, Vec{-1, 1, 1}, Vec{2, 1, -2}, Vec{-2, 2, 1}})
        EXPECT_EQ(axes(dropX), 12);
    for (const Vec& dropY : {Vec{1, -3, 2}, Vec{1, -2, 2}})
        EXPECT_EQ(axes(dropY), 2);
    EXPECT_EQ(axes({1, 2, -3}), 1);
    const std::vector<Shot> shots = {{"in", {2, 2, 0.25}, {-1, 0, 0}, 1},
                                     {"out", {2, 0.25, 2}, {-1, 0, 0}, MISS}};
    expectShots(makeTriangle(keep({{1, 0, 0}, {1, 3, 0}, {1, 0, 1}})), shots);
}
