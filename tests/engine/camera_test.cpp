#include "engine/ray.h"
#include "support.h"

using CameraTest = SceneTest;

// It looks along x from the origin, with z up: 45 degrees to each side, half of that up and down.
TEST_F(CameraTest, Directions)
{
    myViewPoint = {.up = {3, 0, 4}, .lookAt = {5, 0, 0}, .fovX = PI / 4, .ratio = 2, .aperture = 0.5};
    myDisplay.width = 5 * (myDisplay.height = 20);
    screenInit();
    expectNear(myViewPoint.apertureX, {0, -0.5, 0});
    expectNear(myViewPoint.apertureY, {0, 0, -0.5});
    const double t = std::tan(PI / 8), r = std::sqrt(0.5), s = std::sin(PI / 8), c = std::cos(PI / 8);
    const std::tuple<int, double, double, Vec> cases[] = {
        {FLAT, 0, 0, unit({1, 1, t})},      {FLAT, 75, 10, unit({1, -0.5, 0})},
        {FLAT, 100, 20, unit({1, -1, -t})}, {FISHEYE, 0, 10, {r, r, 0}},
        {FISHEYE, 50, 0, {c, 0, s}},        {FISHEYE, 75, 20, unit({c * c, -s, -s})}};
    expectNear(myViewPoint.up, {0, 0, 1});
    for (const auto& [projection, x, y, direction] : cases) {
        myViewPoint.projection = projection;
        Ray ray;
        startRay(&ray);
        initRay(x, y, &ray);
        expectNear(ray.direction, direction);
        expectNear(ray.origin, {0, 0, 0});
    }
}
