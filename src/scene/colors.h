#pragma once

#include "core/data.h"

// The colours that a scene declares by name.

constexpr int COLOR_NAME_SIZE = 64;

/// A named colour, of any range.
struct ColorEntry {
    ColorEntry* next;
    char name[COLOR_NAME_SIZE];
    Color color;
};

inline constinit ColorEntry* myColorList = nullptr; // the latest declaration first; null outside parseFile

// The list is kept as those of the objects are.
inline constexpr auto addColorToList = addToList<ColorEntry>;
inline constexpr auto freeColorList = freeList<ColorEntry>;

/// The latest declaration of a name, or null.
const ColorEntry* findColor(const ColorEntry* head, const char* name);
