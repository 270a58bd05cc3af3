#include "primitives/plane.h"

#include "fixture.h"

using PlaneTest = PrimitiveTest;

TEST_F(PlaneTest, HitsAlongItsNormalOnly)
{
    const Object* plane = makePlane({0, 0, -2}, 3); // z = -3: the distance is not halved
    expectVec(normalAt(plane, {7, 7, 7}), {0, 0, -1});
    expectBounds(plane, {-1e10, -1e10, -1e10}, {1e10, 1e10, 1e10});
    expectShots(plane, {
                           {"along", {9, 9, 0}, {0, 0, -1}, 3},
                           {"against", {9, 9, -4}, {0, 0, 1}, MISS},
                           {"starts on it", {9, 9, -3}, {0, 0, -1}, 0},
                           {"starts behind it", {9, 9, -3.001}, {0, 0, -1}, MISS},
                           {"flattest that hits", {0, 0, -2}, FLATTEST, 1000},
                           {"too flat", {0, 0, -2}, TOO_FLAT, MISS},
                           {"parallel", {0, 0, -2}, {1, 0, 0}, MISS},
                       });
}
