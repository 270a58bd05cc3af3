#include "scene/shading.h"

#include "engine/light.h"
#include "scene/current.h"

constexpr Choice attenuationTypes[3] = {
    {"none", NO_ATTENUATION}, {"d", BY_DISTANCE}, {"d2", BY_SQUARED_DISTANCE}};
constexpr Choice shadowTypes[2] = {{"sharp", SHARP_SHADOW}, {"smooth", SMOOTH_SHADOW}};
static constexpr Choice lightTypes[] = {{"point", POINT_LIGHT}, {"spot", SPOT_LIGHT}};
static constexpr Choice reflectionTypes[] = {{"sharp", SHARP_REFLECTION}, {"fuzzy", FUZZY_REFLECTION}};
static constexpr const char* COLOR_FAULT = " invalid color component(s)";

static bool isSurfaceColor(Color* color)
{
    return !(color->red < 0.0 || color->red > 1.0 || color->green < 0.0 || color->green > 1.0 ||
             color->blue < 0.0 || color->blue > 1.0);
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
        any(CODE_COLOR, &next.color, isSurfaceColor, COLOR_FAULT),
        any(CODE_AMBIENT, &next.ambient),
        any(CODE_DIFFUSE, &next.diffuse),
        any(CODE_BRILLIANCE, &next.brilliance),
        any(CODE_SPECULAR, &next.specular),
        any(CODE_ROUGHNESS, &next.roughness),
        any(CODE_REFLECTION, &next.reflection),
        choice(CODE_REFLECTION_TYPE, &next.reflectionType, reflectionTypes,
               " invalid reflection type specified"),
        any(CODE_REFLECTION_SAMPLES, &next.reflectionSamples),
        any(CODE_REFLECTION_RADIUS, &next.reflectionRadius),
        any(CODE_REFRACTION, &next.refraction),
        any(CODE_REFRACTION_INDEX, &next.refractionIndex, raiseToOne),
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
    Vec position{}, target{};
    Color color{};
    int lightType = POINT_LIGHT, attenuation = BY_SQUARED_DISTANCE, shadowType = SHARP_SHADOW, samples = 0;
    double radius = 0.0;
    double cosMinAngle = std::cos(PI / 36.0), cosMaxAngle = std::cos(PI / 12.0);

    BlockWord words[] = {
        once(CODE_POSITION, &position),
        once(CODE_COLOR, &color, isLightColor, COLOR_FAULT),
        choice(CODE_LIGHT_TYPE, &lightType, lightTypes, " invalid light type specified"),
        any(CODE_TARGET, &target),
        choice(CODE_ATTENUATION_TYPE, &attenuation, attenuationTypes, ATTENUATION_FAULT),
        choice(CODE_SHADOW_TYPE, &shadowType, shadowTypes, SHADOW_FAULT),
        any(CODE_RADIUS, &radius, isAboveZero, LIGHT_RADIUS_FAULT),
        also(CODE_SAMPLES, any(CODE_LIGHT_SAMPLES, &samples, isAboveZero, LIGHT_SAMPLES_FAULT)),
        any(CODE_MIN_ANGLE, &cosMinAngle, toHalfAngleCosine),
        any(CODE_MAX_ANGLE, &cosMaxAngle, toHalfAngleCosine),
    };
    readBlock(stream, words, " Unkown parameter in light structure");

    static constexpr const char* missing = " Error in light structure - missing parameters";
    const bool aimed = countOf(words, CODE_TARGET) > 0;
    Vec direction{};
    if (aimed) {
        direction = target - position;
        if (dot(direction, direction) == 0.0)
            yyerror(" Error in light structure - invalid target");
    }
    requireCounts(words, missing);
    if (shadowType == SMOOTH_SHADOW &&
        (countOf(words, CODE_RADIUS) != 1 || countOf(words, CODE_LIGHT_SAMPLES) != 1))
        yyerror(missing);
    if (lightType == SPOT_LIGHT && !aimed)
        yyerror(missing); // it would shine nowhere
    makeLight(position, color, lightType, attenuation, shadowType, radius, samples, cosMinAngle, cosMaxAngle,
              direction);
    ++iNumLight;
}
