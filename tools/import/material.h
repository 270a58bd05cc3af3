#pragma once

#include "model.h"

#include <string>

/// A `surface` of the scene language; what is 0 is left out when it is written.
struct Surface {
    std::string name;
    Colour colour;
    double ambient = 0.0, diffuse = 0.0;
    double specular = 0.0, roughness = 0.0;
    double reflection = 0.0, blur = 0.0; // blur above 0 is a fuzzy mirror
    double refraction = 0.0;
    double tint = 0.0; // of glass: how much of its colour a unit of length has, as an exponent; 0 is clear
};

/// From linear light to what a screen is told, by the curve of sRGB.
Colour screenFrom(const Colour& light);

/// What the material of the file comes to.
Surface surfaceOf(const aiMaterial& material, const Format& format);

/// Writes the surface with its colour replaced.
void putSurface(const Surface& surface, const Colour& colour);
