#include "primitives/ring.h"

#include "fixture.h"

using RingTest = PrimitiveTest;

TEST_F(RingTest, Hits)
{
    const std::vector<Shot> shots = {
        {"from above", {1.5, 0, 5}, {0, 0, -1}, 2},
        {"from below", {1.5, 0, 1}, {0, 0, 1}, 2},
        {"on the inner circle", {0, 1, 5}, {0, 0, -1}, 2},
        {"in the hole", {0, 0.9999, 5}, {0, 0, -1}, MISS},
        {"on the outer circle", {-2, 0, 5}, {0, 0, -1}, 2},
        {"outside", {-2.0001, 0, 5}, {0, 0, -1}, MISS},
        {"in the plane", {-5, 0, 3}, {1, 0, 0}, MISS},
        {"flatter than other kinds allow", {0.5, 0, 3 + 0x1p-14}, {1, 0, -0x1p-14}, 1},
    };
    const Object* ring = makeRing({0, 0, 3}, {0, 0, 4}, 1, 2);
    expectShots(ring, shots);
    expectVec(normalAt(ring, {1.5, 0, 3}), {0, 0, 1}); // made unit
    expectShots(makeRing({0, 0, 0}, {0, 0, 1}, 0, 1),
                {{"centre, limit", {0, 0, EPSILON}, {0, 0, -1}, EPSILON},
                 {"too near", {0, 0, BELOW}, {0, 0, -1}, MISS}});
    expectShots(makeRing({0, 0, 0}, {0, 0, 0}, 0, 1), {{"no normal", {0, 0, 5}, {0, 0, -1}, MISS}});
}

TEST_F(RingTest, Bounds)
{
    expectBounds(makeRing({1, 2, 3}, {0, 0, 1}, 1, 2), {-1, 0, 3}, {3, 4, 3});
    expectBounds(makeRing({1, 2, 3}, {3, 0, -4}, 1, 2), {-0.6, 0, 1.8}, {2.6, 4, 4.2});
    expectBounds(makeRing({1, 2, 3}, {0, 0, 0}, 1, 2), {-1, 0, 1}, {3, 4, 5});
    // A normal so short that made unit it is longer than that.
    expectBounds(makeRing({1, 2, 3}, {0, 0, 2.7e-162}, 1, 2), {-1, 0, 3}, {3, 4, 3});
}
