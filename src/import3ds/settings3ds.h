#pragma once

#include <cstdio>

/// Reads the settings file of a model: one block without a word in front, which gives the picture's settings
/// and what of the camera and the lights a model cannot say. The picture goes to the globals, the rest to the
/// caller, who gives every value its start: `inputName` has room for 256 characters. The focal point is
/// measured from the present position of the camera. A fault ends the process.
void yy_3DSSettings(FILE* stream, char* inputName, int* attenuation, int* shadowType, int* samples,
                    double* radius, int* cameraIndex);
