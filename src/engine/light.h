#pragma once

#include "core/data.h"

// Lights, and what of a light reaches a point. A ray to a light either gets through or it does not: a
// transparent object casts the same full shadow as an opaque one.

enum LightType { POINT_LIGHT, SPOT_LIGHT };
enum ShadowType { SHARP_SHADOW, SMOOTH_SHADOW };
enum Attenuation { NO_ATTENUATION, BY_DISTANCE, BY_SQUARED_DISTANCE };

struct Light {
    Object head{};
    Color color{};
    Vec position{};
    Vec direction{}; // unit, towards the target of a spot; of no meaning for a point light
    int lightType = POINT_LIGHT;
    int shadowType = SHARP_SHADOW;
    int attenuation = NO_ATTENUATION;
    int samples = 0;     // shadow rays of a smooth shadow
    double radius = 0.0; // size of the light for a smooth shadow
    double cosMinAngle = 0.0, cosMaxAngle = 0.0;
};

/// Puts a light like `wanted`, whose direction need not be unit, onto myLightList. Without memory it says so
/// on standard output and adds nothing.
void makeLight(const Light& wanted);

/// Fills `ray` from `point` to the light and returns the distance between them.
double makeLightRay(const Object* light, Vec point, Ray* ray);

/// The light's colour if nothing but `object` stands nearer along `ray` than `distance`, else black.
Color getLightColor(const Object* light, const Object* object, const Ray* ray, double distance);

/// The mean of `samples` such answers along rays to a sphere around the light. Draws three random numbers for
/// each.
Color smoothShadow(const Object* light, const Object* object, const Ray* ray, double distance);

/// A unit vector from three random numbers, drawn for x, y and z in this order, in a cube around 0.
Vec jitterVector();
