#include "primitives/patch.h"

#include "fixture.h"

using PatchTest = PrimitiveTest;

constexpr Vec O = {0, 0, 0}, X = {1, 0, 0}, Y = {0, 1, 0}, Z = {0, 0, 1};

TEST_F(PatchTest, Face)
{
    Vec array[] = {O, Z, X, Z, Y, Z};
    const Object* patch = makePatch(array);
    expectBounds(patch, {-0.001, -0.001, -0.001}, {1.001, 1.001, 0.001});
    expectShots(patch, FACE_SHOTS);
    // All of its outline belongs to it.
    expectBelow(patch, {{0, 0, 1}, {1, 0, 1}, {0, 1, 1}, {0.5, 0, 1}, {0.5, 0.5, 1}, {0, 0.5, 1}}, 1);
    expectBelow(patch, {{0.5, -1e-9, 1}, {0.5, 0.5 + 1e-9, 1}, {-1e-9, 0.5, 1}}, MISS);

    Vec line[] = {O, Z, X, Z, 2 * X, Z};
    Vec point[] = {X, Z, X, Z, X, Z};
    for (Vec* flat : {line, point})
        expectBelow(makePatch(flat), {{1, 0, 1}}, MISS);
}

TEST_F(PatchTest, NormalIsThatOfTheHit)
{
    Vec array[] = {{1, 1, 1}, {0, 0, 5}, {3, 2, 2}, {0, 2, 1e-3}, {2, 3, -1}, {0, 3, 4}};
    const Object* patch = makePatch(array);
    const Vec weights[] = {{0.5, 0.25, 0.25}, {0.375, 0.125, 0.5}, {0.25, 0.7, 0.05}};
    Hit hits[3], *hit = hits;
    for (const Vec& w : weights) {
        const Ray ray = {w.x * array[0] + w.y * array[2] + w.z * array[4] + Z, -Z};
        ASSERT_EQ(patch->ObjectIntersect(patch, &ray, hit++), 1);
    }
    hit = hits; // asked only now: no hit may have changed the normal of another
    for (const Vec& w : weights)
        expectVec(patch->ObjectNormal(patch, {}, hit++),
                  unit(w.x * Z + w.y * unit(array[3]) + w.z * unit(array[5])));
}

TEST_F(PatchTest, NormalsAreTurnedToOneSide)
{
    const struct {
        const char* name;
        Vec p1, p2, given[3], expected[3];
    } cases[] = {
        {"all turned", X, Y, {-Z, -Z, -Z}, {Z, Z, Z}},
        {"none turned", Y, X, {-Z, -Z, -Z}, {-Z, -Z, -Z}},
        {"one turned", X, Y, {Z, {0, 0.6, -0.8}, Z}, {Z, {0, -0.6, 0.8}, Z}},
        {"square to the face", X, Y, {X, Z, Z}, {-X, Z, Z}},
        {"zero, taken from the face", X, Y, {O, -Z, X + Z}, {Z, Z, unit(X + Z)}},
        {"zero, the other side", Y, X, {-Z, O, O}, {-Z, -Z, -Z}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Vec array[] = {O, c.given[0], c.p1, c.given[1], c.p2, c.given[2]};
        const Patch& patch = makePatch(array)->patch;
        for (int i = 0; i < 3; ++i) {
            expectVec(patch.normals[i], c.expected[i]);
            EXPECT_GE(dot(array[2 * i + 1], c.expected[i]), 0.0); // the caller's are turned too
        }
    }
}
