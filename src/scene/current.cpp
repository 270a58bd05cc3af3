#include "scene/current.h"

constinit SurfaceAttrib surface{};

constinit int iNumSphere = 0, iNumRing = 0, iNumPlane = 0, iNumCone = 0, iNumCylinder = 0, iNumDisc = 0,
              iNumPolygone = 0, iNumTriangle = 0, iNumPatch = 0, iNumSurface = 0, iNumLight = 0;
