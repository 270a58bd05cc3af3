#include "bounds/intersec.h"

#include "bounds/bound.h"
#include "bounds/packed.h"
#include "bounds/slab.h"
#include "bounds/walk.h"
#include "core/settings.h"
#include "engine/light.h"
#include "engine/ray.h"
#include "primitives/kinds.h"
#include "support.h"

#include <random>

static constexpr Vec O = {0, 0, 0}, Z = {0, 0, 1};
static std::minstd_rand engine;            // the same numbers in every run
static std::vector<const Object*> objects; // without the nodes above them

struct IntersectTest : SceneTest {
    const bool isWide = isWideWalk; // as the processor allows
    ~IntersectTest() override
    {
        isWideWalk = isWide;
    }
};

TEST_F(IntersectTest, SlabsHoldTheirLimits)
{
    constexpr double REFUSED = -1000.0, ORIGIN[3] = {};
    const Vec slanted = {0.6, 0.64, 0.48}, alongX = {1, 0, -0.0}, one = {1, 1, 1}, two = 2 * one;
    const std::tuple<Vec, Vec, Vec, double, double> cases[] = {
        // low, high, direction, limit, key
        {one, two, slanted, NO_LIMIT, 1 / 0.48},
        {-one, one, slanted, NO_LIMIT, -1 / 0.64}, // from inside
        {-two, -one, -slanted, NO_LIMIT, 1 / 0.48},
        {-two, -one, slanted, NO_LIMIT, REFUSED},                 // behind
        {{1, 3, 1}, {2, 4, 2}, slanted, NO_LIMIT, REFUSED},       // past it
        {{1, 2, 0}, {2, 3, 1}, {0.8, 0.8, 0}, NO_LIMIT, 2 / 0.8}, // through an edge
        {-one, {EPSILON, 1, 1}, alongX, NO_LIMIT, -1},
        {-one, {std::nextafter(EPSILON, 0), 1, 1}, alongX, NO_LIMIT, REFUSED},
        {{1, 5, 1}, {2, 6, 2}, alongX, NO_LIMIT, 1}, // beside it, along an axis
        {{1, -1, -1}, one, alongX, 1, 1},            // begins at the limit, without thickness
        {{1, -1, -1}, two, alongX, std::nextafter(1.0, 0), REFUSED},
        {-NO_LIMIT * one, NO_LIMIT * one, slanted, NO_LIMIT, -NO_LIMIT}, // of a plane
        {one, two, {0.8, NAN, 0}, NO_LIMIT, 1 / 0.8}};                   // no number says nothing
    for (const auto& [low, high, along, limit, expected] : cases) {
        SCOPED_TRACE(expected);
        Object node{};
        double direction[3], key = REFUSED;
        for (int axis = 0; axis < 3; ++axis) {
            node.boundsMin[axis] = coordinate(low, axis);
            node.boundsMax[axis] = coordinate(high, axis);
            direction[axis] = coordinate(along, axis);
        }
        EXPECT_EQ(passesSlabs(&node, limit, ORIGIN, direction, &key), expected != REFUSED);
        EXPECT_EQ(key, expected);
    }
}

static const auto below = [](int end) { return static_cast<int>(engine() % static_cast<unsigned>(end)); };
static const auto in = [](double low, double high) {
    return low + (high - low) * below(1 << 20) / (1 << 20);
};

static Vec point(double size)
{
    const double x = in(-size, size), y = in(-size, size);
    return {x, y, in(-size, size)};
}

static Object* addFace(Vec corner, Vec side, Vec otherSide)
{
    const Vec corners[] = {corner, corner + side, corner + side + otherSide, corner + otherSide};
    return makePolygon(corners, 4);
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
    : kind == 2 ? makeTriangle(std::vector{a, b, c}.data())
    : kind == 3 ? addFace(a, b - a, c - a)
    : kind == 4 ? makeCone(a, r, b, below(2) == 0 ? s : r)
                : makePatch(corners);
}

/// Adds a face square to an axis, on a grid: others touch, cover and cross it.
static void addSquare()
{
    const int axis = below(3);
    const Vec corner = {1.0 * below(5), 1.0 * below(5), 1.0 * below(5)};
    addFace(corner, (1.0 + below(3)) * Slab[axis], (1.0 + below(3)) * Slab[(axis + 1) % 3]);
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

static const struct SceneKind {
    const char* name;
    bool isEnclosed; // no hit lies outside the bounds of its object
    void (*add)();   // one object or a small group
} kinds[] = {
    {"spread small objects", true, [] { addAny(point(6), 0.8); }},
    {"overlapping big objects", true, [] { addAny(point(2), 4.0); }},
    {"pairs of patches", true, addPair},
    {"faces on a grid", true, addSquare},
    {"planes", true,
     [] { below(6) == 0 ? makePlane(point(1), in(1, 6)) : makeSphere(point(5), in(0.2, 1)); }},
    {"every object twice", true, [] { engine.seed(7U + unsigned(nPrims) / 2), addAny(point(3), 2.0); }},
    {"bent", false,
     [] {
         makePolygon(std::vector{point(3), point(3), point(3), point(3)}.data(), 4);
     }},
    {"spheres in spheres", true, [] { makeSphere(O, 0.25 * (1 + below(16))); }},
    {"tubes in tubes", true, [] { makeCone(-4 * Z, 0.25 * (1 + below(16)), 4 * Z, 1); }},
    {"a chain of nodes", true, // each sphere is farther away than all before it are wide
     [] {
         const double r = std::pow(1.3, static_cast<double>(nPrims));
         makeSphere({9 * r, in(-r, r), in(-r, r)}, r);
     }},
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

/// Sends a ray on each way through the tree and past all objects one by one, or just to the one hit.
static Hit compareWays(const Ray& ray, double limit, const Object* exclude, bool loops)
{
    Hit byHeap{}, hit{};
    const int found = intersectByHeap(&ray, limit, &byHeap, exclude);
    EXPECT_EQ(intersect(&ray, limit, &hit, exclude), found);
    EXPECT_EQ(isBlocked(&ray, limit, exclude), found != 0);
    if (!found)
        byHeap = hit = {};
    EXPECT_EQ(std::tuple(hit.object, hit.distance, hit.entering),
              std::tuple(byHeap.object, byHeap.distance, byHeap.entering)); // of several at one distance too
    double nearest = limit;
    for (const Object* object : objects) {
        Hit alone;
        if ((loops || object == hit.object) && object != exclude && ObjectIntersect(object, &ray, &alone))
            nearest = std::min(nearest, alone.distance);
    }
    EXPECT_EQ(found ? hit.distance : limit, nearest);
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
                isWideWalk = isWide && i % 2 == 0;
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
    int ends = 0;
    for (iPQSize = 10; iPQSize < 70; iPQSize += 2) {
        isWideWalk = isWide && iPQSize % 4 == 0;
        packTree();
        const Ray ray = randomRay();
        Hit hit;
        const int status = inChild([&] { intersectByHeap(&ray, NO_LIMIT, &hit, nullptr); }).status;
        EXPECT_EQ(inChild([&] { intersect(&ray, NO_LIMIT, &hit, nullptr); }).status, status);
        ends += status;
    }
    releasePackedTree();
    EXPECT_TRUE(ends > 5 && ends < 25) << ends;
}

TEST_F(IntersectTest, TheLeastQueueThatHoldsARayIsTheSameForBothWalks)
{
    for (const int kind : {0, 1, 7, 9}) {
        SCOPED_TRACE(kinds[kind].name);
        addObjects(kinds[kind], 120);
        packTree();
        const Ray ray = randomRay();
        const auto status = [&](int size, auto walk) {
            iPQSize = size;
            return inChild([&] {
                       Hit hit;
                       walk(&ray, NO_LIMIT, &hit, nullptr);
                   })
                .status;
        };
        int least = 2;
        while (status(least, intersectByHeap) != 0)
            ++least;
        for (isWideWalk = false;; isWideWalk = true) {
            EXPECT_EQ(status(least, intersect), 0);
            EXPECT_EQ(status(least - 1, intersect), 1);
            if (isWideWalk == isWide)
                break;
        }
        releasePackedTree();
    }
}

/// The scenes of the gallery: a walk that leaves much to the heap gives the same pictures, but slowly.
TEST_F(IntersectTest, TheWalkAnswersNineOfTenRaysOfTheGallery)
{
    const Folder folder;
    const std::string examples = VARLO_SOURCE_DIR "/examples";
    std::filesystem::copy(examples, folder.path, std::filesystem::copy_options::recursive);
    ASSERT_EQ(system((examples + "/generate " + folder.path + " >/dev/null 2>&1").c_str()), 0);
    std::filesystem::current_path(folder.path);
    int rays = 0, answers = 0;
    for (const auto& file : std::filesystem::directory_iterator(".")) {
        const bool lacksModel = file.path().stem() == "teatime" && !std::filesystem::exists("teapot.inc");
        if (file.path().extension() != ".vlo" || lacksModel)
            continue;
        resetScene();
        printed([&] { parseFile(file.path().c_str()); });
        buildBoundingSlabs();
        packTree();
        screenInit();
        Ray ray;
        startRay(&ray);
        const auto count = [&](Answer answer) { ++rays, answers += answer != Answer::UNSURE; };
        for (int i = 0; i < 32 * 24 && packedRoot != 0; ++i) {
            initRay((i % 32 + 0.5) * myDisplay.width / 32, (i / 32 + 0.5) * myDisplay.height / 24, &ray);
            const Object* nearest;
            count(walkToNearest(ray, NO_LIMIT, nullptr, &nearest));
            Hit hit{};
            if (myLightList == nullptr || intersect(&ray, NO_LIMIT, &hit, nullptr) == 0)
                continue;
            Ray toLight;
            const Vec point = ray.origin + hit.distance * ray.direction;
            const double distance = makeLightRay(myLightList, point, &toLight);
            count(walkToAny(toLight, distance, hit.object, &nearest));
        }
        releasePackedTree();
    }
    std::filesystem::current_path("/");
    EXPECT_GT(rays, 30000);
    EXPECT_GE(10 * answers, 9 * rays) << answers << " of " << rays;
}

TEST_F(IntersectTest, FewObjectsAndNoNumbers)
{
    const Vec origin = {0, 0, 5};
    for (const int count : {0, 1, 2, 300}) {
        SCOPED_TRACE(count);
        addObjects({"", true, [] { makeSphere(O, 1.0); }}, count);
        packTree();
        const Object* first = count > 0 ? objects[0] : nullptr;
        const Ray ray = {origin, -Z};
        Hit hit{};
        EXPECT_EQ(intersect(&ray, NO_LIMIT, &hit, nullptr), count > 0);
        EXPECT_TRUE(count > 2 || hit.object == first);            // of two at one distance too
        EXPECT_EQ(intersect(&ray, 4.0, &hit, first), count == 1); // which knows neither limit nor exclude
        EXPECT_EQ(isBlocked(&ray, 4.0, first), count == 1);
        for (const Vec& spoil : {Vec{NAN, 0, 0}, Vec{0, NAN, 0}, Vec{0, 0, NAN}})
            for (const Ray& r : {Ray{origin + spoil, -Z}, {origin, spoil - Z}})
                EXPECT_FALSE(intersect(&r, NO_LIMIT, &hit, nullptr) || isBlocked(&r, 9.0, nullptr));
        releasePackedTree();
    }
}

TEST_F(IntersectTest, LeavesBoundsOfNonNumbersToTheHeap)
{
    makeSphere(O, 1);
    makeSphere(3 * Z, 1);
    makeRing(5 * Z, 2.7e-162 * Z, 0, 1); // its normal cannot be made unit
    buildBoundingSlabs();
    packTree();
    EXPECT_EQ(packedRoot, 0);
}
