#include "primitives/kinds.h"
#include "support.h"

using PrimitiveTest = SceneTest;

static constexpr double MISS = -1.0; // stands where a hit has its distance
static constexpr Vec O = {0, 0, 0}, X = {1, 0, 0}, Y = {0, 1, 0}, Z = {0, 0, 1};
static const double s = std::sqrt(0.5), under = std::nextafter(EPSILON, 0), over = std::nextafter(EPSILON, 1);
static const Vec slant = {0.6, 0.8, 0}, flat = {std::sqrt(1 - EPSILON * EPSILON), 0, -EPSILON};
static const Vec tooFlat = {flat.x, 0, -under};

/// Shoots from each point.
static void expectShots(const Object* object, Vec direction, const std::vector<Vec>& points, double distance,
                        int entering = 1)
{
    for (const Vec& point : points) {
        SCOPED_TRACE(line(point.x, point.y, point.z));
        Hit hit{};
        const Ray ray = {point, direction};
        ASSERT_EQ(ObjectIntersect(object, &ray, &hit), distance != MISS);
        if (distance == MISS)
            continue;
        EXPECT_DOUBLE_EQ(hit.distance, distance);
        EXPECT_TRUE(hit.entering == entering && hit.object == object);
        for (const Vec& spoil : {Vec{NAN, 0, 0}, {0, NAN, 0}, {0, 0, NAN}})
            for (const Ray& r : {Ray{point + spoil, direction}, {point, direction + spoil}})
                EXPECT_FALSE(ObjectIntersect(object, &r, &hit));
    }
}

static void expectBounds(const Object* object, Vec low, Vec high)
{
    expectNear({object->boundsMin[0], object->boundsMin[1], object->boundsMin[2]}, low);
    expectNear({object->boundsMax[0], object->boundsMax[1], object->boundsMax[2]}, high);
}

TEST_F(PrimitiveTest, Cone)
{
    const Object* tube = makeCone(O, 1, {0, 5, 0}, 1);
    expectShots(tube, X, {{-3, 1, 0}, {-3, 0, 0}, {-3, 5, 0}}, 2, 0); // on the rims too
    expectShots(tube, X, {{3, 1, 0}, {1, 1, 0}, {-3, 1, 1.0001}, {-3, -0.0001, 0}, {-3, 5.0001, 0}}, MISS);
    expectShots(tube, X, {{-3, 1, 1}}, 3, 0);                 // tangent
    expectShots(tube, Y, {{0.2, -3, 0.1}, {2, -3, 0}}, MISS); // parallel, inside and outside
    expectShots(tube, slant, {{0, -1, 0}}, 1 / 0.6, 0);       // through the open end
    expectShots(tube, slant, {{-2, -2, 0}}, 5, 0);            // past the near wall to the far one
    const Object* cone = makeCone(O, 0, Y, 1);
    expectShots(cone, Y, {{0.25, -3, 0}}, 3.25, 0);                // past the mirror cone
    expectShots(cone, {s, s, 0}, {{-0.75, 0.25, 0}}, 0.25 / s, 0); // parallel to a wall
    expectShots(cone, {s, s, 0}, {{-0.25, 0.75, 0}}, MISS);        // the same, behind
    const Object* displaced = makeCone({1, 0, 0}, 1, {1, 4, 0}, 3);
    expectShots(makeCone(-Z, EPSILON, Z, EPSILON), X, {O}, MISS);
    expectShots(makeCone(-Z, over, Z, over), X, {O}, over, 0);

    expectNear(recordOf<Cone>(makeCone(O, 1, {0.0447, 0, -1}, 1)).frameU,
               unit({1, 0, 0.0447})); // still near z
    expectNear(recordOf<Cone>(makeCone(O, 1, {0.0448, 0, -1}, 1)).frameU, -Y);
    expectBounds(makeCone(O, 1, X + Z, 1), {-s, -1, -s}, {1 + s, 1, 1 + s});
    expectBounds(displaced, {-2, 0, -3}, {4, 4, 3});                            // the cap is wider
    expectBounds(makeCone({1, 4, 0}, 3, {1, 0, 0}, 1), {-2, 0, -3}, {4, 4, 3}); // the base is
    EXPECT_TRUE(std::isnan(makeCone(O, 1, 2.7e-162 * Z, 1)->boundsMax[2]));     // too short to be made unit
    expectNear(ObjectNormal(cone, {0.5, 0.5, 0}, nullptr), {s, -s, 0});
}

TEST_F(PrimitiveTest, Ring)
{
    const Object* ring = makeRing({0, 0, 3}, {0, 0, 4}, 1, 2);
    expectShots(ring, -Z, {{0, 1, 5}, {-2, 0, 5}}, 2); // both circles belong to it
    expectShots(ring, -Z, {{0, 0.9999, 5}, {-2.0001, 0, 5}}, MISS);
    expectShots(ring, {1, 0, -0x1p-14}, {{0.5, 0, 3 + 0x1p-14}}, 1); // flatter than other kinds allow
    expectNear(ObjectNormal(ring, {1.5, 0, 3}, nullptr), Z);
    expectShots(makeRing(O, Z, 0, 1), -Z, {EPSILON * Z}, EPSILON);
    expectShots(makeRing(O, Z, 0, 1), -Z, {under * Z}, MISS);
    expectShots(makeRing(O, O, 0, 1), -Z, {5 * Z}, MISS);
    expectBounds(makeRing({1, 2, 3}, {3, 0, -4}, 1, 2), {-0.6, 0, 1.8}, {2.6, 4, 4.2});
    expectBounds(makeRing({1, 2, 3}, O, 1, 2), {-1, 0, 1}, {3, 4, 5}); // a zero normal stays as it is
    EXPECT_TRUE(std::isnan(makeRing({1, 2, 3}, 2.7e-162 * Z, 1, 2)->boundsMax[2])); // too short, as above
}

TEST_F(PrimitiveTest, Sphere)
{
    const Object* sphere = makeSphere({0, 0, 5}, 2);
    expectShots(sphere, Z, {O}, 3);
    expectShots(sphere, Z, {{2, 0, 0}}, 5);                               // tangent
    expectShots(sphere, Z, {{0, 0, 9}, {2.0001, 0, 0}, {0, 0, 7}}, MISS); // behind, beside, outwards from it
    expectShots(sphere, -X, {{2.0002, 0, 5}}, 4.0002, 0);                 // outside, but near
    expectShots(sphere, -X, {{2.0009, 0, 5}}, 4.0009, 1);    // outside by enough, at the far root
    expectShots(makeSphere(O, EPSILON), X, {O}, EPSILON, 0); // the far root on its limit, then the near one
    expectShots(makeSphere(2 * EPSILON * Z, EPSILON), Z, {O}, EPSILON, 0);
    expectShots(makeSphere(O, under), X, {O}, MISS);
    expectBounds(makeSphere({1, 2, 3}, -2), {-1, 0, 1}, {3, 4, 5});
    expectNear(ObjectNormal(sphere, {0, -2, 5}, nullptr), -Y);
}

TEST_F(PrimitiveTest, Plane)
{
    const Object* plane = makePlane({0, 0, -2}, 3); // z = -3: the distance is not halved
    expectShots(plane, -Z, {{9, 9, 0}}, 3);
    expectShots(plane, -Z, {{9, 9, -3}}, 0); // starts on it
    expectShots(plane, -Z, {{9, 9, -3.001}}, MISS);
    expectShots(plane, Z, {{9, 9, -4}}, MISS); // against its normal
    expectShots(plane, flat, {{0, 0, -2}}, 1000);
    expectShots(plane, tooFlat, {{0, 0, -2}}, MISS);
    expectBounds(plane, {-1e10, -1e10, -1e10}, {1e10, 1e10, 1e10});
}

/// A polygon, or a triangle of three corners.
static Object* face(const std::vector<Vec>& corners)
{
    return corners.size() == 3 ? makeTriangle(corners.data())
                               : makePolygon(corners.data(), int(corners.size()));
}

static Object* patch(Vec a, Vec b, Vec c)
{
    Vec array[] = {a, Z, b, Z, c, Z};
    return makePatch(array);
}

TEST_F(PrimitiveTest, FacesInOnePlane)
{
    Object* faces[] = {face({O, X, Y}), face({O, Y, X}), patch(O, X, Y), face({O, X, X + Y, Y})};
    for (const Object* each : faces) {
        expectShots(each, {0, -0.6, -0.8}, {{0.25, 1.75, 2}}, 2.5);
        expectShots(each, Z, {{0.25, 0.25, 2}}, MISS);
        expectShots(each, flat, {{0, 0.25, 0.00025}}, 0.25);
        expectShots(each, tooFlat, {{0, 0.25, 0.00025}}, MISS);
        expectShots(each, -tooFlat, {{0.5, 0.25, -0.00025}}, MISS);
        expectShots(each, -Z, {{0.25, 0.25, EPSILON}}, EPSILON);
        expectShots(each, -Z, {{0.25, 0.25, under}}, MISS);
        const Vec margin = each->type == POLYGON ? O : Vec{0.001, 0.001, 0.001};
        expectBounds(each, -margin, margin + X + Y);
    }
    expectNear(ObjectNormal(faces[1], O, nullptr), Z);
    for (const Vec& end : {3 * X, X}) // a line and a point
        for (const Object* empty : {face({X, X, end}), face({X, X, end, end + Y}), patch(X, X, end)})
            expectShots(empty, -Z, {{1, 0, 1}, {1.5, 0, 1}, {1.5, 0.2, 1}}, MISS);
}

TEST_F(PrimitiveTest, InsideOfOutlines)
{
    const Object* half = face({Z, X + Z, Y + Z});
    expectShots(half, -Z, {{0.25, 0.25, 2}, {0.4989, 0.5, 2}, {1e-9, 0.5, 2}, {0.25, 1e-5, 2}}, 1);
    expectShots(half, -Z, {2 * Z, {0.5, 0, 2}, {0, 0.5, 2}, {0.5, 0.5, 2}, {0.4991, 0.5, 2}}, MISS);
    // An edge that crosses EPSILON to the right of 0, 0 leaves it inside, and one just nearer does not.
    expectShots(face({{-0.999, -1, 0}, {EPSILON, 0, 0}, {-5, 5, 0}}), -Z, {Z}, 1);
    expectShots(face({{-0.999, -1, 0}, {under, 0, 0}, {-5, 5, 0}}), -Z, {Z}, MISS);
    expectShots(patch(O, X, Y), -Z, {Z, X + Z, Y + Z, {0.5, 0, 1}, {0.5, 0.5, 1}, {0, 0.5, 1}}, 1);
    expectShots(patch(O, X, Y), -Z, {{0.5, -1e-9, 1}, {0.5, 0.5 + 1e-9, 1}, {-1e-9, 0.5, 1}}, MISS);

    const Object* l = face({{0, 0, 1}, {2, 0, 1}, {2, 1, 1}, {1, 1, 1}, {1, 2, 1}, {0, 2, 1}});
    expectShots(l, -Z, {{1.5, 0.5, 2}, {0.5, 1.5, 2}, {0.5, 1, 2}}, 1);
    expectShots(l, -Z, {{1.5, 1.5, 2}, {-1, 1, 2}, {3, 1, 2}}, MISS);
    const Object* star = face({{0, 10, 0}, {6, -8, 0}, {-9.5, 3, 0}, {9.5, 3, 0}, {-6, -8, 0}});
    expectShots(star, -Z, {{0, 8, 1}, {5, -6, 1}, {-8, 2.5, 1}, {8, 2.5, 1}, {-5, -6, 1}}, 1);
    expectShots(star, -Z, {{0, 0, 1}, {0, -6, 1}, {7, 7, 1}}, MISS);
    expectShots(face({-X, -Y, X, Y}), -Z, {Z}, 1); // level with two corners
    expectShots(face({-X, -Y, X, Y}), -Z, {{-2, 0, 1}, {2, 0, 1}, {-1, -1, 1}}, MISS);
    expectShots(face({O, {2, 0, 0}, {2, 2, 0}, {0, 2, 9}}), -Z, {{0.5, 1.5, 1}}, 1); // not flat
}

TEST_F(PrimitiveTest, BinsOfAnOutlineLoseNoEdge)
{
    constexpr int CORNERS = 73, EDGES = edgesOf(CORNERS);
    for (const int shape : {0, 1, 2, 3})
        for (const double height : {1.0, 1e-3, 1e300, 0.0, 1.7e308}) {
            Vec corners[CORNERS];
            double u[EDGES + 1], v[EDGES + 1];
            for (int i = 0; i < CORNERS; ++i) {
                // a star that crosses itself, a gear, a spiral, and battlements with upright edges
                const double odd = i % 2, angle = (shape == 0 ? 84 : shape == 2 ? 4 : 1) * i / 11.7;
                const double radius = shape == 1 ? 1 - odd / 9 : shape == 2 ? i / 73.0 : 1;
                corners[i] = shape == 3 ? Vec{std::floor(i / 2), (i + 1) / 2 % 2 * 2.0 - 1, 0}
                                        : radius * Vec{std::cos(angle), std::sin(angle), 0};
                corners[i].y *= height;
            }
            projectOutline(corners, CORNERS, 0, 1, u, v);
            const OutlineBins* bins = makeOutlineBins(u, v, EDGES);
            ASSERT_EQ(bins != nullptr, height > 0 && height < 1e308) << height;
            for (int i = 0; bins != nullptr && i < CORNERS * CORNERS; ++i) {
                const double x = u[i / CORNERS], y = v[i % CORNERS];
                const double border = bins->low + i % CORNERS / bins->perUnit;
                for (const double px : {x, std::nextafter(x, -99), std::nextafter(x, 99), x * 0.9})
                    for (const double py : {y, std::nextafter(y, 9e307), border, y * 0.7})
                        ASSERT_EQ(outlineHolds(u, v, *bins, px, py), outlineHolds(u, v, EDGES, px, py))
                            << px << ' ' << py;
            }
        }
}

TEST_F(PrimitiveTest, PatchHasTheNormalOfTheHit)
{
    Vec array[] = {{1, 1, 1}, {0, 0, 5}, {3, 2, 2}, {0, 2, 1e-3}, {2, 3, -1}, {0, 3, 4}};
    const Object* bent = makePatch(array);
    const Vec weights[] = {{0.5, 0.25, 0.25}, {0.375, 0.125, 0.5}};
    Hit hits[2];
    for (size_t i : {0U, 1U}) {
        const Vec w = weights[i];
        const Ray ray = {w.x * array[0] + w.y * array[2] + w.z * array[4] + Z, -Z};
        ASSERT_EQ(ObjectIntersect(bent, &ray, &hits[i]), 1);
    }
    for (size_t i : {0U, 1U}) // asked only now: no hit may have changed the normal of another
        expectNear(ObjectNormal(bent, {}, &hits[i]),
                   unit(weights[i].x * Z + weights[i].y * unit(array[3]) + weights[i].z * unit(array[5])));
}

TEST_F(PrimitiveTest, NormalsOfAPatchAreTurnedToOneSide)
{
    const Vec cases[][8] = {{X, Y, -Z, -Z, -Z, Z, Z, Z}, // second and third vertex, normals, and turned
                            {X, Y, Z, {0, 0.6, -0.8}, Z, Z, {0, -0.6, 0.8}, Z},
                            {X, Y, X, Z, Z, -X, Z, Z},               // square to the face
                            {X, Y, O, -Z, X + Z, Z, Z, unit(X + Z)}, // zero: taken from the face
                            {Y, X, -Z, O, O, -Z, -Z, -Z}};
    for (const auto& c : cases) {
        Vec array[] = {O, c[2], c[0], c[3], c[1], c[4]};
        const Patch& turned = recordOf<Patch>(makePatch(array));
        for (int i = 0; i < 3; ++i) {
            expectNear(turned.normals[i], c[5 + i]);
            EXPECT_GE(dot(array[2 * i + 1], c[5 + i]), 0.0); // the caller's are turned too
        }
    }
}
