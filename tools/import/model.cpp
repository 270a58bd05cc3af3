#include "model.h"

#include "messages.h"
#include "parallel.h"
#include "progress.h"
#include "skin.h"

#include <assimp/commonMetaData.h>
#include <assimp/config.h>
#include <assimp/importerdesc.h>
#include <assimp/postprocess.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>

constexpr double LEAST_EDGE = 0.01; // ten times the tolerance of the language

// ---- faces ----

FaceKind faceCorners(const Instance& instance, const aiFace& face, Vec corners[3])
{
    if (face.mNumIndices < 3)
        return FACE_THIN;
    if (face.mNumIndices > 3)
        return FACE_BROKEN; // could not be made into triangles
    for (int k = 0; k < 3; ++k) {
        if (face.mIndices[k] >= instance.mesh->mNumVertices)
            return FACE_BROKEN;
        corners[k] = instance.place * widen(instance.mesh->mVertices[face.mIndices[k]]);
    }
    if (acrossFace(corners).SquareLength() > 0.0)
        return FACE_GOOD;
    return isFinite(corners[0]) && isFinite(corners[1]) && isFinite(corners[2]) ? FACE_DEGENERATE
                                                                                : FACE_BROKEN;
}

// ---- the format ----

static bool isOneOf(const std::string& extension, std::initializer_list<const char*> list)
{
    return std::any_of(list.begin(), list.end(), [&](const char* e) { return extension == e; });
}

static std::string metadata(const aiScene& scene, const char* key)
{
    aiString value;
    const bool known = scene.mMetaData != nullptr && scene.mMetaData->Get(key, value);
    return known ? value.C_Str() : "";
}

/// The start of the file, from which the library does not tell all. False, with errno, if it cannot be read.
static bool readStart(const char* path, std::string& start)
{
    const std::unique_ptr<FILE, int (*)(FILE*)> file(fopen(path, "rb"), fclose);
    char bytes[80];
    const size_t n = file != nullptr ? fread(bytes, 1, sizeof bytes, file.get()) : 0;
    start.assign(bytes, n);
    return file != nullptr && ferror(file.get()) == 0;
}

static Format formatOf(const Assimp::Importer& importer, const aiScene& scene, const std::string& start)
{
    const aiImporterDesc* description =
        importer.GetImporterInfo(static_cast<size_t>(importer.GetPropertyInteger("importerIndex", 0)));
    const std::string kinds = description != nullptr ? description->mFileExtensions : "";
    const std::string kind = kinds.substr(0, kinds.find(' '));

    Format format;
    format.hasNormals = !isOneOf(kind, {"3ds", "stl"});
    format.whiteIsNone = kind == "ply";
    // The library's own exporter writes the numbers that it has, whatever the format means by them.
    const bool copied =
        metadata(scene, AI_METADATA_SOURCE_GENERATOR).find("Asset Import Library") != std::string::npos ||
        (kind == "stl" && start.find("AssimpScene") != std::string::npos);
    const bool gltf = isOneOf(kind, {"gltf", "glb"});
    format.linearColours = gltf && !copied;
    format.coneFactor = gltf ? 2.0 : 1.0;
    format.nodeCameras = gltf;
    format.lenses = kind == "3ds";
    format.tintedPictures = gltf || kind == "obj";
    format.tintedColours = gltf;
    // Printers and drawings have z up.
    if (isOneOf(kind, {"stl", "3mf", "dxf"}) && !copied)
        format.up = AXIS_Z;
    int axis = 0;
    if (scene.mMetaData != nullptr && scene.mMetaData->Get("UpAxis", axis) && axis >= 0 && axis <= 2)
        format.up = static_cast<Axis>(AXIS_X + axis);
    return format;
}

// ---- the nodes ----

Matrix placeOf(const aiNode* node)
{
    Matrix m;
    for (; node != nullptr; node = node->mParent)
        m = Matrix(node->mTransformation) * m;
    return m;
}

static void listInstances(Model& model)
{
    struct Visit {
        const aiNode* node;
        Matrix place;
    };
    std::vector<Visit> visits = {{model.scene->mRootNode, Matrix()}};
    while (!visits.empty()) {
        Visit visit = visits.back();
        visits.pop_back();
        visit.place = visit.place * Matrix(visit.node->mTransformation);
        for (unsigned i = 0; i < visit.node->mNumMeshes; ++i)
            model.instances.push_back({.mesh = model.scene->mMeshes[visit.node->mMeshes[i]],
                                       .index = visit.node->mMeshes[i],
                                       .smooth = nullptr,
                                       .node = visit.node,
                                       .place = visit.place,
                                       .turn = {}});
        for (unsigned i = visit.node->mNumChildren; i > 0; --i) // the first one comes off first
            visits.push_back({visit.node->mChildren[i - 1], visit.place});
    }

    std::vector<unsigned> rank(model.scene->mNumMaterials, ~0u);
    unsigned used = 0;
    for (const Instance& instance : model.instances)
        if (rank[instance.mesh->mMaterialIndex] == ~0u && instance.mesh->mNumFaces > 0)
            rank[instance.mesh->mMaterialIndex] = used++;
    std::stable_sort(model.instances.begin(), model.instances.end(),
                     [&](const Instance& a, const Instance& b) {
                         return rank[a.mesh->mMaterialIndex] < rank[b.mesh->mMaterialIndex];
                     });
}

// ---- the place ----

// What a block of faces adds to the measures of the model.
struct Measure {
    size_t kinds[FACE_KINDS] = {};
    Vec low = Vec(INFINITY, INFINITY, INFINITY), high = Vec(-INFINITY, -INFINITY, -INFINITY);
    double squares = 0.0; // of the lengths of edges
};

static void measureFaces(const Instance& instance, unsigned begin, unsigned end, Measure& measure)
{
    for (unsigned f = begin; f < end; ++f) {
        Vec corners[3];
        const FaceKind kind = faceCorners(instance, instance.mesh->mFaces[f], corners);
        ++measure.kinds[kind];
        if (kind != FACE_GOOD)
            continue;
        for (int k = 0; k < 3; ++k) {
            measure.low = least(measure.low, corners[k]);
            measure.high = most(measure.high, corners[k]);
        }
        measure.squares += (corners[1] - corners[0]).SquareLength();
    }
}

/// Counts the faces, and finds their box and a mean of their edges in the frame that the instances have.
static void measure(Model& model)
{
    Measure all;
    std::vector<Measure> measures;
    for (const Instance& instance : model.instances) {
        const unsigned faces = instance.mesh->mNumFaces;
        measures.assign(blocksOf(faces), {});
        forBlocks(measures.size(), [&](size_t block) {
            const auto begin = static_cast<unsigned>(block * BLOCK);
            measureFaces(instance, begin, std::min<unsigned>(faces, begin + BLOCK), measures[block]);
        });
        for (const Measure& measure : measures) {
            for (int kind = 0; kind < FACE_KINDS; ++kind)
                all.kinds[kind] += measure.kinds[kind];
            all.low = least(all.low, measure.low);
            all.high = most(all.high, measure.high);
            all.squares += measure.squares;
        }
    }
    std::copy_n(all.kinds, FACE_KINDS, model.dropped);
    model.triangles = std::exchange(model.dropped[FACE_GOOD], 0);
    model.low = all.low;
    model.high = all.high;
    model.meanEdge = std::sqrt(all.squares / static_cast<double>(model.triangles));
}

/// Turns the axis that points up in the file to z. The front of a y-up model, which is +z, comes to -y, where
/// the camera is.
static Matrix uprightFrom(Axis up)
{
    switch (up) {
    case AXIS_X:
        return {0, -1, 0, 0, 0, 0, -1, 0, 1, 0, 0, 0, 0, 0, 0, 1};
    case AXIS_Y:
        return {1, 0, 0, 0, 0, 0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1};
    default:
        return {};
    }
}

static Matrix turnedBy(const Vec& degrees)
{
    Matrix x, y, z;
    Matrix::RotationX(degrees.x * PI / 180.0, x);
    Matrix::RotationY(degrees.y * PI / 180.0, y);
    Matrix::RotationZ(degrees.z * PI / 180.0, z);
    return z * y * x;
}

static void place(Model& model, const Matrix& by)
{
    for (Instance& instance : model.instances)
        instance.place = by * instance.place;
    model.placement = by * model.placement;
}

/// Turns, scales and moves the model: its longest side, before it is turned, gets the size asked for, and the
/// middle of its foot comes to `options.at`.
static void placeInScene(const Options& options, Model& model)
{
    model.up = options.up != AXIS_AUTO ? options.up : model.format.up;
    place(model, uprightFrom(model.up));
    measure(model);
    const Vec extent = model.high - model.low;
    if (options.turn.SquareLength() > 0.0 && model.triangles > 0) {
        place(model, turnedBy(options.turn));
        measure(model);
    }
    Vec foot;
    if (!options.keepSize) {
        model.scale = options.size / std::max({extent.x, extent.y, extent.z});
        foot = Vec((model.low.x + model.high.x) / 2.0, (model.low.y + model.high.y) / 2.0, model.low.z);
    }
    const double s = model.scale;
    const Vec by = options.at - foot * s;
    place(model, {s, 0, 0, by.x, 0, s, 0, by.y, 0, 0, s, by.z, 0, 0, 0, 1});
    model.low = model.low * s + by;
    model.high = model.high * s + by;
    model.meanEdge *= s;
}

// ---- normals ----

/// Gives normals by angle to the meshes that have none of their own, and to all where the user set an angle.
static void smooth(const Options& options, Model& model)
{
    const aiScene& scene = *model.scene;
    const bool all = options.smoothGiven || !model.format.hasNormals;
    model.parts.resize(scene.mNumMeshes);
    std::vector<const aiMesh*> meshes;
    std::vector<MeshPart*> parts;
    std::vector<const aiNode*> nodes = {scene.mRootNode};
    while (!nodes.empty()) {
        const aiNode* node = nodes.back();
        nodes.pop_back();
        nodes.insert(nodes.end(), node->mChildren, node->mChildren + node->mNumChildren);
        meshes.clear();
        parts.clear();
        for (unsigned i = 0; i < node->mNumMeshes; ++i) {
            const unsigned m = node->mMeshes[i];
            const bool taken = model.parts[m].group != nullptr ||
                               std::find(parts.begin(), parts.end(), &model.parts[m]) != parts.end();
            if (!taken && (all || !scene.mMeshes[m]->HasNormals())) {
                meshes.push_back(scene.mMeshes[m]);
                parts.push_back(&model.parts[m]);
            }
        }
        if (!meshes.empty())
            makeGroup(model.groups.emplace_back(), options.smooth, meshes, parts);
    }
    for (Instance& instance : model.instances)
        if (const MeshPart& part = model.parts[instance.index]; part.group != nullptr)
            instance.smooth = &part;
}

// ---- the whole ----

/// Says what was left out, and what of it may show.
static void warnOfFaces(const Options& options, const Model& model)
{
    static const struct {
        FaceKind kind;
        const char* text;
    } ROWS[] = {{FACE_DEGENERATE, "faces without area"},
                {FACE_BROKEN, "faces with a corner that is missing or no finite number"},
                {FACE_THIN, "points and lines"}};
    for (const auto& row : ROWS)
        if (model.dropped[row.kind] > 0)
            warn("%zu %s left out", model.dropped[row.kind], row.text);
    if (model.meanEdge < LEAST_EDGE)
        warn("its edges have a mean length of %.2g, and what is below 0.001 does not show: try --size %.3g",
             model.meanEdge, options.size * std::ceil(LEAST_EDGE / model.meanEdge));
}

bool readModel(const Options& options, Model& model)
{
    std::string start;
    if (!readStart(options.input, start)) // the library's own words do not tell why
        return refuse("%s", strerror(errno));

    showPhase("reading");
    model.importer.SetPropertyBool(AI_CONFIG_IMPORT_NO_SKELETON_MESHES, true);
    model.scene = model.importer.ReadFile(options.input, aiProcess_Triangulate | aiProcess_TransformUVCoords);
    if (model.scene == nullptr)
        return refuse("%s", model.importer.GetErrorString());
    if (model.scene->mRootNode == nullptr)
        return refuse("it holds no model");

    showPhase("placing");
    model.format = formatOf(model.importer, *model.scene, start);
    applySkins(*model.scene);
    listInstances(model);
    placeInScene(options, model);
    warnOfFaces(options, model);
    if (model.triangles == 0)
        return refuse("it has no faces to show");
    if (!options.flat)
        smooth(options, model);
    for (Instance& instance : model.instances)
        instance.turn = forNormals(instance.place);
    return true;
}
