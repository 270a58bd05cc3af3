#include "scene/shading.h"

#include "engine/light.h"
#include "scene/current.h"
#include "scene/lexer.h"

#include <cmath>

using namespace block;

constexpr Choice attenuationTypes[3] = {
    {"none", NO_ATTENUATION}, {"d", BY_DISTANCE}, {"d2", BY_SQUARED_DISTANCE}};
constexpr Choice shadowTypes[2] = {{"sharp", SHARP_SHADOW}, {"smooth", SMOOTH_SHADOW}};
static constexpr Choice lightTypes[] = {{"point", POINT_LIGHT}, {"spot", SPOT_LIGHT}};
static constexpr Choice reflectionTypes[] = {{"sharp", SHARP_REFLECTION}, {"fuzzy", FUZZY_REFLECTION}};
static constexpr const char* COLOR_FAULT = " invalid color component(s)";

static bool isSurfaceColor(Color* color)
{
    const auto isOutside = [](double component) { return component < 0.0 || component > 1.0; };
    return !isOutside(color->red) && !isOutside(color->green) && !isOutside(color->blue);
}

static bool raiseToOne(double* index)
{
    if (*index < 1.0) {
        fputs(" indice of refraction cannot be lower than 1.0", stdout);
        *index = 1.0;
    }
    return true;
}

void yy_surface(FILE* stream)
{
    SurfaceAttrib next;
    BlockWord words[] = {
        any("color", &next.color, isSurfaceColor, COLOR_FAULT),
        any("ambient", &next.ambient),
        any("diffuse", &next.diffuse),
        any("brilliance", &next.brilliance),
        any("specular", &next.specular),
        any("roughness", &next.roughness),
        any("reflection", &next.reflection),
        choice("reflection_type", &next.reflectionType, reflectionTypes,
               " invalid reflection type specified"),
        any("reflection_samples", &next.reflectionSamples),
        any("reflection_radius", &next.reflectionRadius),
        any("refraction", &next.refraction),
        any("refraction_index", &next.refractionIndex, raiseToOne),
    };
    readBlock(stream, words, " Unkown parameter in surface structure");
    surface = next;
    ++iNumSurface;
}

static bool isLightColor(Color* color)
{
    return color->red > 0.0 && color->green > 0.0 && color->blue > 0.0;
}

static bool toHalfAngleCosine(double* degrees)
{
    *degrees = std::cos(*degrees * 0.5 * PI / 180.0);
    return true;
}

void yy_light(FILE* stream)
{
    Vec target{};
    Light light{.attenuation = BY_SQUARED_DISTANCE,
                .cosMinAngle = std::cos(PI / 36.0),
                .cosMaxAngle = std::cos(PI / 12.0)};
    BlockWord words[] = {
        once("position", &light.position),
        once("color", &light.color, isLightColor, COLOR_FAULT),
        choice("light_type", &light.lightType, lightTypes, " invalid light type specified"),
        any("target", &target),
        choice("attenuation_type", &light.attenuation, attenuationTypes, ATTENUATION_FAULT),
        choice("shadow_type", &light.shadowType, shadowTypes, SHADOW_FAULT),
        any("radius", &light.radius, isAboveZero, LIGHT_RADIUS_FAULT),
        also("samples", any("light_samples", &light.samples, isAboveZero, LIGHT_SAMPLES_FAULT)),
        any("min_angle", &light.cosMinAngle, toHalfAngleCosine),
        any("max_angle", &light.cosMaxAngle, toHalfAngleCosine),
    };
    readBlock(stream, words, " Unkown parameter in light structure");

    static constexpr const char* missing = " Error in light structure - missing parameters";
    const bool aimed = countOf(words, "target") > 0;
    if (aimed) {
        light.direction = target - light.position;
        if (dot(light.direction, light.direction) == 0.0)
            yyerror(" Error in light structure - invalid target");
    }
    requireCounts(words, missing);
    if (light.shadowType == SMOOTH_SHADOW &&
        (countOf(words, "radius") != 1 || countOf(words, "light_samples") != 1))
        yyerror(missing);
    if (light.lightType == SPOT_LIGHT && !aimed)
        yyerror(missing); // it would shine nowhere
    makeLight(light);
    ++iNumLight;
}
