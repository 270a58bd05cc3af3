#pragma once

#include "model.h"
#include "picture.h"

#include <map>

/// The pictures of the model's materials, each of them read once, and warned of once if that fails.
using Pictures = std::map<std::string, Picture>;

/// A material's picture of its colour, and how the mesh lies on it.
struct Texture {
    const Picture* picture = nullptr; // null: none that can be read
    unsigned channel = 0;             // of the mesh's coordinates
    aiTextureMapMode modes[2] = {aiTextureMapMode_Wrap, aiTextureMapMode_Wrap};
};

/// Finds the picture: in the model, beside it, or in the folder of the options.
Texture textureOf(const Options& options, const Model& model, const aiMaterial& material, Pictures& pictures);

/// A part of a picture: its mean, and how much its channels vary, from 0 to 1.
struct Sample {
    Colour mean;
    float variation;
};

/// The triangle with these corners, in the coordinates of the file (v goes up).
Sample sampleTriangle(const Texture& texture, const Vec corners[3]);
