#pragma once

#include "core/surface.h"

// What the blocks of a scene have in common. parseFile gives both their start.

extern SurfaceAttrib surface; // the current surface, which an object copies as it closes

// How many of each were made; every block parser counts its own.
extern int iNumSphere, iNumRing, iNumPlane, iNumCone, iNumCylinder, iNumDisc, iNumPolygone, iNumTriangle,
    iNumPatch, iNumSurface, iNumLight;
