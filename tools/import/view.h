#pragma once

#include "model.h"

constexpr int WIDTH = 640, HEIGHT = 480; // of the picture

struct Camera {
    std::string name; // what it is, for a comment
    Vec position, lookAt, up;
    double fov = 30.0; // across the width, in degrees
};

/// The camera that the options ask for: one of the file, or one that shows the whole model.
Camera chooseCamera(const Options& options, const Model& model);

/// Writes the block.
void putCamera(const Camera& camera);
