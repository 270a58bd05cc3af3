#pragma once

#include "scene/block.h"

// The blocks for surfaces and lights, and what the settings of a 3DS model share with the latter.

extern const Choice attenuationTypes[3];
extern const Choice shadowTypes[2];
constexpr const char* ATTENUATION_FAULT = " invalid light attenuation type specified";
constexpr const char* SHADOW_FAULT = " invalid shadow type specified";
constexpr const char* LIGHT_RADIUS_FAULT = " smooth light radius must be greater than 0";
constexpr const char* LIGHT_SAMPLES_FAULT = " smooth light samples must be greater than 0";

/// Reads a `surface` block and replaces the current surface by it.
void yy_surface(FILE* stream);

/// Reads a `light` block and makes the light.
void yy_light(FILE* stream);
