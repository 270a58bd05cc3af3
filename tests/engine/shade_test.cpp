#include "engine/shade.h"

#include "bounds/bound.h"
#include "engine/light.h"
#include "engine/ray.h"
#include "primitives/sphere.h"
#include "support.h"

using ShadeTest = SceneTest;

TEST_F(ShadeTest, RefractionDirection)
{
    const std::tuple<double, double, Vec, Vec, int> cases[] = {
        {1, 1, {1, 0, 0}, {1, 0, 0}, 1}, // tangent: just not reflected
        {2, 1, {0.6, 0, -0.8}, unit({-0.6, 0, 2.4}), 0}};
    for (const auto& [n1, n2, incoming, expected, refracts] : cases) {
        Vec result;
        EXPECT_EQ(refractionDirection(n1, n2, incoming, {0, 0, 1}, &result), refracts);
        expectNear(result, expected);
    }
}

static SurfaceAttrib skin;
static Light lamp;
static Vec normal;
static constexpr Color WHITE = {1, 1, 1};

static void dim(double blue)
{
    lamp.attenuation = BY_DISTANCE;
    lamp.color = {0.5, 0.375, blue};
}

/// A point at the origin that faces z, seen from 2 away along a slope of 4 to 3, below a light 2 above it.
static const struct {
    const char* name;
    void (*change)();
    Color expected;
    int draws = 0;
} points[] = {
    {"at the light", [] { lamp.position.z = 0, lamp.shadowType = SMOOTH_SHADOW; }, {0, 0, 0}},
    {"far", [] { lamp.attenuation = BY_SQUARED_DISTANCE, lamp.position.z = 4; }, {0.0625, 0.03125, 0.015625}},
    {"just bright", [] { dim(0.5625); }, {0.25, 0.09375, 0.0703125}},
    {"just dim", [] { dim(0.375); }, {0.5, 0.1875, 0.09375}},
    {"opaque", [] { skin.diffuse = 0, skin.refraction = 1; }, {0, 0, 0}},
    {"limit of the spot",
     [] {
         lamp.lightType = SPOT_LIGHT, lamp.direction = {0.8, 0, -0.6};
         lamp.cosMaxAngle = 0.6, lamp.shadowType = SMOOTH_SHADOW;
     },
     {0, 0, 0},
     12},
    {"highlight", [] { skin = {.specular = 0.5, .roughness = 2}, lamp.attenuation = 1; }, {0.32, 0.32, 0.32}},
    {"faint highlight",
     [] {
         skin = {.specular = 0.5, .roughness = 2}, lamp.position = {0, 1.6, 1.2};
     },
     {0.1152, 0.1152, 0.1152}},
    {"soft shadow, and objects beyond the light",
     [] {
         lamp.shadowType = SMOOTH_SHADOW;
         makeSphere({0, 0, 4}, 0.5), makeSphere({0, 0, 5}, 0.5), buildBoundingSlabs();
     },
     {1, 0.5, 0.25},
     12},
    {"endless highlight of a black light",
     [] { skin = {.specular = 0.5, .roughness = -4000}, lamp.color = {}; },
     {NAN, NAN, NAN}},
    {"boundless highlight of a black light",
     [] { skin = {.specular = HUGE_VAL, .roughness = 2}, lamp.color = {}; },
     {NAN, NAN, NAN}},
    {"highlight of a tangent ray", // goes on to the light beyond
     [] {
         skin.specular = 0.5, normal = {0.8, 0, 0.6}, lamp.position = {1.2, 0, -1.6};
     },
     {0.5, 0.5, 0.5}},
    {"reflection", [] { skin = {.reflection = 0.5}; }, {0.25, 0.25, 0.5}},
    {"no ray", [] { skin = {.reflection = 1, .reflectionType = 1, .reflectionSamples = 0}; }, {0, 0, 0}},
    {"endless", [] { skin.diffuse = 0, skin.refraction = 1, skin.refractionIndex = 1.1; }, {0.5, 0, 0}},
    {"too much haze", [] { myHaze.factor = 1.5; }, {0, 0, 1}},
};

TEST_F(ShadeTest, OnePointUnderOneLight)
{
    for (const auto& c : points) {
        SCOPED_TRACE(c.name);
        resetScene();
        myBackGroundColor = {0.5, 0.5, 5}; // limited to 1 on its way
        myHaze.color.blue = 1;
        skin = {.color = {1, 0.5, 0.25}, .diffuse = 1};
        lamp = {{}, WHITE, {0, 0, 2}, {0, 0, -1}, POINT_LIGHT, SHARP_SHADOW, NO_ATTENUATION,
                4,  0.1,   0.75,      0.5};
        normal = {0, 0, 1};
        c.change();
        makeLight(lamp);
        Object object{};
        object.surface = &skin;
        const Ray ray = {{-1.2, 0, 1.6}, {0.6, 0, -0.8}};
        const Hit hit = {.distance = 2, .entering = 1, .object = &object, .hitNormal = {}};
        Color color;
        int level = 0;
        EXPECT_EQ(drawsOf([&] { shade(&object, &ray, normal, {0, 0, 0}, &color, &level, &hit); }), c.draws);
        if (std::isnan(c.expected.red))
            EXPECT_TRUE(std::isnan(color.red));
        else
            expectColor(color, c.expected);
        EXPECT_EQ(level, 0);
    }
}

TEST_F(ShadeTest, RayWithoutAHit)
{
    myBackGroundColor = {1, 2, 0.5};
    myHaze.color = {0, 0, 1};
    const std::tuple<double, int, double, Color> cases[] = {
        {0, 5, NO_LIMIT, {1, 1, 0.5}}, {0, 6, 0, {0, 0, 0}}, {1e-300, 0, NO_LIMIT, {0, 0, 1}}};
    for (auto [haze, level, distance, expected] : cases) {
        myHaze.factor = haze;
        const Ray ray = {{0, 0, 3}, {0, 0, 1}};
        Color color = {9, 9, 9};
        EXPECT_EQ(trace(&ray, &color, &level), distance);
        expectColor(color, expected);
    }
}
