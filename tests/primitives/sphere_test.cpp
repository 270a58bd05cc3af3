#include "primitives/sphere.h"

#include "fixture.h"

using SphereTest = PrimitiveTest;

TEST_F(SphereTest, HitsBoundsAndNormal)
{
    const std::vector<Shot> shots = {
        {"from outside", {0, 0, 0}, {0, 0, 1}, 3},
        {"from inside", {0, 0, 4}, {0, 0, 1}, 3, 0},
        {"behind", {0, 0, 9}, {0, 0, 1}, MISS},
        {"tangent", {2, 0, 0}, {0, 0, 1}, 5},
        {"beside", {2.0001, 0, 0}, {0, 0, 1}, MISS},
        {"outwards from the surface", {0, 0, 7}, {0, 0, 1}, MISS},
        {"inwards from the surface", {0, 0, 7}, {0, 0, -1}, 4, 0},
        {"outside, but near", {2.0002, 0, 5}, {-1, 0, 0}, 4.0002, 0},
        {"outside by enough, at the far root", {2.0009, 0, 5}, {-1, 0, 0}, 4.0009, 1},
    };
    expectShots(makeSphere({0, 0, 5}, 2), shots);
    expectShots(makeSphere({0, 0, 0}, EPSILON), {{"far root, limit", {}, {1, 0, 0}, EPSILON, 0}});
    expectShots(makeSphere({0, 0, 2 * EPSILON}, EPSILON), {{"near root, limit", {}, {0, 0, 1}, EPSILON, 0}});
    expectShots(makeSphere({0, 0, 2 * BELOW}, BELOW), {{"too near", {}, {0, 0, 1}, 3 * BELOW, 0}});
    expectShots(makeSphere({0, 0, 0}, BELOW), {{"both too near", {}, {0, 0, 1}, MISS}});

    const Object* sphere = makeSphere({1, 2, 3}, -2);
    expectBounds(sphere, {-1, 0, 1}, {3, 4, 5});
    expectVec(normalAt(sphere, {1, 0, 3}), {0, -1, 0});
}
