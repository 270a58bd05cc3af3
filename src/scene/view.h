#pragma once

#include "scene/block.h"

#include <vector>

// The blocks that describe no geometry: the camera, and the settings of the picture.

/// Reads a `camera` block into myViewPoint.
void yy_camera(FILE* stream);

/// Reads a `settings` block into the globals of the picture.
void yy_settings(FILE* stream);

/// Gives myViewPoint the values that stand until a parameter changes them; all but the two points.
void startCamera();

/// Gives the settings of the picture the values that stand until a parameter changes them.
void startPicture();

/// The parameters of the picture's settings, all of them optional. They lead to the globals.
std::vector<BlockWord> pictureWords();

/// The fault of a number of rays through the lens that is not above 0.
constexpr const char* CAMERA_SAMPLES_FAULT = " camera samples must be greater than 0";

/// Where the two words for the focus stood, with `point` behind the second one: tests that they did not both
/// stand and turns a point into a distance from the camera's present position.
void setFocus(std::span<const BlockWord> words, Vec point);
