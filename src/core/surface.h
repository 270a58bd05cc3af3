#pragma once

#include "core/data.h"

/// Copies a surface into `object`. Mind the order, which is not that of the fields: sharpness of the
/// reflection comes behind everything else.
void setSurfaceAttrib(Object* object, double red, double green, double blue, double ambient, double diffuse,
                      double brilliance, double specular, double roughness, double reflection,
                      double refraction, double refractionIndex, int reflectionType, int reflectionSamples,
                      double reflectionRadius);

/// Prints the colour and the six factors of a surface. For debugging.
void printSurfaceAttrib(const SurfaceAttrib* surface);
