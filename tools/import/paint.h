#pragma once

#include "faces.h"
#include "material.h"
#include "palette.h"
#include "texture.h"

/// A face, or a part of one, that has a colour of its own.
struct Piece {
    unsigned instance, face;
    unsigned part; // see partWeights
};

/// A material in use, with all that it colours.
struct Paint {
    Surface surface;
    size_t begin = 0, end = 0; // its instances
    std::vector<bool> painted; // of each of its instances: its faces are pieces
    std::vector<Piece> pieces; // of the instances that have a picture or colours at their vertices
    size_t wholes = 0;         // the faces that these are pieces of
    std::vector<Rgb> colours;  // of each piece its place in the palette
    std::vector<Colour> palette;
};

/// The materials in the order of their first use.
std::vector<Paint> makePaints(const Options& options, const Model& model);

/// Writes the surfaces of the material, each with its faces behind it.
void putPaint(const Options& options, const Model& model, const Paint& paint);
