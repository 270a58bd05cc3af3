#include "material.h"

#include "output.h"

#include <assimp/GltfMaterial.h>
#include <assimp/material.h>

#include <algorithm>
#include <cmath>
#include <cstring>

// Ambient and diffuse together are at most 1, and so are the lights: white never gets brighter than white.
constexpr double AMBIENT = 0.25;
constexpr double MOST_SPECULAR = 0.6;
constexpr double LEAST_EXPONENT = 2.0, MOST_EXPONENT = 500.0;
constexpr float GREY = 0.8f; // of a material that says nothing

static bool number(const aiMaterial& material, const char* key, float& value)
{
    return material.Get(key, 0, 0, value) == AI_SUCCESS && std::isfinite(value);
}

static bool colour(const aiMaterial& material, const char* key, Colour& value)
{
    Colour c;
    if (material.Get(key, 0, 0, c) != AI_SUCCESS || !std::isfinite(c.r + c.g + c.b))
        return false;
    value = Colour(std::clamp(c.r, 0.0f, 1.0f), std::clamp(c.g, 0.0f, 1.0f), std::clamp(c.b, 0.0f, 1.0f));
    return true;
}

// The first of each of these is the key that the library's macros begin with.
static const char* key(const char* name, unsigned, unsigned)
{
    return name;
}

static float screenPart(float light)
{
    return light <= 0.0031308f ? 12.92f * light : 1.055f * std::pow(light, 1.0f / 2.4f) - 0.055f;
}

Colour screenFrom(const Colour& light)
{
    return {screenPart(light.r), screenPart(light.g), screenPart(light.b)};
}

static double unitRange(float value)
{
    return std::clamp(static_cast<double>(value), 0.0, 1.0);
}

/// Ambient light is a share of the colour here, and colour of its own in the file.
static double ambientShare(const aiMaterial& material, const Colour& diffuse)
{
    Colour ambient;
    if (!colour(material, key(AI_MATKEY_COLOR_AMBIENT), ambient) || !(brightest(ambient) > 0.0) ||
        !(brightest(diffuse) > 0.0))
        return AMBIENT;
    return std::clamp(AMBIENT * brightest(ambient) / brightest(diffuse), AMBIENT / 2.0, AMBIENT * 1.5);
}

/// The older formats: highlights by a colour and an exponent.
static void shine(const aiMaterial& material, Surface& surface)
{
    Colour specular;
    if (!colour(material, key(AI_MATKEY_COLOR_SPECULAR), specular))
        return;
    float strength = 1.0f, shininess = 0.0f;
    number(material, key(AI_MATKEY_SHININESS_STRENGTH), strength);
    number(material, key(AI_MATKEY_SHININESS), shininess);
    // Without an exponent the file asks for no highlight, whatever colour it would have.
    if (!(shininess > 0.0f))
        return;
    surface.specular = std::min(brightest(specular) * unitRange(strength), MOST_SPECULAR);
    surface.roughness = std::clamp(static_cast<double>(shininess), LEAST_EXPONENT, MOST_EXPONENT);
}

/// The physical formats: a microfacet roughness, and a share of metal, which mirrors.
static void shinePhysically(double metal, double rough, Surface& surface)
{
    const double smooth = 1.0 - rough;
    surface.specular = MOST_SPECULAR * smooth * smooth;
    // The exponent that gives the same width: Karis, "Specular BRDF Reference", 2013, for a mirror direction
    // in place of a half vector.
    const double alpha = std::max(rough * rough, 0.01);
    surface.roughness = std::clamp((2.0 / (alpha * alpha) - 2.0) / 4.0, LEAST_EXPONENT, MOST_EXPONENT);
    // What is rougher shows no picture of its surroundings that one could tell.
    if (rough < 0.6)
        surface.reflection = 0.6 * metal * smooth;
    if (rough > 0.1)
        surface.blur = rough;
}

Surface surfaceOf(const aiMaterial& material, const Format& format)
{
    Surface surface;
    surface.name = material.GetName().C_Str();
    surface.colour = Colour(GREY, GREY, GREY);
    surface.ambient = AMBIENT;
    surface.diffuse = 1.0 - AMBIENT;
    // What the library makes up for faces without a material tells nothing.
    Colour diffuse = surface.colour;
    colour(material, key(AI_MATKEY_COLOR_DIFFUSE), diffuse);
    if (surface.name == AI_DEFAULT_MATERIAL_NAME || surface.name == "%%%DEFAULT" ||
        (format.whiteIsNone && surface.name.empty() && diffuse == Colour(1, 1, 1)))
        return surface;
    surface.colour = diffuse;

    float metal = 0.0f, rough = 1.0f;
    const bool hasMetal = number(material, key(AI_MATKEY_METALLIC_FACTOR), metal);
    if (number(material, key(AI_MATKEY_ROUGHNESS_FACTOR), rough) || hasMetal) {
        colour(material, key(AI_MATKEY_BASE_COLOR), surface.colour);
        shinePhysically(unitRange(metal), unitRange(rough), surface);
    } else {
        shine(material, surface);
    }

    const double share = ambientShare(material, surface.colour);
    if (format.linearColours)
        surface.colour = screenFrom(surface.colour);

    float opacity = 1.0f, transmission = 0.0f;
    number(material, key(AI_MATKEY_OPACITY), opacity);
    aiString mode;
    if (material.Get(AI_MATKEY_GLTF_ALPHAMODE, mode) == AI_SUCCESS && strcmp(mode.C_Str(), "BLEND") != 0)
        opacity = 1.0f;
    // A few exporters write 0 where they mean 1, and nobody sends a model that cannot be seen.
    if (!(opacity > 0.0f))
        opacity = 1.0f;
    number(material, key(AI_MATKEY_TRANSMISSION_FACTOR), transmission);
    const double opaque = unitRange(opacity) * (1.0 - unitRange(transmission));
    surface.refraction = 1.0 - opaque;

    const double own = opaque * (1.0 - surface.reflection);
    surface.ambient = share * own;
    surface.diffuse = (1.0 - share) * own;

    Colour glow;
    if (colour(material, key(AI_MATKEY_COLOR_EMISSIVE), glow) &&
        brightest(glow) > brightest(surface.colour)) {
        surface.colour = glow;
        surface.ambient = 1.0;
        surface.diffuse = 0.0;
    }
    return surface;
}

/// The colour that gives glass its tint. A ray keeps the colour to the power of all the way to what is next
/// behind the glass, so the file's own colour would be nearly black. A channel of 1 beside lesser ones would
/// be all that is left of the far background, and glow at every rim: there none is above MOST.
static Colour glassColour(const Surface& surface, const Colour& colour)
{
    constexpr float LEAST = 0.05f, MOST = 0.95f;
    if (surface.tint <= 0.0 || std::min({colour.r, colour.g, colour.b}) >= MOST)
        return {1, 1, 1};
    // What lets little through may keep its own colour.
    const double opaque = 1.0 - surface.refraction;
    const double power = surface.tint + std::max(1.0 - surface.tint, 0.0) * opaque * opaque;
    const auto part = [&](float c) {
        return std::pow(std::clamp(c, LEAST, MOST), static_cast<float>(power));
    };
    return {part(colour.r), part(colour.g), part(colour.b)};
}

static void putPart(const char* word, double value)
{
    if (value > 0.0) {
        putAll("  ", word, " ");
        putRounded(value, 3);
    }
}

void putSurface(const Surface& surface, const Colour& colour)
{
    putAll("\nsurface { color ", surface.refraction > 0.0005 ? glassColour(surface, colour) : colour);
    putPart("ambient", surface.ambient);
    putPart("diffuse", surface.diffuse);
    if (surface.specular > 0.0005) {
        putPart("specular", surface.specular);
        putPart("roughness", surface.roughness);
    }
    if (surface.reflection > 0.0005) {
        putPart("reflection", surface.reflection);
        if (surface.blur > 0.0) {
            put("  reflection_type \"fuzzy\"  reflection_samples 4");
            putPart("reflection_radius", surface.blur);
        }
    }
    if (surface.refraction > 0.0005) {
        putPart("refraction", surface.refraction);
        put("  refraction_index 1.0001");
    }
    put(" } ");
    putComment(surface.name.empty() ? "a material without a name" : surface.name);
}
