#include "bounds/intersec.h"

#include "bounds/bound.h"
#include "bounds/packed.h"
#include "bounds/random_scene.h"
#include "support.h"

namespace
{

struct IntersectTest : SceneTest {
    ~IntersectTest() override
    {
        releasePackedTree();
    }
};

TEST_F(IntersectTest, SlabsHoldTheirLimits)
{
    constexpr double REFUSED = -1000.0;
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
        constexpr double ORIGIN[3] = {};
        EXPECT_EQ(passesSlabs(&node, c.limit, ORIGIN, direction, &key), c.key != REFUSED);
        EXPECT_EQ(key, c.key);
    }
}

/// Sends a ray on each way through the tree. Returns the hit of the heap, with no object if there is none.
Hit compareWays(const Ray& ray, double limit, const Object* exclude)
{
    Hit byHeap{}, hit{};
    const int found = intersectByHeap(&ray, limit, &byHeap, exclude);
    EXPECT_EQ(intersect(&ray, limit, &hit, exclude), found);
    EXPECT_EQ(isBlocked(&ray, limit, exclude), found != 0);
    if (!found)
        return {};
    EXPECT_EQ(hit.object, byHeap.object); // of several at one distance too
    EXPECT_EQ(hit.distance, byHeap.distance);
    EXPECT_EQ(hit.entering, byHeap.entering);
    return byHeap;
}

/// Holds a hit, or a miss, against a loop over all objects.
void expectNearest(const std::vector<const Object*>& objects, const Ray& ray, double limit,
                   const Object* exclude, const Hit& hit)
{
    double nearest = limit;
    bool isReached = hit.object == nullptr;
    for (const Object* object : objects) {
        Hit alone;
        if (object == exclude || !object->ObjectIntersect(object, &ray, &alone))
            continue;
        nearest = std::min(nearest, alone.distance);
        isReached = isReached || (object == hit.object && alone.distance == hit.distance);
    }
    EXPECT_TRUE(isReached);
    EXPECT_EQ(hit.object != nullptr ? hit.distance : limit, nearest);
}

TEST_F(IntersectTest, AgreesWithALoopOverAllObjects)
{
    for (const SceneKind& kind : SCENE_KINDS) {
        for (const int count : {2, 6, 30, 120}) {
            SCOPED_TRACE(kind.name);
            releasePackedTree();
            resetScene();
            iPQSize = 1024;
            Random random;
            const std::vector<const Object*> objects = addObjects(kind, count, random);
            buildBoundingSlabs();
            packTree();
            for (int i = 0; i < 8000 && !HasFailure(); ++i) {
                const Ray ray = randomRay(random);
                const Hit hit = compareWays(ray, NO_LIMIT, nullptr);
                const Vec point = ray.origin + hit.distance * ray.direction;
                const Vec toLight = random.point(6) - point;
                const Ray shadowRay = {point, unit(toLight)}; // as from a hit, which does not block it
                const Hit blocker = compareWays(shadowRay, lengthOf(toLight), hit.object);
                if (!kind.isEnclosed)
                    continue;
                expectNearest(objects, ray, NO_LIMIT, nullptr, hit);
                expectNearest(objects, shadowRay, lengthOf(toLight), hit.object, blocker);
            }
        }
    }
}

TEST_F(IntersectTest, RunsOverOnTheSameRays)
{
    Random random;
    addObjects(SCENE_KINDS[1], 300, random);
    buildBoundingSlabs();
    int statuses[2] = {};
    for (int i = 0; i < 30; ++i) {
        iPQSize = 10 + 2 * i;
        packTree();
        const Ray ray = randomRay(random);
        const auto statusOf = [&](auto way) {
            Hit hit;
            return inChild([&] { way(&ray, NO_LIMIT, &hit, nullptr); }).status;
        };
        const int status = statusOf(intersectByHeap);
        EXPECT_EQ(statusOf(intersect), status);
        ASSERT_LE(status, 1);
        ++statuses[status];
    }
    EXPECT_GT(std::min(statuses[0], statuses[1]), 5);
}

TEST_F(IntersectTest, FewObjectsAndNoNumbers)
{
    const Ray ray = {{0, 0, 5}, {0, 0, -1}};
    for (const int count : {0, 1, 2, 300}) {
        SCOPED_TRACE(count);
        for (int i = 0; i < count; ++i)
            makeSphere({0, 0, 0}, 1.0);
        const Object* first = myObjectList;
        buildBoundingSlabs();
        packTree();
        Hit hit{};
        EXPECT_EQ(intersect(&ray, NO_LIMIT, &hit, nullptr), count > 0);
        EXPECT_TRUE(count > 2 || hit.object == first); // of two at one distance too
        // A single object knows neither limit nor exclude.
        EXPECT_EQ(intersect(&ray, 4.0, &hit, first), count == 1);
        EXPECT_EQ(isBlocked(&ray, 4.0, first), count == 1);
        for (double Vec::*part : {&Vec::x, &Vec::y, &Vec::z}) {
            Ray origin = ray, direction = ray;
            origin.origin.*part = direction.direction.*part = NAN;
            EXPECT_FALSE(intersect(&origin, NO_LIMIT, &hit, nullptr) || isBlocked(&origin, 9.0, nullptr));
            EXPECT_FALSE(intersect(&direction, NO_LIMIT, &hit, nullptr) ||
                         isBlocked(&direction, 9.0, nullptr));
        }
        releasePackedTree();
        resetScene();
    }
}

} // namespace
