#pragma once

#include "core/data.h"

constexpr int COLOR_NAME_SIZE = 64;

/// A named colour, of any range.
struct ColorEntry {
    ColorEntry* next;
    char name[COLOR_NAME_SIZE];
    Color color;
};

extern ColorEntry* myColorList; // the latest declaration first; null outside parseFile
extern SurfaceAttrib surface;   // the current surface, which an object copies as it closes

// How many of each were made; every block parser counts its own.
extern int iNumSphere, iNumRing, iNumPlane, iNumCone, iNumCylinder, iNumDisc, iNumPolygone, iNumTriangle,
    iNumPatch, iNumSurface, iNumLight;

/// Reads a scene into the globals and prints its counts. Returns 0, or -1 with a message if a camera, the
/// settings or a surface is missing. A fault in the text ends the process.
int parseFile(const char* fileName);

/// Reads one scene file, and those that it includes, to its end. Returns 0. A file that cannot be opened ends
/// the process with status -1.
int parseScene(const char* fileName);

/// Puts `entry` at the front of the list.
void addColorToList(ColorEntry** head, ColorEntry* entry);

/// Frees the entries, leaves the head null and returns how many there were.
int freeColorList(ColorEntry** head);
