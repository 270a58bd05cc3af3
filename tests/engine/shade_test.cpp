#include "engine/shade.h"

#include "bounds/bound.h"
#include "engine/light.h"
#include "engine/ray.h"
#include "primitives/plane.h"
#include "primitives/sphere.h"
#include "support.h"

using ShadeTest = SceneTest;

TEST_F(ShadeTest, RefractionDirection)
{
    const std::tuple<double, double, Vec, Vec, int> cases[] = {
        {1.5, 1, {0, 0, -1}, {0, 0, -1}, 1},
        {1, 2, {0.6, 0, -0.8}, {0.3, 0, -std::sqrt(0.91)}, 1},
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
static constexpr Vec TILTED = {0.6, 0, 0.8};

static void tilt(double cosMaxAngle, int shadowType)
{
    lamp.lightType = SPOT_LIGHT;
    lamp.direction = {0.8, 0, -0.6};
    lamp.shadowType = shadowType;
    lamp.cosMaxAngle = cosMaxAngle;
}

/// A point at the origin that faces z, seen from 2 away along a slope of 4 to 3, below a light 2 above it.
static const struct {
    const char* name;
    void (*change)();
    Color expected;
    int draws = 0;
} points[] = {
    {"light below", [] { lamp.position.z = -2; }, {0, 0, 0}},
    {"at the light", [] { lamp.position.z = 0, lamp.shadowType = SMOOTH_SHADOW; }, {0, 0, 0}},
    {"distance", [] { lamp.attenuation = BY_DISTANCE; }, {0.5, 0.25, 0.125}},
    {"its square", [] { lamp.attenuation = BY_SQUARED_DISTANCE; }, {0.25, 0.125, 0.0625}},
    {"just bright",
     [] {
         lamp.attenuation = 1, lamp.color = {0.5, 0.375, 0.5625};
     },
     {0.25, 0.09375, 0.0703125}},
    {"just dim",
     [] {
         lamp.attenuation = 1, lamp.color = {0.5, 0.375, 0.375};
     },
     {0.5, 0.1875, 0.09375}},
    {"opaque", [] { skin.diffuse = 0, skin.refraction = 1; }, {0, 0, 0}},
    {"brilliance 2", [] { skin.brilliance = 2, normal = TILTED; }, {0.64, 0.32, 0.16}},
    {"edge of the spot", [] { tilt(0.5, SHARP_SHADOW); }, {0.4, 0.2, 0.1}},
    {"limit of the spot", [] { tilt(0.6, SMOOTH_SHADOW); }, {0, 0, 0}, 12},
    {"outside of the spot", [] { tilt(0.61, SMOOTH_SHADOW); }, {0, 0, 0}},
    {"inside of the spot", [] { lamp.lightType = SPOT_LIGHT; }, {1, 0.5, 0.25}},
    {"highlight", [] { skin = {.specular = 0.5, .roughness = 2}, lamp.attenuation = 1; }, {0.32, 0.32, 0.32}},
    {"endless highlight of a black light",
     [] { skin = {.specular = 0.5, .roughness = -4000}, lamp.color = {}; },
     {NAN, NAN, NAN}},
    {"highlight of a tangent ray", // goes on to the light beyond
     [] {
         skin.specular = 0.5, normal = {0.8, 0, 0.6}, lamp.position = {1.2, 0, -1.6};
     },
     {0.5, 0.5, 0.5}},
    {"attenuated highlight", [] { skin.specular = 0.5, lamp.attenuation = 1; }, {0.75, 0.5, 0.375}},
    {"smooth shadow", [] { lamp.shadowType = SMOOTH_SHADOW; }, {1, 0.5, 0.25}, 12},
    {"reflection", [] { skin = {.reflection = 0.5}; }, {0.25, 0.25, 0.5}},
    {"fuzzy", [] { skin = {.reflection = 0.5, .reflectionType = 1}; }, {0.25, 0.25, 0.5}, 30},
    {"no ray", [] { skin = {.reflection = 1, .reflectionType = 1, .reflectionSamples = 0}; }, {0, 0, 0}},
    {"endless", [] { skin.diffuse = 0, skin.refraction = 1, skin.refractionIndex = 1.1; }, {0.5, 0, 0}},
    {"haze", [] { myHaze.factor = 0.5; }, {0.25, 0.125, 0.8125}},
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

TEST_F(ShadeTest, ShadowOfGlassIsFull)
{
    paint(makeSphere({0, 0, 0}, 1), {.refraction = 1, .refractionIndex = 1.5});
    makeLight({.color = {1, 1, 1}, .position = {0, 0, 3}, .samples = 5, .radius = 0.1});
    for (const auto& [z, light] : {std::pair{-2.0, 0.0}, {2.0, 1.0}}) {
        Ray ray;
        const double distance = makeLightRay(myLightList, {0, 0, z}, &ray);
        expectColor(getLightColor(myLightList, nullptr, &ray, distance), {light, light, light});
        expectColor(smoothShadow(myLightList, nullptr, &ray, distance), {light, light, light});
    }
}

static void expectTrace(double z, double direction, int level, double distance, Color expected)
{
    const Ray ray = {{0, 0, z}, {0, 0, direction}};
    Color color = {9, 9, 9};
    EXPECT_DOUBLE_EQ(trace(&ray, &color, &level), distance);
    expectColor(color, expected);
}

TEST_F(ShadeTest, WhatOneRayBrings)
{
    myBackGroundColor = {1, 2, 0.5};
    // A coloured glass: tinted on the way in, over the two units inside, and not on the way out.
    paint(makeSphere({0, 0, 0}, 1), {.color = {0.25, 1, 0.5}, .refraction = 1, .refractionIndex = 1.5});
    expectTrace(3, -1, 0, 2, {0.0625, 1, 0.125});
    expectTrace(3, 1, 5, NO_LIMIT, {1, 1, 0.5});
    expectTrace(3, 1, 6, 0, {0, 0, 0});
    myHaze = {1e-300, {0, 0, 1}}; // so thin that only a ray without a hit shows it
    expectTrace(-3, 1, 0, 2, {0, 0, 0.25});

    // Two mirrors: six levels, each of half the weight.
    resetScene();
    surface = {.color = {1, 1, 1}, .ambient = 0.25, .reflection = 0.5};
    for (const double z : {-1, 1})
        paint(makePlane({0, 0, z}, 2 + 2 * z), surface);
    buildBoundingSlabs();
    expectTrace(1, -1, 0, 1, {0.4921875, 0.4921875, 0.4921875});
}

static Color throughTheLens()
{
    myViewPoint = {.up = {0, 0, 1}, .lookAt = {0, 1, 0}, .aperture = 1, .focalLength = 10, .samples = 4};
    screenInit();
    const Ray ray = {{0, 0, 0}, {0, 1, 0}};
    Color color;
    int level = 0;
    shoot(&ray, &color, &level);
    return color;
}

static Color fromASoftLight()
{
    makeLight({.color = {1, 0.5, 0.25},
               .position = {0, 0, 10},
               .shadowType = SMOOTH_SHADOW,
               .samples = 4,
               .radius = 1});
    Ray ray;
    const double distance = makeLightRay(myLightList, {0, 0, 0}, &ray);
    return smoothShadow(myLightList, nullptr, &ray, distance);
}

static Color fromAFuzzyMirror()
{
    Object mirror{};
    paint(&mirror, {.reflection = 1, .reflectionType = 1, .reflectionSamples = 4, .reflectionRadius = 1});
    const Ray ray = {{0, 0, 10}, {0, 0, -1}};
    const Hit hit = {.distance = 10, .entering = 1, .object = &mirror, .hitNormal = {}};
    Color color;
    int level = 0;
    shade(&mirror, &ray, {0, 0, 1}, {0, 0, 0}, &color, &level, &hit);
    return color;
}

// The first random numbers are 0.840188 0.394383 0.783099, 0.798440 0.911647 0.197551, 0.335223 0.768230
// 0.277775, 0.553970 0.477397 0.628871, 0.364784 0.513401 0.952230 0.916195. From them the directions below
// are worked out by hand; at each mark stands a small red sphere, which only that sample meets.
TEST_F(ShadeTest, EachRandomSampleGoesWhereItsNumbersSay)
{
    // The lens takes four numbers: a distance to the right, which is to the left if the second is above 0.5,
    // and one downwards or up. A tenth of the way to the focus nine tenths of the offset are left. Ten from a
    // light or from the eye, a tenth of the unit jitter vectors is added to the direction.
    const Color ofFour = {0.25, 0, 0}, threeOfFour = {0.75, 0.375, 0.1875};
    const std::tuple<Color (*)(), Vec, Color> cases[] = {
        {throughTheLens, {0.840188 * 0.9, 1, 0.783099 * 0.9}, ofFour},
        {throughTheLens, {0.911647 * 0.9, 1, 0.335223 * 0.9}, ofFour},
        {throughTheLens, {-0.277775 * 0.9, 1, 0.477397 * 0.9}, ofFour},
        {throughTheLens, {-0.364784 * 0.9, 1, 0.952230 * 0.9}, ofFour},
        {fromASoftLight, {-0.39863, 0.12376, 5}, threeOfFour},
        {fromASoftLight, {-0.23996, -0.33099, 5}, threeOfFour},
        {fromAFuzzyMirror, {-0.39863, 0.12376, 5}, ofFour},
        {fromAFuzzyMirror, {-0.23996, -0.33099, 5}, ofFour}};
    for (const auto& [colorOf, mark, expected] : cases) {
        SCOPED_TRACE(mark.x);
        resetScene();
        paint(makeSphere(mark, 0.02), {.color = {1, 0, 0}, .ambient = 1}); // needs no light
        startRandom(0, 1);
        expectColor(colorOf(), expected);
    }
}
