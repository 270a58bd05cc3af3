#include "engine/ray.h"
#include "support.h"

using CameraTest = SceneTest;

// The camera stands at the origin and looks along x, with z up: 45 degrees to each side, half of that up and
// down.
TEST_F(CameraTest, Directions)
{
    myViewPoint = {.up = {3, 0, 4}, .lookAt = {5, 0, 0}, .fovX = PI / 4, .ratio = 2, .aperture = 0.5};
    myDisplay.width = 100;
    myDisplay.height = 20;
    screenInit();
    expectNear(myViewPoint.apertureX, {0, -0.5, 0});
    expectNear(myViewPoint.apertureY, {0, 0, -0.5});
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
    for (const auto& [projection, x, y, direction] : cases) {
        myViewPoint.projection = projection;
        Ray ray;
        startRay(&ray);
        expectNear(ray.direction, {1, 0, 0});
        initRay(x, y, &ray);
        expectNear(ray.direction, direction);
        expectNear(ray.origin, {0, 0, 0});
    }
}
