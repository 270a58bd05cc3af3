#include "primitives/polygon.h"

#include "fixture.h"

class PolygonTest : public PrimitiveTest
{
protected:
    const Object* polygon(std::vector<Vec> outline)
    {
        const int count = static_cast<int>(outline.size());
        return makePolygon(keep(std::move(outline)), count);
    }
};

TEST_F(PolygonTest, Face)
{
    const Object* square = polygon({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}});
    expectShots(square, FACE_SHOTS);
    expectVec(normalAt(square, {}), {0, 0, -1});
    expectBounds(square, {0, 0, 0}, {1, 1, 0}); // no margin
}

TEST_F(PolygonTest, EvenOdd)
{
    const Object* l = polygon({{0, 0, 1}, {2, 0, 1}, {2, 1, 1}, {1, 1, 1}, {1, 2, 1}, {0, 2, 1}});
    expectBelow(l, {{1.5, 0.5, 2}, {0.5, 1.5, 2}, {0.5, 1, 2}}, 1);
    expectBelow(l, {{1.5, 1.5, 2}, {-1, 1, 2}, {3, 1, 2}}, MISS);

    const Object* star = polygon({{0, 10, 0}, {6, -8, 0}, {-9.5, 3, 0}, {9.5, 3, 0}, {-6, -8, 0}});
    expectBelow(star, {{0, 8, 1}, {5, -6, 1}, {-8, 2.5, 1}, {8, 2.5, 1}, {-5, -6, 1}}, 1);
    expectBelow(star, {{0, 0, 1}, {0, -6, 1}, {7, 7, 1}}, MISS);

    const Object* cornersLevel = polygon({{-1, 0, 0}, {0, -1, 0}, {1, 0, 0}, {0, 1, 0}});
    expectBelow(cornersLevel, {{0, 0, 1}}, 1);
    expectBelow(cornersLevel, {{-2, 0, 1}, {2, 0, 1}, {-1, -1, 1}, {1, 1, 1}}, MISS);

    expectBelow(polygon({{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 9}}), {{0.5, 1.5, 1}}, 1); // not flat
    expectBelow(polygon({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}}), {{1, 1, 1}},
                MISS); // no plane
}

TEST_F(PolygonTest, EveryEdgeCounts)
{
    for (int n = 4; n <= 13; ++n) {
        SCOPED_TRACE(n);
        std::vector<Vec> corners, inside, outside;
        for (int i = 0; i < n; ++i) {
            const double angle = 0.1 + i * 2 * PI / n, reach = std::cos(PI / n);
            const Vec out = {std::cos(angle), std::sin(angle), 0};
            corners.push_back({std::cos(angle - PI / n), std::sin(angle - PI / n), 0});
            inside.push_back(0.98 * reach * out + Vec{0, 0, 1});
            outside.push_back(1.02 * reach * out + Vec{0, 0, 1});
        }
        expectBelow(polygon(corners), inside, 1);
        expectBelow(polygon(corners), outside, MISS);
    }
}
