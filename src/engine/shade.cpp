#include "engine/shade.h"

#include "core/settings.h"
#include "core/surface.h"
#include "engine/light.h"
#include "engine/ray.h"

#include <algorithm>
#include <cmath>

int refractionDirection(double n1, double n2, Vec incoming, Vec normal, Vec* result)
{
    const double eta = n1 / n2;
    const double c = -dot(incoming, normal);
    const double t = 1.0 - eta * eta * (1.0 - c * c);
    if (t < 0.0) {
        *result = unit(2.0 * c * normal - incoming);
        return 0;
    }
    *result = eta * incoming + (eta * c - std::sqrt(t)) * normal;
    return 1;
}

/// The direction of a mirror ray. A tangent ray goes straight on.
static Vec mirrorDirection(Vec d, Vec normal)
{
    const double cosine = std::abs(dot(d, normal));
    if (cosine == 0.0)
        return d;
    const Vec scaled = {d.x / cosine, d.y / cosine, d.z / cosine};
    return unit(scaled + 2.0 * normal);
}

/// What a spot lets through at this angle, from 0 to 1. False outside its cone.
static bool spotFactor(const Light& light, Vec toLight, double* factor)
{
    *factor = 1.0;
    if (light.lightType != SPOT_LIGHT)
        return true;
    const double cosine = -dot(toLight, light.direction);
    if (light.cosMaxAngle > cosine)
        return false;
    if (!(cosine >= light.cosMinAngle))
        *factor = (cosine - light.cosMaxAngle) / (light.cosMinAngle - light.cosMaxAngle);
    return true;
}

static double attenuationFactor(int attenuation, double distance)
{
    switch (attenuation) {
    case BY_DISTANCE:
        return 1.0 / distance;
    case BY_SQUARED_DISTANCE:
        return 1.0 / (distance * distance);
    default:
        return 1.0;
    }
}

/// Makes light weaker with the distance; dim light is left as it is.
static void attenuate(const Light& light, double distance, Color* lit)
{
    if (lit->red + lit->green + lit->blue / 3.0 > 1.0)
        *lit = attenuationFactor(light.attenuation, distance) * *lit;
}

/// Whether a highlight of this cosine is black where its light is: its weight is a number, and no infinity.
static bool isOrdinary(const SurfaceAttrib& s, double highlight)
{
    return highlight <= 1.0 && s.roughness >= 0.0 && s.specular < NO_LIMIT;
}

/// What one light, `distance` away along `ray`, adds to `color`. `mirror` is read only by a surface with a
/// highlight.
static void addLight(const Object* lamp, const Object* object, Vec normal, Vec mirror, const Ray& ray,
                     double distance, Color* color)
{
    const Light& light = recordOf<Light>(lamp);
    const SurfaceAttrib& s = *object->surface;
    double spot;
    if (distance == 0.0 || !spotFactor(light, ray.direction, &spot))
        return;

    const double cosine = dot(ray.direction, normal);
    const bool isDiffuse = cosine > EPSILON && s.diffuse > 0.0;
    const double highlight = s.specular > 0.0 ? dot(ray.direction, mirror) : 0.0;
    const bool isHighlight = highlight > EPSILON;
    const bool isSmooth = light.shadowType == SMOOTH_SHADOW; // draws its random numbers in any case
    if (!isDiffuse && !isHighlight && !isSmooth)
        return;

    Color lit =
        isSmooth ? smoothShadow(lamp, object, &ray, distance) : getLightColor(lamp, object, &ray, distance);
    if (isDiffuse) {
        attenuate(light, distance, &lit);
        if (light.lightType == SPOT_LIGHT)
            lit = spot * lit;
        const double k = s.brilliance > 1.0 ? std::pow(cosine, s.brilliance) : cosine;
        color->red += s.color.red * lit.red * k * s.diffuse;
        color->green += s.color.green * lit.green * k * s.diffuse;
        color->blue += s.color.blue * lit.blue * k * s.diffuse;
    }
    // A highlight has the colour of the light as the diffuse term left it: where there is none, not
    // attenuated.
    const bool isBlack = lit.red == 0.0 && lit.green == 0.0 && lit.blue == 0.0; // as in most shadows
    if (isHighlight && !(isBlack && isOrdinary(s, highlight)))
        *color = *color + std::pow(highlight, s.roughness) * s.specular * lit;
}

/// Adds what all lights give. The ray to the next one is made ahead of the walk along the current one, so
/// that its root and quotients are done by the time that they are needed. Two take turns: a copy would have
/// to wait for what has only just been written.
static void addLights(const Object* object, Vec normal, Vec mirror, Vec point, Color* color)
{
    Ray rays[2];
    double distances[2];
    int turn = 0;
    if (myLightList != nullptr)
        distances[turn] = makeLightRay(myLightList, point, &rays[turn]);
    for (const Object* lamp = myLightList; lamp != nullptr; lamp = lamp->next, turn = 1 - turn) {
        if (lamp->next != nullptr)
            distances[1 - turn] = makeLightRay(lamp->next, point, &rays[1 - turn]);
        addLight(lamp, object, normal, mirror, rays[turn], distances[turn], color);
    }
}

/// The colour seen along the mirror ray, or around it.
static Color reflectedColor(const SurfaceAttrib& s, const Ray& mirror, double distance, int* level)
{
    Color reflected{};
    if (s.reflectionType != FUZZY_REFLECTION) {
        trace(&mirror, &reflected, level);
        return reflected;
    }
    if (s.reflectionSamples <= 0)
        return reflected;
    const double spread = s.reflectionRadius / distance;
    Color sum{};
    for (int i = 0; i < s.reflectionSamples; ++i) {
        const Ray sample = {.origin = mirror.origin,
                            .direction = unit(mirror.direction + spread * jitterVector())};
        trace(&sample, &reflected, level);
        sum = sum + reflected;
    }
    return sum / s.reflectionSamples;
}

/// The colour seen through the surface, tinted by the way inside the object.
static Color refractedColor(const SurfaceAttrib& s, const Ray& incoming, Vec normal, Vec point, int entering,
                            int* level)
{
    const double n1 = entering ? s.refractionIndex : 1.0;
    const double n2 = entering ? 1.0 : s.refractionIndex;
    Ray ray = {.origin = point, .direction = {}};
    refractionDirection(n1, n2, incoming.direction, normal, &ray.direction);
    Color refracted{};
    const double distance = trace(&ray, &refracted, level);
    if (distance > EPSILON && entering) {
        refracted.red *= std::pow(s.color.red, distance);
        refracted.green *= std::pow(s.color.green, distance);
        refracted.blue *= std::pow(s.color.blue, distance);
    }
    return refracted;
}

void shade(const Object* object, const Ray* ray, Vec normal, Vec point, Color* color, int* level,
           const Hit* hit)
{
    const SurfaceAttrib& s = *object->surface;
    Ray mirror = {.origin = point, .direction = {}};
    if (s.specular > 0.0 || s.reflection > 0.0)
        mirror.direction = mirrorDirection(ray->direction, normal);

    *color = s.ambient * s.color;
    addLights(object, normal, mirror.direction, point, color);

    ++*level;
    if (s.reflection > 0.0)
        *color = *color + s.reflection * reflectedColor(s, mirror, hit->distance, level);
    if (s.refraction > 0.0 && s.refractionIndex > 1.0)
        *color = *color + s.refraction * refractedColor(s, *ray, normal, point, hit->entering, level);
    --*level;

    if (myHaze.factor > 0.0) {
        const double f = 1.0 - std::pow(1.0 - std::min(myHaze.factor, 1.0), hit->distance);
        *color = (1.0 - f) * *color + f * myHaze.color;
    }
}
