#pragma once

#include "import3ds/model.h"

// What a model needs before it can be shaded. All of it is in 32-bit floats.

/// Corners of the box around the vertices that faces use, over all models so far; until there is one, vVMin
/// is above vVMax. They are there for a debugger: the picture does not depend on them.
inline constinit Vec3f vVMin = {1e12f, 1e12f, 1e12f}, vVMax = {-1e12f, -1e12f, -1e12f};

/// Removes the faces with a vertex index out of range and returns how many there were. All that follows
/// relies on good indices.
int dropBadFaces(Model3DS* model);

/// Widens vVMin and vVMax to the model.
void computeBBox(const Model3DS* model);

/// Gives each vertex the unit normal of all its faces, weighted by their areas, to the side from which their
/// corners run counterclockwise. It is zero where they cancel out, and where no face is. False without
/// memory.
bool computeNormals(Model3DS* model);
