#pragma once

#include <string>

/// Rows `first` to `end` - 1 of a picture of noise, as the sink takes them.
std::string noise(int width, int first, int end);

/// Sends noise through the sink, from the bottom up and the top row twice. Returns the name of the file.
std::string writePicture(int type, int width, int height);
