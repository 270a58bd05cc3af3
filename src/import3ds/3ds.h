#pragma once

#include "import3ds/model.h"

/// Reads the 3DS file `fileName` into `model`, which is zeroed, and gives every vertex a normal if
/// `withNormals` is 1. Returns 1, or 0 with a message if there is no such file, if it is of another kind, or
/// without memory. A damaged file still counts as read, with what came ahead of the damage, and a line on
/// standard error says so. The caller gives the model back in every case.
int import3DS(Model3DS* model, const char* fileName, int withNormals);

/// Frees all arrays of the model, those of its objects too, and zeroes it.
void freeModel(Model3DS* model);
