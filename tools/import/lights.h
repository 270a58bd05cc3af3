#pragma once

#include "view.h"

#include <vector>

enum Fading { FADING_NONE, FADING_LINEAR, FADING_SQUARE };

struct Light {
    std::string name;
    Vec position;
    Colour colour;
    Fading fading = FADING_NONE;
    bool spot = false;
    Vec target;                            // of a spot
    double minAngle = 0.0, maxAngle = 0.0; // of a spot, degrees across
    double radius = 0.0;                   // above 0: a smooth shadow
};

/// The lights of the file, or where none of them reaches the model a key, a fill and a rim light around it,
/// as the camera sees it. Their sum on a white surface, all of them square to it, is at most 1 on each
/// vertex.
std::vector<Light> chooseLights(const Model& model, const Camera& camera);

void putLight(const Light& light);
