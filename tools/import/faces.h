#pragma once

#include "model.h"

struct CornerText;

/// A triangle in the frame of the scene.
struct Face {
    Vec corners[3];
    Vec normals[3]; // unit, all on one side of the face
    CornerText*
        texts[3]; // of the corners as they are; null where there is none, and until the next face is made
};

/// Fills `face` from face `index` of the instance's mesh. False if that is none to show.
bool makeFace(const Instance& instance, unsigned index, Face& face);

/// The three corners of a part of a triangle as weights of the triangle's own corners. The part 1 is the
/// whole; part 4 * p + i is the i-th quarter of part p, cut at the middles of its edges.
void partWeights(unsigned part, Vec weights[3]);

/// The mean of the three `values` with the weights.
inline Vec blend(const Vec values[3], const Vec& weights)
{
    return values[0] * weights.x + values[1] * weights.y + values[2] * weights.z;
}

/// Writes the part as a `patch`, or as a `triangle` when `flat`.
void putFace(const Face& face, unsigned part, bool flat);
