#pragma once

#include "core/data.h"

enum ReflectionType { SHARP_REFLECTION, FUZZY_REFLECTION };

/// The optical properties of a surface. The start values are those of an empty `surface` block.
struct SurfaceAttrib {
    Color color{};
    double ambient = 0.0;
    double diffuse = 0.0;
    double brilliance = 0.0;
    double specular = 0.0;
    double roughness = 0.0; // the exponent of the highlight itself: larger is smaller
    double reflection = 0.0;
    int reflectionType = SHARP_REFLECTION;
    int reflectionSamples = 10;
    double reflectionRadius = 1.0;
    double refraction = 0.0;
    double refractionIndex = 1.0; // only above 1.0 does a ray pass
};

/// Gives `object` a surface of these values. Objects that get the same one after another share a record,
/// which lasts to the end of the process. False without memory; then the object is as it was.
bool setSurfaceAttrib(Object* object, const SurfaceAttrib& wanted);

/// Lets the next object have a new record, whatever its surface is.
void forgetSurface();

/// Prints the colour and the six factors of a surface. For debugging.
void printSurfaceAttrib(const SurfaceAttrib* surface);
