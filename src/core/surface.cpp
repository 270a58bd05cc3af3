#include "core/surface.h"

#include <cstdio>

void setSurfaceAttrib(Object* object, double red, double green, double blue, double ambient, double diffuse,
                      double brilliance, double specular, double roughness, double reflection,
                      double refraction, double refractionIndex, int reflectionType, int reflectionSamples,
                      double reflectionRadius)
{
    object->surface = {
        .color = {red, green, blue},
        .ambient = ambient,
        .diffuse = diffuse,
        .brilliance = brilliance,
        .specular = specular,
        .roughness = roughness,
        .reflection = reflection,
        .reflectionType = reflectionType,
        .reflectionSamples = reflectionSamples,
        .reflectionRadius = reflectionRadius,
        .refraction = refraction,
        .refractionIndex = refractionIndex,
    };
}

void printSurfaceAttrib(const SurfaceAttrib* surface)
{
    printf("Color: red = %g, green = %g, blue = %g\n", surface->color.red, surface->color.green,
           surface->color.blue);
    printf("Ambient: ambient = %g\nDiffuse: diffuse = %g\nBrilliance: brilliance = %g\n"
           "Specular: specular = %g\nRoughness: roughness = %g\nReflection: reflection = %g\n",
           surface->ambient, surface->diffuse, surface->brilliance, surface->specular, surface->roughness,
           surface->reflection);
}
