#pragma once

#include <assimp/texture.h>

#include <string>
#include <vector>

/// A decoded picture: rows from the top, each pixel red, green, blue, alpha.
struct Picture {
    int width = 0, height = 0;
    std::vector<unsigned char> pixels; // 4 * width * height, or none
};

/// Decodes PNG or JPEG. False, with the reason in `why`, for anything else or a damaged picture.
bool decodePicture(const unsigned char* bytes, size_t size, Picture& picture, std::string& why);

/// The same for a file.
bool readPicture(const std::string& path, Picture& picture, std::string& why);

/// The same for a picture inside of a model.
bool takePicture(const aiTexture& texture, Picture& picture, std::string& why);
