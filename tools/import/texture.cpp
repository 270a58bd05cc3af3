#include "texture.h"

#include "messages.h"

#include <assimp/GltfMaterial.h>

#include <algorithm>
#include <filesystem>
#include <strings.h>

namespace fs = std::filesystem;

// ---- finding ----

/// The file in `folder` that has this name, in any case of its letters: older formats shout.
static std::string findIn(const fs::path& folder, const std::string& name)
{
    std::error_code error;
    if (fs::is_regular_file(folder / name, error))
        return folder / name;
    for (fs::directory_iterator i(folder.empty() ? "." : folder, error), end; !error && i != end;
         i.increment(error))
        if (strcasecmp(i->path().filename().c_str(), name.c_str()) == 0)
            return i->path();
    return "";
}

static std::string findPicture(const Options& options, std::string name)
{
    std::replace(name.begin(), name.end(), '\\', '/');
    const fs::path beside = fs::path(options.input).parent_path();
    const std::string base = fs::path(name).filename();
    std::string found = findIn(beside, name);
    if (found.empty())
        found = findIn(beside, base);
    if (found.empty() && !options.textures.empty())
        found = findIn(options.textures, name);
    if (found.empty() && !options.textures.empty())
        found = findIn(options.textures, base);
    return found;
}

static const Picture* loadPicture(const Options& options, const Model& model, const std::string& name,
                                  Pictures& pictures)
{
    const auto [place, isNew] = pictures.try_emplace(name);
    Picture& picture = place->second;
    if (isNew) {
        std::string why = "not found beside the model";
        if (const aiTexture* embedded = model.scene->GetEmbeddedTexture(name.c_str())) {
            if (takePicture(*embedded, picture, why))
                return &picture;
        } else if (const std::string path = findPicture(options, name); !path.empty()) {
            if (readPicture(path, picture, why))
                return &picture;
        }
        picture.pixels.clear();
        warn("picture %s: %s; the colour of the material stands for it", name.c_str(), why.c_str());
    }
    return picture.pixels.empty() ? nullptr : &picture;
}

Texture textureOf(const Options& options, const Model& model, const aiMaterial& material, Pictures& pictures)
{
    Texture texture;
    for (const aiTextureType type : {aiTextureType_BASE_COLOR, aiTextureType_DIFFUSE}) {
        aiString name;
        aiTextureMapping mapping = aiTextureMapping_UV;
        if (material.GetTexture(type, 0, &name, &mapping, &texture.channel, nullptr, nullptr,
                                texture.modes) != AI_SUCCESS)
            continue;
        texture.picture = loadPicture(options, model, name.C_Str(), pictures);
        break;
    }
    return texture;
}

// ---- sampling ----

/// The pixel that the coordinate falls on.
static int wrapped(double coordinate, int size, aiTextureMapMode mode)
{
    if (!(std::fabs(coordinate) < 1e9))
        return 0;
    if (mode == aiTextureMapMode_Wrap) {
        coordinate -= std::floor(coordinate);
    } else if (mode == aiTextureMapMode_Mirror) {
        coordinate = std::fabs(coordinate - 2.0 * std::floor(coordinate / 2.0 + 0.5));
    }
    return std::clamp(static_cast<int>(std::clamp(coordinate, 0.0, 1.0) * size), 0, size - 1);
}

Sample sampleTriangle(const Texture& texture, const Vec corners[3])
{
    // As many rows of samples as there are pixels along a side of a square of the same area, within reason.
    constexpr double MOST_ROWS = 24.0;
    const Picture& picture = *texture.picture;
    const Vec a = corners[1] - corners[0], b = corners[2] - corners[0];
    const double pixels = std::fabs(a.x * b.y - a.y * b.x) / 2.0 * picture.width * picture.height;
    const int rows = pixels < MOST_ROWS * MOST_ROWS ? static_cast<int>(std::sqrt(pixels)) + 2
                                                    : static_cast<int>(MOST_ROWS);

    double sums[4] = {};
    unsigned char least[3] = {255, 255, 255}, most[3] = {};
    const auto take = [&](double u, double v) {
        const Vec at = corners[0] + a * u + b * v;
        const int x = wrapped(at.x, picture.width, texture.modes[0]);
        const int y = wrapped(1.0 - at.y, picture.height, texture.modes[1]);
        const unsigned char* pixel =
            &picture.pixels[4 * (static_cast<size_t>(y) * static_cast<size_t>(picture.width) +
                                 static_cast<size_t>(x))];
        const double weight = pixel[3] + 1e-3; // what is transparent has a colour that nobody sees
        for (int c = 0; c < 3; ++c) {
            sums[c] += pixel[c] * weight;
            least[c] = std::min(least[c], pixel[c]);
            most[c] = std::max(most[c], pixel[c]);
        }
        sums[3] += weight;
    };
    // The middles of the rows * rows small triangles that the large one is cut into.
    for (int i = 0; i < rows; ++i)
        for (int j = 0; i + j < rows; ++j) {
            take((i + 1.0 / 3.0) / rows, (j + 1.0 / 3.0) / rows);
            if (i + j + 1 < rows)
                take((i + 2.0 / 3.0) / rows, (j + 2.0 / 3.0) / rows);
        }

    Sample sample = {Colour(), 0.0f};
    float* const parts[3] = {&sample.mean.r, &sample.mean.g, &sample.mean.b};
    for (int c = 0; c < 3; ++c) {
        *parts[c] = static_cast<float>(sums[c] / sums[3] / 255.0);
        if (most[c] > least[c])
            sample.variation = std::max(sample.variation, static_cast<float>(most[c] - least[c]) / 255.0f);
    }
    return sample;
}
