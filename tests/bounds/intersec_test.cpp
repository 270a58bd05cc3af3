#include "bounds/intersec.h"

#include "bounds/bound.h"
#include "bounds/packed.h"
#include "bounds/packing.h"
#include "bounds/room.h"
#include "bounds/sieve.h"
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
static std::vector<Vec> targets;           // points that rays are sent to

static const bool isWide = isWideWalk; // as the processor allows

struct IntersectTest : SceneTest {
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

/// Makes a triangle or a patch, and aims at its face, its edge and just beside.
static void addFace(bool isPatch, double away, double length, double ratio)
{
    const Vec a = point(away), side = length * point(1), b = a + side;
    const Vec c = a + in(0, 1) * side + ratio * length * point(1), corners[] = {a, b, c};
    Vec array[] = {a, Z, b, Z, c, Z};
    isPatch ? makePatch(array) : makeTriangle(corners);
    targets.push_back(a + in(0, 1) * side);
    targets.push_back(a + in(0, 1) * side + in(0, EPSILON) * Slab[below(3)]);
    targets.push_back(a + in(0, 0.5) * side + in(0, 0.5) * (c - a));
}

/// Scenes that the gallery has not.
static const struct SceneKind {
    const char* name;
    bool isEnclosed; // no hit lies outside the bounds of its object
    void (*add)();
} kinds[] = {
    {"patches with common edges", true,
     [] {
         Vec corners[] = {O, Z, 4.0 * Slab[nPrims % 3], point(1), point(5), point(1)};
         makePatch(corners);
     }},
    {"squares on a grid, as thin as their bounds", true,
     [] {
         const Vec corner = {1.0 * below(5), 1.0 * below(5), 1.0 * below(5)};
         const Vec side = Slab[nPrims % 3], other = (1.0 + below(3)) * Slab[(nPrims + 1) % 3];
         const Vec corners[] = {corner, corner + side, corner + side + other, corner + other};
         makePolygon(corners, 4);
     }},
    {"bent", false,
     [] {
         const Vec corners[] = {point(3), point(3), point(3), point(3)};
         makePolygon(corners, 4);
     }},
    {"spheres in spheres, each some times", true, [] { makeSphere(O, 0.25 * (1 + below(16))); }},
    {"triangles as small as the blur of their edges", false, [] { addFace(false, 0.01, 10 * EPSILON, 1); }},
    {"small patches", false, [] { addFace(true, 0.3, 1e-3, 1); }},
    {"slivers", false, [] { addFace(below(2) == 0, 5, 3, 1e-5); }},
    {"patches far away", false, [] { addFace(true, 3e4, 300, 1); }},
    {"balls far away, seen at their limbs", false,
     [] {
         const Vec center = point(1e3), side = unit(cross(center, point(1)));
         const double r = std::pow(10.0, in(-4, 0));
         makeSphere(center, r);
         targets.push_back(center + r * side);
         targets.push_back(center + r * Vec{below(2) == 0 ? 1.0 : -1.0, 1.0, -1.0}); // a corner of its bounds
     }},
    {"planes", true, [] { makePlane(point(1), in(-6, 6)); }},
    {"planes through one line", false,
     [] {
         const Vec normal = unit({in(-1, 1), in(-1, 1), 0}), line = {1.7, 2.9, in(-3, 3)};
         makePlane(normal, dot(normal, line));
         targets.push_back(line);
     }},
    {"tubes in tubes", true, [] { makeCone(-4 * Z, 0.25 * (1 + below(16)), 4 * Z, 1); }},
    {"a chain of nodes", true, // each sphere is farther away than all before it are wide
     [] {
         const double r = std::pow(1.3, static_cast<double>(nPrims));
         makeSphere({9 * r, in(-r, r), in(-r, r)}, r);
     }},
};

/// Makes the tree of the objects that there are.
static void plant()
{
    objects.clear();
    for (const Object* object = myObjectList; object != nullptr; object = object->next)
        objects.push_back(object);
    buildBoundingSlabs();
    packTree();
}

static void plantObjects(const SceneKind& kind, int count)
{
    resetScene();
    targets.clear();
    iPQSize = 1024; // room for any ray
    while (nPrims < count)
        kind.add();
    plant();
}

/// A ray through the neighbourhood of those scenes. Now and then it runs along an axis.
static Ray randomRay()
{
    if (!targets.empty() && below(2) == 0) {
        const Vec origin = point(below(2) == 0 ? 8 : 0.1);
        const double length = 1.0 + (below(4) == 0 ? in(0, 1e-9) : 0.0); // as behind a strange glass
        return {origin, length * unit(targets[engine() % targets.size()] - origin)};
    }
    const Vec origin = point(8);
    if (below(8) == 0)
        return {origin, (below(2) == 0 ? 1.0 : -1.0) * Slab[below(3)]};
    return {origin, unit(below(4) == 0 ? point(1) : point(3) - origin)};
}

/// Sends a ray on each way through the tree and past all objects one by one, or just to the one hit.
static Hit compareWays(const Ray& ray, double limit, const Object* exclude, bool loops)
{
    isWideWalk = isWide && !isWideWalk;
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

TEST_F(IntersectTest, AllWaysAgree)
{
    for (const SceneKind& kind : kinds) {
        for (const int count : {3, 6, 30, 120}) {
            SCOPED_TRACE(kind.name);
            plantObjects(kind, count);
            EXPECT_TRUE(packedIsGrouped);
            for (int i = 0; i < 4000 && !HasFailure(); ++i) {
                if (i == 2000)
                    packRecords();
                const Ray ray = randomRay();
                const Hit hit = compareWays(ray, NO_LIMIT, nullptr, kind.isEnclosed);
                const Vec start = ray.origin + hit.distance * ray.direction, toLight = point(6) - start;
                const Ray shadowRay = {start, unit(toLight)}; // as from a hit, which does not block it
                const double distance = lengthOf(toLight);    // where it is vast, its rounding alone can miss
                compareWays(shadowRay, distance, hit.object, kind.isEnclosed && distance < 1e6);
                if (hit.object != nullptr) { // back from near by, or almost along the surface
                    const Vec normal = ObjectNormal(hit.object, start, &hit);
                    const Vec lean = in(0, below(2) == 0 ? 2 : 2 * EPSILON) * normal;
                    const Vec out = unit(unit(cross(normal, point(1))) + lean);
                    compareWays({start + in(0, below(2) == 0 ? 4 : 2 * EPSILON) * out, -out}, 9, nullptr,
                                false);
                }
            }
            releasePackedTree();
        }
    }
}

TEST_F(IntersectTest, ClustersBecomeTheMembersOfANode)
{
    // clusters, eight of them around a place; objects in each; whether they are cones; grounds under all; the
    // members of the root, and of its last one where that is a node, and so on: p a primitive, s a sieve, n a
    // node
    const std::tuple<int, int, bool, int, std::string> cases[] = {{2, 3, true, 0, "pppppp"},
                                                                  {3, 8, false, 0, "sss"},
                                                                  {7, 8, false, 1, "psssssss"},
                                                                  {8, 8, false, 0, "ssssssss"},
                                                                  {4, 16, false, 0, "ssssssss"},
                                                                  {8, 8, true, 0, "nnnnnnnnpppppppp"},
                                                                  {64, 8, false, 0, "nnnnnnnnssssssss"},
                                                                  {56, 8, false, 1, "pnnnnnnnssssssss"},
                                                                  {7, 8, false, 2, "ppsssssnss"}};
    for (const auto& [clusters, size, areCones, grounds, expected] : cases) {
        SCOPED_TRACE(expected);
        resetScene();
        const auto corner = [](int i) { return Vec{1.0 * (i & 1), 1.0 * (i >> 1 & 1), 1.0 * (i >> 2 & 1)}; };
        for (int i = 0; i < clusters * size; ++i) {
            const int cluster = i / size;
            const Vec at = 1000 * corner(clusters > 8 ? cluster / 8 : cluster) + 100 * corner(cluster % 8) +
                           10 * corner(i % size) + corner(i % size / 8);
            areCones ? makeCone(at, 0.4, at + Z, 0.2) : makeSphere(at, 0.4);
        }
        const Vec corners[] = {{-1e6, 0, -3000}, {1e6, 1e6, -3000}, {1e6, -1e6, -3000}};
        if (grounds > 0)
            makePlane(Z, -4000);
        if (grounds > 1)
            makeTriangle(corners);
        plant();
        std::string members;
        for (PackedMember node = packedRoot, last; isNode(node) && sieveOf(node) == NO_SIEVE; node = last)
            for (int lane = 0; lane < LANES && nodeOf(node)->members[lane] != 0; ++lane) {
                last = nodeOf(node)->members[lane];
                members += !isNode(last) ? 'p' : sieveOf(last) != NO_SIEVE ? 's' : 'n';
            }
        EXPECT_EQ(members, expected);
        releasePackedTree();
    }
}

/// A walk that leaves much to the heap gives the same pictures, but slowly.
TEST_F(IntersectTest, AllWaysAgreeInTheGalleryAndTheWalkAnswersNineOfTenRays)
{
    const Folder folder;
    const std::string examples = VARLO_SOURCE_DIR "/examples";
    std::filesystem::copy(examples, folder.path, std::filesystem::copy_options::recursive);
    ASSERT_EQ(system((examples + "/generate " + folder.path + " >/dev/null 2>&1").c_str()), 0);
    std::filesystem::current_path(folder.path);
    int rays = 0, answers = 0, grouped = 0;
    const auto count = [&](Answer answer) { ++rays, answers += answer != Answer::UNSURE; };
    for (const auto& file : std::filesystem::directory_iterator(".")) {
        const bool lacksModel = file.path().stem() == "teatime" && !std::filesystem::exists("teapot.inc");
        if (file.path().extension() != ".vlo" || lacksModel)
            continue;
        SCOPED_TRACE(file.path());
        resetScene();
        printed([&] { parseFile(file.path().c_str()); });
        plant();
        grouped += packedIsGrouped;
        screenInit();
        Ray ray, toLight;
        startRay(&ray);
        for (int i = 0; i < 32 * 24 && packedRoot != 0 && !HasFailure(); ++i) {
            initRay((i % 32 + 0.5) * myDisplay.width / 32, (i / 32 + 0.5) * myDisplay.height / 24, &ray);
            const Hit hit = compareWays(ray, NO_LIMIT, nullptr, objects.size() < 300);
            const Object* found;
            double distance;
            count(walkToNearest(ray, NO_LIMIT, nullptr, &found, &distance));
            if (hit.object == nullptr || myLightList == nullptr)
                continue;
            const Vec point = ray.origin + hit.distance * ray.direction;
            distance = makeLightRay(myLightList, point, &toLight);
            compareWays(toLight, distance, hit.object, false);
            count(walkToAny(toLight, distance, hit.object, &found));
        }
        releasePackedTree();
    }
    std::filesystem::current_path("/");
    EXPECT_GT(rays, 30000);
    EXPECT_GE(10 * answers, 9 * rays) << answers << " of " << rays;
    EXPECT_GE(grouped, 20);
}

TEST_F(IntersectTest, NoRayFillsAQueueThatHasRoom)
{
    for (const SceneKind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        plantObjects(kind, 120);
        iPQSize = 8;
        while (originsWithRoom() == 0.0)
            ++iPQSize;
        const auto shoot = [] {
            Hit hit;
            for (int i = 0; i < 20000; ++i) {
                const Ray ray = randomRay();
                if (ray.direction.x * ray.direction.y * ray.direction.z != 0.0) // others are left to the heap
                    intersectByHeap(&ray, NO_LIMIT, &hit, nullptr);
            }
        };
        EXPECT_EQ(inChild(shoot).status, 0);
        releasePackedTree();
    }
}

TEST_F(IntersectTest, TheLeastQueueThatHoldsARayIsTheSameForBothWalks)
{
    for (const SceneKind& kind : kinds) {
        SCOPED_TRACE(kind.name);
        plantObjects(kind, 120);
        for (int i = 0; i < 8; ++i) {
            iPQSize = 1024;
            Hit hit;
            Ray ray = randomRay();
            while (intersectByHeap(&ray, NO_LIMIT, &hit, nullptr) == 0)
                ray = randomRay();
            const auto status = [&](auto walk, int size) {
                iPQSize = size;
                return inChild([&] {
                           packTree();
                           walk(&ray, NO_LIMIT, &hit, nullptr);
                       })
                    .status;
            };
            int least = 2;
            while (status(intersectByHeap, least) != 0)
                ++least;
            for (const bool wide : {false, isWide}) {
                isWideWalk = wide;
                EXPECT_EQ(status(intersect, least), 0);
                EXPECT_EQ(status(intersect, least - 1), 1);
            }
        }
        releasePackedTree();
    }
}

TEST_F(IntersectTest, FewObjectsAndNoNumbers)
{
    const Vec origin = {0, 0, 5};
    for (const int count : {0, 1, 2, 300}) {
        SCOPED_TRACE(count);
        plantObjects({"", true, [] { makeSphere(O, 1.0); }}, count);
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

TEST_F(IntersectTest, NothingIsSaidOfRoomInAnInfiniteScene)
{
    plantObjects({"", false, [] { makeSphere(O, nPrims == 0 ? INFINITY : 1); }}, 99);
    iPQSize = 8;
    EXPECT_EQ(originsWithRoom(), 0.0);
    releasePackedTree();
}

TEST_F(IntersectTest, LeavesBoundsOfNonNumbersToTheHeap)
{
    makeSphere(O, 1);
    makeSphere(3 * Z, 1);
    makeRing(5 * Z, 2.7e-162 * Z, 0, 1); // its normal cannot be made unit
    plant();
    EXPECT_EQ(packedRoot, 0);
}
