#pragma once

#include "engine/light.h"

#include <cstdio>

/// Reads the settings file of a model: one block without a word in front, which gives the picture's settings
/// and what of the camera and the lights a model cannot say. The globals of the picture and the camera are
/// written, `inputName`, which has room for 256 characters, and what all lights have in common. The focal
/// point is measured from the present position of the camera. A fault ends the process.
void yy_3DSSettings(FILE* stream, char* inputName, Light* light);
