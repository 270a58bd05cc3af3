#include "bounds/intersec.h"

#include "bounds/bound.h"
#include "bounds/packed.h"
#include "primitives/cone.h"
#include "primitives/patch.h"
#include "primitives/plane.h"
#include "primitives/polygon.h"
#include "primitives/ring.h"
#include "primitives/sphere.h"
#include "primitives/triangle.h"
#include "support.h"

#include <random>

static constexpr Vec O = {0, 0, 0}, Z = {0, 0, 1};
static std::minstd_rand engine;            // the same numbers in every run
static std::vector<const Object*> objects; // without the nodes above them

struct IntersectTest : SceneTest {
    ~IntersectTest() override
    {
        releasePackedTree();
    }
};

TEST_F(IntersectTest, SlabsHoldTheirLimits)
{
    constexpr double REFUSED = -1000.0, ORIGIN[3] = {};
    const double nearer = std::nextafter(EPSILON, 0);
    const Vec slanted = {0.6, 0.64, 0.48}, alongX = {1, 0, -0.0};
    const struct {
        const char* name;
        Vec low, high, direction; // the ray starts at the world origin
        double key, limit = NO_LIMIT;
    } cases[] = {
        {"from outside", {1, 1, 1}, {2, 2, 2}, slanted, 1 / 0.48},
        {"from inside", {-1, -1, -1}, {1, 1, 1}, slanted, -1 / 0.64},
        {"against the axes", {-2, -2, -2}, {-1, -1, -1}, -slanted, 1 / 0.48},
        {"past it", {1, 3, 1}, {2, 4, 2}, slanted, REFUSED},
        {"through an edge", {1, 2, 0}, {2, 3, 1}, {0.8, 0.8, 0}, 2 / 0.8},
        {"behind", {-2, -2, -2}, {-1, -1, -1}, slanted, REFUSED},
        {"ends at the nearest", {-1, -1, -1}, {EPSILON, 1, 1}, alongX, -1},
        {"ends nearer", {-1, -1, -1}, {nearer, 1, 1}, alongX, REFUSED},
        {"beside it, along an axis", {1, 5, 1}, {2, 6, 2}, alongX, 1},
        {"no thickness", {1, -1, -1}, {1, 1, 1}, alongX, 1},
        {"begins at the limit", {1, -1, -1}, {2, 1, 1}, alongX, 1, 1.0},
        {"begins behind it", {1, -1, -1}, {2, 1, 1}, alongX, REFUSED, std::nextafter(1.0, 0)},
        {"of a plane", -NO_LIMIT * Vec{1, 1, 1}, NO_LIMIT * Vec{1, 1, 1}, slanted, -NO_LIMIT},
        {"no number says nothing", {1, 1, 1}, {2, 2, 2}, {0.8, NAN, 0}, 1 / 0.8},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Object node{};
        double direction[3], key = REFUSED;
        for (int axis = 0; axis < 3; ++axis) {
            node.boundsMin[axis] = coordinate(c.low, axis);
            node.boundsMax[axis] = coordinate(c.high, axis);
            direction[axis] = coordinate(c.direction, axis);
        }
        EXPECT_EQ(passesSlabs(&node, c.limit, ORIGIN, direction, &key), c.key != REFUSED);
        EXPECT_EQ(key, c.key);
    }
}

static int below(int end)
{
    return static_cast<int>(engine() % static_cast<unsigned>(end));
}

static double in(double low, double high)
{
    return low + (high - low) * (below(1 << 30) + 0.5) / (1 << 30);
}

static Vec point(double size)
{
    const double x = in(-size, size), y = in(-size, size);
    return {x, y, in(-size, size)};
}

static Object* addFace(Vec corner, Vec side, Vec otherSide)
{
    return makePolygon(onHeap({corner, corner + side, corner + side + otherSide, corner + otherSide}), 4);
}

/// Adds an object of any kind but a plane.
static void addAny(Vec center, double size)
{
    const Vec a = center + point(size), b = center + point(size), c = center + point(size);
    const double r = in(0.2, 0.5) * size, s = below(2) * in(0, 0.5) * size;
    Vec corners[] = {a, point(1), b, point(1), c, point(1)};
    const int kind = below(6);
    kind == 0   ? makeSphere(center, r)
    : kind == 1 ? makeRing(center, a - b, std::min(r, s), std::max(r, s))
    : kind == 2 ? makeTriangle(onHeap({a, b, c}))
    : kind == 3 ? addFace(a, b - a, c - a)
    : kind == 4 ? makeCone(a, r, b, below(2) == 0 ? s : r)
                : makePatch(corners);
}

/// Adds six polygons square to the axes. Boxes stand beside and inside each other, with faces in common.
static void addBox()
{
    const Vec low = {1.0 * below(5), 1.0 * below(5), 1.0 * below(5)};
    const Vec sides[] = {{1.0 + below(3), 0, 0}, {0, 1.0 + below(3), 0}, {0, 0, 1}};
    for (int i = 0; i < 3; ++i) {
        addFace(low, sides[i], sides[(i + 1) % 3]);
        addFace(low + sides[(i + 2) % 3], sides[i], sides[(i + 1) % 3]);
    }
}

/// Adds two patches with a common edge, which begins at the origin.
static void addPair()
{
    const Vec a = point(5), b = point(5);
    for (const Vec& c : {b, a - b}) {
        Vec corners[] = {O, Z, a, point(1), c, point(1)};
        makePatch(corners);
    }
}

static void addBent()
{
    makePolygon(onHeap({point(3), point(3), point(3), point(3)}), 4);
}

static const struct SceneKind {
    const char* name;
    void (*add)();          // one object or a small group
    bool isEnclosed = true; // no hit lies outside the bounds of its object
} kinds[] = {
    {"spread small objects", [] { addAny(point(6), 0.8); }},
    {"overlapping big objects", [] { addAny(point(2), 4.0); }},
    {"pairs of patches", addPair},
    {"boxes", addBox},
    {"planes", [] { below(6) == 0 ? makePlane(point(1), in(1, 6)) : makeSphere(point(5), in(0.2, 1)); }},
    {"every object twice", [] { engine.seed(7U + unsigned(nPrims) / 2), addAny(point(3), 2.0); }},
    {"bent polygons", addBent, false},
    {"spheres in spheres", [] { makeSphere(O, 0.25 * (1 + below(16))); }},
    {"tubes in tubes", [] { makeCone(-4 * Z, 0.25 * (1 + below(16)), 4 * Z, 1); }},
};

/// Fills the scene, up to its tree.
static void addObjects(const SceneKind& kind, int count)
{
    resetScene();
    objects.clear();
    while (nPrims < count)
        kind.add();
    for (const Object* object = myObjectList; object != nullptr; object = object->next)
        objects.push_back(object);
    buildBoundingSlabs();
}

/// A ray through the neighbourhood of those scenes. Now and then it runs along an axis.
static Ray randomRay()
{
    const Vec origin = point(8);
    if (below(8) == 0)
        return {origin, (below(2) == 0 ? 1.0 : -1.0) * Slab[below(3)]};
    return {origin, unit(below(4) == 0 ? point(1) : point(3) - origin)};
}

/// Sends a ray on each way through the tree and, if `loops`, past all objects one by one.
static Hit compareWays(const Ray& ray, double limit, const Object* exclude, bool loops)
{
    Hit byHeap{}, hit{};
    const int found = intersectByHeap(&ray, limit, &byHeap, exclude);
    EXPECT_EQ(intersect(&ray, limit, &hit, exclude), found);
    EXPECT_EQ(isBlocked(&ray, limit, exclude), found != 0);
    if (!found)
        byHeap = hit = {};
    EXPECT_EQ(hit.object, byHeap.object); // of several at one distance too
    EXPECT_EQ(hit.distance, byHeap.distance);
    EXPECT_EQ(hit.entering, byHeap.entering);
    double nearest = limit;
    for (const Object* object : objects) {
        Hit alone;
        if (loops && object != exclude && object->ObjectIntersect(object, &ray, &alone))
            nearest = std::min(nearest, alone.distance);
    }
    EXPECT_TRUE(!loops || (found ? hit.distance : limit) == nearest);
    Hit again;
    EXPECT_TRUE(!found || byHeap.object->ObjectIntersect(byHeap.object, &ray, &again));
    EXPECT_TRUE(!found || again.distance == byHeap.distance);
    return byHeap;
}

TEST_F(IntersectTest, AgreesWithALoopOverAllObjects)
{
    for (const SceneKind& kind : kinds) {
        for (const int count : {2, 6, 30, 120}) {
            SCOPED_TRACE(kind.name);
            addObjects(kind, count);
            iPQSize = 1024;
            packTree();
            for (int i = 0; i < 3000 && !HasFailure(); ++i) {
                const Ray ray = randomRay();
                const Hit hit = compareWays(ray, NO_LIMIT, nullptr, kind.isEnclosed);
                const Vec start = ray.origin + hit.distance * ray.direction;
                const Vec toLight = point(6) - start;
                const Ray shadowRay = {start, unit(toLight)}; // as from a hit, which does not block it
                compareWays(shadowRay, lengthOf(toLight), hit.object, kind.isEnclosed);
            }
            releasePackedTree();
        }
    }
}

TEST_F(IntersectTest, RunsOverOnTheSameRays)
{
    addObjects(kinds[1], 300);
    int statuses[2] = {};
    for (int i = 0; i < 30; ++i) {
        iPQSize = 10 + 2 * i;
        packTree();
        const Ray ray = randomRay();
        Hit hit;
        const int status = inChild([&] { intersectByHeap(&ray, NO_LIMIT, &hit, nullptr); }).status;
        EXPECT_EQ(inChild([&] { intersect(&ray, NO_LIMIT, &hit, nullptr); }).status, status);
        ASSERT_LE(status, 1);
        ++statuses[status];
    }
    EXPECT_GT(std::min(statuses[0], statuses[1]), 5);
}

TEST_F(IntersectTest, FewObjectsAndNoNumbers)
{
    const Ray ray = {{0, 0, 5}, {0, 0, -1}};
    const SceneKind same = {"", [] { makeSphere({0, 0, 0}, 1.0); }};
    for (const int count : {0, 1, 2, 300}) {
        SCOPED_TRACE(count);
        addObjects(same, count);
        packTree();
        const Object* first = count > 0 ? objects[0] : nullptr;
        Hit hit{};
        EXPECT_EQ(intersect(&ray, NO_LIMIT, &hit, nullptr), count > 0);
        EXPECT_TRUE(count > 2 || hit.object == first); // of two at one distance too
        // A single object knows neither limit nor exclude.
        EXPECT_EQ(intersect(&ray, 4.0, &hit, first), count == 1);
        EXPECT_EQ(isBlocked(&ray, 4.0, first), count == 1);
        for (const Vec& spoil : {Vec{NAN, 0, 0}, Vec{0, NAN, 0}, Vec{0, 0, NAN}})
            for (const Ray& r : {Ray{ray.origin + spoil, ray.direction}, {ray.origin, ray.direction + spoil}})
                EXPECT_FALSE(intersect(&r, NO_LIMIT, &hit, nullptr) || isBlocked(&r, 9.0, nullptr));
        releasePackedTree();
    }
}
