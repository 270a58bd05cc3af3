#include "engine/ray.h"
#include "primitives/sphere.h"
#include "support.h"

/// A camera at the origin that looks along x, with z up: 45 degrees to each side, half of that up and down.
struct CameraTest : SceneTest {
    CameraTest()
    {
        myViewPoint = {.up = {3, 0, 4}, .lookAt = {5, 0, 0}, .fovX = PI / 4, .ratio = 2, .focalLength = 8};
        myDisplay.width = 100;
        myDisplay.height = 20;
        screenInit();
    }
};

TEST_F(CameraTest, Directions)
{
    const double t = std::tan(PI / 8), r = std::sqrt(0.5), s = std::sin(PI / 8), c = std::cos(PI / 8);
    const struct {
        int projection;
        double x, y;
        Vec direction;
    } cases[] = {
        {FLAT, 50, 10, {1, 0, 0}},          {FLAT, 0, 0, unit({1, 1, t})},
        {FLAT, 75, 10, unit({1, -0.5, 0})}, {FLAT, 100, 20, unit({1, -1, -t})},
        {FISHEYE, 50, 10, {1, 0, 0}},       {FISHEYE, 0, 10, {r, r, 0}},
        {FISHEYE, 50, 0, {c, 0, s}},        {FISHEYE, 75, 20, unit({c * c, -s, -s})},
    };
    expectNear(myViewPoint.up, {0, 0, 1});
    for (const auto& test : cases) {
        SCOPED_TRACE(testing::Message() << test.projection << " " << test.x << " " << test.y);
        myViewPoint.projection = test.projection;
        Ray ray;
        startRay(&ray);
        expectNear(ray.direction, {1, 0, 0});
        initRay(test.x, test.y, &ray);
        expectNear(ray.direction, test.direction);
        expectNear(ray.origin, {0, 0, 0});
    }
}

/// The share of the rays through the lens that meet a sphere at this distance.
static double sharpness(double distance, double radius)
{
    freeList(&myObjectList);
    makeSphere({distance, 0, 0}, radius)->surface = {.color = {1, 0, 0}, .ambient = 1};
    const Ray ray = {{0, 0, 0}, {1, 0, 0}};
    Color color;
    int level = 0;
    shoot(&ray, &color, &level);
    return color.red;
}

TEST_F(CameraTest, LensIsASquareAndSharpAtTheFocus)
{
    myViewPoint.samples = 1000;
    EXPECT_EQ(drawsOf([] { EXPECT_EQ(sharpness(8, 0.001), 1); }), 0); // a pinhole
    myViewPoint.aperture = 0.5;
    screenInit();
    expectNear(myViewPoint.apertureX, {0, -0.5, 0});
    expectNear(myViewPoint.apertureY, {0, 0, -0.5});
    EXPECT_EQ(drawsOf([] { EXPECT_EQ(sharpness(8, 0.001), 1); }), 4000);
    // Half of the way, the rays fill a square of half the lens.
    EXPECT_EQ(sharpness(4, 0.25 * std::sqrt(2) + 0.001), 1);
    EXPECT_NEAR(sharpness(4, 0.25), PI / 4, 0.05);
}
