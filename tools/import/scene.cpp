#include "scene.h"

#include "output.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

// The floor is twice the tolerance of a hit below the model: then a flat model lies on it and not in it.
constexpr double FLOOR_GAP = 0.002;

static std::string fileName(const Options& options)
{
    return std::filesystem::path(options.input).filename();
}

/// A name that the language takes: a letter first, then letters, digits and `_`.
static std::string legalName(const std::string& text)
{
    std::string name;
    for (const char c : text.substr(0, 200))
        name += static_cast<unsigned char>(c) < 128 && isalnum(c) != 0 ? c : '_';
    return !name.empty() && isalpha(name[0]) != 0 ? name : "model_" + name;
}

static void putHead(const Options& options, const Model& model, size_t faces)
{
    const Vec extent = model.high - model.low;
    putComment("varlo-import " VARLO_VERSION);
    putComment("model " + fileName(options));
    putAll("; triangles ", model.triangles);
    if (faces != model.triangles)
        putAll(", split into ", faces);
    putAll("\n; extent ", extent.x, " x ", extent.y, " x ", extent.z);
    putAll("\n; scale ", model.scale, ", up was ",
           model.up == AXIS_X   ? "x"
           : model.up == AXIS_Y ? "y"
                                : "z",
           "\n");
}

static void putSurroundings(const Options& options, const Model& model)
{
    putAll("\nsettings { output_type \"png\"  output_name \"",
           legalName(std::filesystem::path(options.input).stem()), "\"  resolution ", size_t{WIDTH}, " ",
           size_t{HEIGHT}, "\n           antialiasing \"adaptive\"  aa_distance 8  background ",
           "0.8 0.86 0.92 }\n");
    const Camera camera = chooseCamera(options, model);
    putCamera(camera);
    for (const Light& light : chooseLights(model, camera))
        putLight(light);
    if (options.floor)
        putAll("surface { color 0.95 0.95 0.95  ambient 0.3  diffuse 0.7 } ; floor\nplane { normal <0 0 1>  "
               "distance ",
               model.low.z - FLOOR_GAP, " }\n");
}

void putScene(const Options& options, const Model& model)
{
    const Vec extent = model.high - model.low;
    setExtent(std::max({extent.x, extent.y, extent.z}));
    const std::vector<Paint> paints = makePaints(options, model);
    size_t faces = model.triangles;
    for (const Paint& paint : paints)
        faces += paint.pieces.size() - paint.wholes;
    putHead(options, model, faces);
    if (!options.geometry)
        putSurroundings(options, model);
    for (const Paint& paint : paints)
        putPaint(options, model, paint);
}

// ---- the list ----

static void putNumbered(const char* kind, size_t count, auto&& putLine)
{
    putAll(kind, " ", count, "\n");
    for (unsigned i = 0; i < count; ++i) {
        putAll("  ", static_cast<size_t>(i), " ");
        putLine(i);
        put("\n");
    }
}

/// What a terminal can show of a name of the file.
static std::string shown(const aiString& name)
{
    std::string text = name.C_Str();
    for (char& c : text)
        if (static_cast<unsigned char>(c) < ' ' || c == 127)
            c = ' ';
    return text.empty() ? "(no name)" : text;
}

void putList(const Options& options, const Model& model)
{
    const aiScene& scene = *model.scene;
    const Vec extent = (model.high - model.low) * (1.0 / model.scale);
    putAll("model ", fileName(options), "\nextent ", extent.x, " ", extent.y, " ", extent.z, "\ntriangles ",
           model.triangles, "\n");
    putNumbered("meshes", scene.mNumMeshes, [&](unsigned i) {
        const aiMesh& mesh = *scene.mMeshes[i];
        const auto times = std::count_if(model.instances.begin(), model.instances.end(),
                                         [&](const Instance& instance) { return instance.mesh == &mesh; });
        putAll(shown(mesh.mName), ", ", size_t{mesh.mNumFaces}, " faces, material ",
               size_t{mesh.mMaterialIndex}, ", shown ", static_cast<size_t>(times),
               times == 1 ? " time" : " times");
    });
    putNumbered("materials", scene.mNumMaterials, [&](unsigned i) {
        const Surface surface = surfaceOf(*scene.mMaterials[i], model.format);
        putAll(shown(aiString(surface.name)), ", color ", surface.colour);
    });
    putNumbered("cameras", scene.mNumCameras, [&](unsigned i) { put(shown(scene.mCameras[i]->mName)); });
    static const char* const TYPES[] = {"unknown", "sun", "point", "spot", "ambient", "area"}; // as in assimp
    putNumbered("lights", scene.mNumLights, [&](unsigned i) {
        const unsigned type = scene.mLights[i]->mType;
        putAll(shown(scene.mLights[i]->mName), ", ", type < std::size(TYPES) ? TYPES[type] : TYPES[0]);
    });
}
