#include "engine/ray.h"

#include "bounds/intersec.h"
#include "core/settings.h"
#include "engine/random.h"
#include "engine/shade.h"
#include "primitives/kinds.h"

#include <algorithm>
#include <cmath>

constexpr int MAX_LEVEL = 5;

// The camera frame: written by screenInit ahead of the threads, only read from then on.
static constinit Vec viewvec{};    // unit, from the eye to the point looked at
static constinit Vec leftvec{};    // unit; in spite of its name towards the right edge of the picture
static constinit Vec looking_up{}; // unit, square to the other two
static constinit double frustrumwidth = 0.0, frustrumheight = 0.0; // tangents of the half angles

void screenInit()
{
    ViewPoint& view = myViewPoint;
    VecNorm(&view.up);
    viewvec = unit(view.lookAt - view.position);
    leftvec = -1.0 * unit(cross(view.up, viewvec));
    view.up = unit(cross(leftvec, viewvec));
    looking_up = view.up;
    if (view.aperture > 0.0) {
        view.apertureX = view.aperture * leftvec;
        view.apertureY = view.aperture * unit(cross(viewvec, leftvec));
    }
    view.fovY = view.fovX / view.ratio;
    frustrumwidth = std::tan(view.fovX);
    frustrumheight = std::tan(view.fovY);
}

void startRay(Ray* ray)
{
    *ray = {.origin = myViewPoint.position, .direction = viewvec};
}

void initRay(double x, double y, Ray* ray)
{
    const double w = myDisplay.width, h = myDisplay.height;
    if (myViewPoint.projection == FISHEYE) {
        const double a = 2.0 * myViewPoint.fovX * (x - w * 0.5) / w;
        const double b = -2.0 * myViewPoint.fovY * (y - h * 0.5) / h;
        ray->direction =
            unit(std::sin(b) * looking_up + std::sin(a) * leftvec + std::cos(a) * std::cos(b) * viewvec);
        return;
    }
    const double u = (2.0 * x / w - 1.0) * frustrumwidth;
    const double v = -(2.0 * y / h - 1.0) * frustrumheight;
    ray->direction = unit(viewvec + u * leftvec + v * looking_up);
}

/// A number from -1 to 1, from two random ones: a distance and a side.
static double lensOffset()
{
    const double r = randomNumber();
    return randomNumber() > 0.5 ? -r : r;
}

void shoot(const Ray* ray, Color* color, int* level)
{
    const ViewPoint& view = myViewPoint;
    if (!(view.aperture > 0.0)) {
        trace(ray, color, level);
        return;
    }
    const Vec sharp = ray->origin + view.focalLength * ray->direction;
    Color sum{};
    for (int i = 0; i < view.samples; ++i) {
        const double s = lensOffset();
        const double t = lensOffset();
        Ray sample;
        sample.origin = ray->origin + s * view.apertureX + t * view.apertureY;
        sample.direction = unit(sharp - sample.origin);
        trace(&sample, color, level);
        sum = sum + *color;
    }
    *color = sum / view.samples;
}

static Color limited(Color color)
{
    return {std::min(color.red, 1.0), std::min(color.green, 1.0), std::min(color.blue, 1.0)};
}

double trace(const Ray* ray, Color* color, int* level)
{
    *color = {};
    if (*level > MAX_LEVEL)
        return 0.0;

    Hit hit{};
    if (!intersect(ray, NO_LIMIT, &hit, nullptr)) {
        *color = limited(myHaze.factor > 0.0 ? myHaze.color : myBackGroundColor);
        return NO_LIMIT;
    }
    const Vec point = ray->origin + hit.distance * ray->direction;
    Vec normal = ObjectNormal(hit.object, point, &hit);
    normal = (dot(normal, ray->direction) > 0.0 ? -1.0 : 1.0) * normal; // no jump: it is anybody's guess
    shade(hit.object, ray, normal, point, color, level, &hit);
    *color = limited(*color);
    return hit.distance;
}
