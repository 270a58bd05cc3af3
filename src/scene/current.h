#pragma once

#include "core/surface.h"

// What the blocks of a scene have in common. parseFile gives both their start.

inline constinit SurfaceAttrib surface{}; // the current surface, which an object copies as it closes

// How many of each were made; every block parser counts its own.
inline constinit int iNumSphere = 0, iNumRing = 0, iNumPlane = 0, iNumCone = 0, iNumCylinder = 0,
                     iNumDisc = 0, iNumPolygone = 0, iNumTriangle = 0, iNumPatch = 0, iNumSurface = 0,
                     iNumLight = 0;
