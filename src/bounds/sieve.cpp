#include "bounds/sieve.h"

#include "primitives/patch.h"
#include "primitives/plane.h"
#include "primitives/sphere.h"
#include "primitives/triangle.h"

#include <algorithm>
#include <cmath>
#include <limits>

// A face outside of these passes always: products of its edges would leave the floats, or it is so slim, by
// the ratio of its height to its longest edge, that they cannot tell its sides apart.
static constexpr double LEAST_LENGTH = 1e-6, MOST_LENGTH = 1e6, LEAST_RATIO = 0.004;

// What stands in a lane that is not in use: no comparison with it is true.
static constexpr float NOTHING = std::numeric_limits<float>::quiet_NaN();

namespace
{
struct Face {
    Vec corner, edge1, edge2;
};
} // namespace

/// The face that the test of a triangle looks at: two coordinates of each corner, the third by the plane.
static Face faceOf(const Triangle& triangle)
{
    const int axisU = triangle.axisU, axisV = triangle.axisV, axisW = 3 - axisU - axisV;
    const auto normal = [&](int axis) { return coordinate(triangle.normal, axis); };
    Vec corners[3];
    for (int i = 0; i < 3; ++i) {
        double place[3];
        place[axisU] = triangle.outline[i];
        place[axisV] = triangle.outline[4 + i];
        place[axisW] =
            -(triangle.offset + normal(axisU) * place[axisU] + normal(axisV) * place[axisV]) / normal(axisW);
        corners[i] = {place[0], place[1], place[2]};
    }
    return {corners[0], corners[1] - corners[0], corners[2] - corners[0]};
}

/// The face that the test of a patch looks at: its edges, from the matrix that is the inverse of theirs.
static Face faceOf(const Patch& patch)
{
    const Vec* m = patch.inverse;
    const double area = 1.0 / lengthOf(cross(m[0], m[1]));
    return {patch.corner, area * cross(m[1], m[2]), area * cross(m[2], m[0])};
}

void fillSieve(FaceSieve* sieve, const Object* const* faces, int count)
{
    *sieve = {};
    std::fill_n(sieve->corner[0], LANES, NOTHING);
    double longest = 0.0, size = 0.0;
    for (int lane = 0; lane < count; ++lane) {
        const Object* object = faces[lane];
        sieve->members[lane] = memberOf(object);
        const bool isPatch = object->type == PATCH;
        const auto [corner, edge1, edge2] =
            isPatch ? faceOf(recordOf<Patch>(object)) : faceOf(recordOf<Triangle>(object));
        const double length = std::max({lengthOf(edge1), lengthOf(edge2), lengthOf(edge2 - edge1)});
        const double area = lengthOf(cross(edge1, edge2)), away = lengthOf(corner);
        if (!(length > LEAST_LENGTH && length < MOST_LENGTH && away < MOST_LENGTH &&
              area > LEAST_RATIO * length * length)) {
            sieve->always |= 1U << lane;
            continue;
        }
        for (int axis = 0; axis < 3; ++axis) {
            sieve->corner[axis][lane] = static_cast<float>(coordinate(corner, axis));
            sieve->edge1[axis][lane] = static_cast<float>(coordinate(edge1, axis));
            sieve->edge2[axis][lane] = static_cast<float>(coordinate(edge2, axis));
        }
        longest = std::max(longest, length);
        size = std::max(size, away + length);
        // A triangle ends EPSILON beside its edges along one axis, in its plane at most sqrt(2) times as
        // much.
        if (!isPatch)
            sieve->border = static_cast<float>(2.0 * EPSILON);
    }
    sieve->longest = static_cast<float>(longest);
    sieve->size = static_cast<float>(size);
    sieve->used = (1U << count) - 1;
}

void fillSieve(BallSieve* sieve, const Object* const* balls, int count)
{
    *sieve = {};
    std::fill_n(sieve->center[0], LANES, NOTHING);
    double size = 0.0;
    for (int lane = 0; lane < count; ++lane) {
        const auto& ball = recordOf<Sphere>(balls[lane]);
        sieve->members[lane] = memberOf(balls[lane]);
        for (int axis = 0; axis < 3; ++axis)
            sieve->center[axis][lane] = static_cast<float>(coordinate(ball.center, axis));
        sieve->radius[lane] = static_cast<float>(std::abs(ball.radius));
        size = std::max(size, lengthOf(ball.center) + std::abs(ball.radius));
    }
    sieve->size = static_cast<float>(size);
    sieve->used = (1U << count) - 1;
}

void fillSieve(PlaneSieve* sieve, const Object* const* planes, int count)
{
    *sieve = {};
    double size = 0.0;
    for (int lane = 0; lane < count; ++lane) {
        const auto& plane = recordOf<Plane>(planes[lane]);
        sieve->members[lane] = memberOf(planes[lane]);
        for (int axis = 0; axis < 3; ++axis)
            sieve->normal[axis][lane] = static_cast<float>(coordinate(plane.normal, axis));
        sieve->distance[lane] = static_cast<float>(-plane.offset);
        size = std::max(size, std::abs(plane.offset));
    }
    sieve->size = static_cast<float>(size);
    sieve->used = (1U << count) - 1;
}
