#include "import3ds/3ds.h"

#include "import3ds/chunk.h"
#include "import3ds/mesh.h"

#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>

// One table for each kind of parent chunk tells which sub-chunks are read, and by whom; all others are
// stepped over. Chunks nest so that what is filled is always the record that was added last.

/// Reads a chunk whose header was read. It need not reach the end: its parent's loop goes on where it stopped
/// and takes what it finds there for the next chunk. False once reading has to stop, like all readers here.
using ChunkReader = bool (*)(Model3DS* model, Chunk* chunk);

struct ChunkAction {
    std::uint16_t id;
    ChunkReader read;
};

static constexpr std::uint16_t PRIMARY_CHUNK = 0x4D4D, OBJECT_CHUNK = 0x4000, MATERIAL_CHUNK = 0xAFFF;
static constexpr int NEWEST_VERSION = 3;
static constexpr int MAX_DEPTH = 32; // levels of chunks in chunks; a real file has 5

static constinit int depth = 0;
static constinit bool noMemory = false;

// The first material of each name, among the first `numIndexed` ones. A plain search would take the square of
// the time when a file has both many materials and many objects.
static std::map<std::string, int, std::less<>> firstOfName;
static constinit int numIndexed = 0;

static bool stopForMemory()
{
    noMemory = true;
    return false;
}

/// The sub-chunks of `parent`, from where it was read to so far up to its end.
static bool readLevel(std::span<const ChunkAction> actions, Model3DS* model, Chunk* parent)
{
    if (depth == MAX_DEPTH)
        return damaged(filePosition(), "depth of chunks");
    ++depth;
    while (parent->bytesRead < parent->length) {
        Chunk chunk;
        if (!readChunk(&chunk, parent))
            return false;
        const auto action = std::find_if(actions.begin(), actions.end(),
                                         [&](const ChunkAction& row) { return row.id == chunk.id; });
        if (!(action == actions.end() ? skipRest(&chunk) : action->read(model, &chunk)))
            return false;
        parent->bytesRead += chunk.bytesRead;
    }
    --depth;
    return true;
}

/// Puts a zeroed record behind the others. The room for them doubles each time, so that a file of nothing but
/// tiny chunks does not copy its records over and over.
template <class Record>
static bool addRecord(Record** records, int* count)
{
    const auto used = static_cast<size_t>(*count);
    if ((used & (used - 1)) == 0) {
        void* grown = realloc(*records, std::max<size_t>(1, 2 * used) * sizeof(Record));
        if (grown == nullptr)
            return stopForMemory();
        *records = static_cast<Record*>(grown);
    }
    (*records)[used] = {};
    ++*count;
    return true;
}

static ModelObject& lastObject(Model3DS* model)
{
    return model->objects[model->numObjects - 1];
}

static ModelMaterial& lastMaterial(Model3DS* model)
{
    return model->materials[model->numMaterials - 1];
}

static ModelLight& lastLight(Model3DS* model)
{
    return model->lights[model->numLights - 1];
}

static bool takePoint(Chunk* chunk, Vec3f* point)
{
    return takeNumbers(chunk, &point->x, 3);
}

/// Reads the count of that name and as many records of `size` bytes, which replace `*records`. Of a file that
/// ends too early the complete records are kept, and no memory is taken for the others.
template <class Record>
static bool takeRecords(Chunk* chunk, const char* name, Record** records, int* count, std::uint32_t size,
                        bool (*takeRecord)(Chunk*, Record*))
{
    std::uint16_t announced;
    if (!takeNumbers(chunk, &announced, 1))
        return false;
    if (announced > bytesLeft(chunk) / size)
        return damaged(filePosition(), name);
    const std::int64_t present = std::min<std::int64_t>(announced, recordsLeft(size));
    void* fresh = calloc(static_cast<size_t>(present) + 1, sizeof(Record)); // of no records too
    if (fresh == nullptr)
        return stopForMemory();
    free(*records);
    *records = static_cast<Record*>(fresh);
    for (*count = 0; *count < announced; ++*count)
        if (*count == present || !takeRecord(chunk, *records + *count))
            return damaged(filePosition(), FILE_END);
    return true;
}

static bool readVertices(Model3DS* model, Chunk* chunk)
{
    ModelObject& object = lastObject(model);
    return takeRecords(chunk, "vertex count", &object.vertices, &object.numVertices, 12, takePoint) &&
           skipRest(chunk);
}

static bool takeFace(Chunk* chunk, ModelFace* face)
{
    std::uint16_t numbers[4]; // three vertices, then flags
    if (!takeNumbers(chunk, numbers, 4))
        return false;
    std::copy_n(numbers, 3, face->vertexIndex);
    return true;
}

/// Stops behind the faces: what follows in the chunk, materials above all, is met as the mesh's own.
static bool readVertexIndices(Model3DS* model, Chunk* chunk)
{
    ModelObject& object = lastObject(model);
    return takeRecords(chunk, "face count", &object.faces, &object.numFaces, 8, takeFace);
}

static bool takeTexCoord(Chunk* chunk, TexCoord* texCoord)
{
    return takeNumbers(chunk, &texCoord->u, 2);
}

static bool readUVCoordinates(Model3DS* model, Chunk* chunk)
{
    ModelObject& object = lastObject(model);
    return takeRecords(chunk, "texture count", &object.texCoords, &object.numTexCoords, 8, takeTexCoord) &&
           skipRest(chunk);
}

/// Finds the first material of a name among those that stand ahead in the file; -1 if there is none. No
/// material is being read meanwhile, so that their names are final.
static int findMaterial(const Model3DS* model, const char* name)
{
    for (; numIndexed < model->numMaterials; ++numIndexed)
        firstOfName.try_emplace(model->materials[numIndexed].name, numIndexed);
    const auto found = firstOfName.find(name);
    return found != firstOfName.end() ? found->second : -1;
}

/// The list of faces behind the name is dropped: an object has one material, the last that was found.
static bool readObjectMaterial(Model3DS* model, Chunk* chunk)
{
    char name[MODEL_NAME_SIZE];
    if (!getString(chunk, name))
        return false;
    const int found = findMaterial(model, name);
    if (found >= 0) {
        lastObject(model).materialIndex = found;
        if (model->materials[found].textureFile[0] != '\0')
            lastObject(model).hasTexture = 1;
    }
    return skipRest(chunk);
}

static bool readCameraChunk(Model3DS* model, Chunk* chunk)
{
    if (!addRecord(&model->cameras, &model->numCameras))
        return false;
    ModelCamera& camera = model->cameras[model->numCameras - 1];
    return takePoint(chunk, &camera.position) && takePoint(chunk, &camera.target) &&
           takeNumbers(chunk, &camera.roll, 1) && takeNumbers(chunk, &camera.lens, 1) && skipRest(chunk);
}

static bool readSpot(Model3DS* model, Chunk* chunk)
{
    ModelLight& light = lastLight(model);
    light.spot = 1;
    return takePoint(chunk, &light.target) && takeNumbers(chunk, &light.hotspot, 1) &&
           takeNumbers(chunk, &light.falloff, 1);
}

/// Some writers make the chunk without its byte.
static bool readLightOff(Model3DS* model, Chunk* chunk)
{
    return bytesLeft(chunk) == 0 || take(chunk, &lastLight(model).off, 1);
}

static constexpr ChunkAction lightChunks[] = {
    {0x0010, [](Model3DS* model, Chunk* chunk) { return takeNumbers(chunk, lastLight(model).color, 3); }},
    {0x0011, [](Model3DS* model, Chunk* chunk) { return take(chunk, lastLight(model).rgb, 3); }},
    {0x4610, readSpot},
    {0x4620, readLightOff},
};

static bool readLightChunk(Model3DS* model, Chunk* chunk)
{
    if (!addRecord(&model->lights, &model->numLights))
        return false;
    lastLight(model).multiplier = 1.0f;
    return takePoint(chunk, &lastLight(model).position) && readLevel(lightChunks, model, chunk);
}

static bool processNextObjectChunk(Model3DS* model, Chunk* parent);

static constexpr ChunkAction objectChunks[] = {
    {0x4100, processNextObjectChunk}, // the mesh
    {0x4110, readVertices},           {0x4120, readVertexIndices}, {0x4130, readObjectMaterial},
    {0x4140, readUVCoordinates},      {0x4600, readLightChunk},    {0x4700, readCameraChunk},
};

static bool processNextObjectChunk(Model3DS* model, Chunk* parent)
{
    return readLevel(objectChunks, model, parent);
}

/// The diffuse colour: the first chunk within, of which three bytes are taken whatever its id. A second one
/// is met as the material's own.
static bool readColorChunk(Model3DS* model, Chunk* chunk)
{
    Chunk color;
    if (!readChunk(&color, chunk) || !take(&color, lastMaterial(model).rgb, 3) || !skipRest(&color))
        return false;
    chunk->bytesRead += color.bytesRead;
    return true;
}

static bool processNextMaterialChunk(Model3DS* model, Chunk* parent);

static constexpr ChunkAction materialChunks[] = {
    {0xA000, [](Model3DS* model, Chunk* chunk) { return getRest(chunk, lastMaterial(model).name); }},
    {0xA020, readColorChunk},
    {0xA200, processNextMaterialChunk}, // the map with the texture
    {0xA300, [](Model3DS* model, Chunk* chunk) { return getRest(chunk, lastMaterial(model).textureFile); }},
};

static bool processNextMaterialChunk(Model3DS* model, Chunk* parent)
{
    return readLevel(materialChunks, model, parent);
}

static bool readVersion(Model3DS*, Chunk* chunk)
{
    std::uint16_t version;
    if (!takeNumbers(chunk, &version, 1))
        return false;
    if (version > NEWEST_VERSION)
        printf(" This 3DS file is over version 3 so it may load incorrectly\n");
    return skipRest(chunk);
}

static bool readObject(Model3DS* model, Chunk* chunk)
{
    return addRecord(&model->objects, &model->numObjects) && getString(chunk, lastObject(model).name) &&
           processNextObjectChunk(model, chunk);
}

static bool readMaterial(Model3DS* model, Chunk* chunk)
{
    return addRecord(&model->materials, &model->numMaterials) && processNextMaterialChunk(model, chunk);
}

static bool readEditor(Model3DS* model, Chunk* chunk);

static constexpr ChunkAction topChunks[] = {
    {0x0002, readVersion},
    {0x3D3D, readEditor},
    {OBJECT_CHUNK, readObject},
    {MATERIAL_CHUNK, readMaterial},
};

static bool processNextChunk(Model3DS* model, Chunk* parent)
{
    return readLevel(topChunks, model, parent);
}

/// The part that holds the model. Its first sub-chunk is taken for the version of the mesh, which nobody
/// needs.
static bool readEditor(Model3DS* model, Chunk* chunk)
{
    const auto start = static_cast<long long>(filePosition());
    Chunk first;
    if (!readChunk(&first, chunk))
        return false;
    if (first.id == OBJECT_CHUNK || first.id == MATERIAL_CHUNK)
        fprintf(stderr,
                " The first %s of the model, at byte %lld, is lost: it stands in place of a version\n",
                first.id == OBJECT_CHUNK ? "object" : "material", start);
    if (!skipRest(&first))
        return false;
    chunk->bytesRead += first.bytesRead;
    return processNextChunk(model, chunk);
}

/// A line about a file, of which the end is cut if the name is very long.
static int refuse(const char* message, const char* fileName)
{
    char text[255];
    snprintf(text, sizeof text, "%s%s!", message, fileName);
    printf(" %s\n", text);
    return 0;
}

static int failForMemory()
{
    fputs(" No memory for the model\n", stderr);
    return 0;
}

int import3DS(Model3DS* model, const char* fileName, int withNormals)
{
    if (!openChunks(fileName))
        return refuse("Unable to find the file: ", fileName);
    depth = 0;
    noMemory = false;

    // The length of the first chunk is not compared with the file: only bytes that are really missing count.
    const Chunk everything = {.id = 0, .length = UINT32_MAX, .bytesRead = 0};
    Chunk primary;
    const bool whole = readChunk(&primary, &everything);
    if (primary.id != PRIMARY_CHUNK) {
        closeChunks();
        return refuse(" Unable to load PRIMARY chuck from file: ", fileName);
    }
    printf("\n Reading %s...\n", fileName);
    if (whole)
        processNextChunk(model, &primary);
    closeChunks();
    firstOfName.clear();
    numIndexed = 0;
    if (noMemory)
        return failForMemory();
    if (damagedAt >= 0)
        fprintf(stderr, " The model %s is damaged at byte %lld (%s): the rest of it is not used\n", fileName,
                static_cast<long long>(damagedAt), damagedThing);
    const int dropped = dropBadFaces(model);
    if (dropped > 0)
        fprintf(stderr, " %d face(s) with a vertex out of range are left out\n", dropped);

    computeBBox(model);
    if (withNormals == 1) {
        printf(" Computing normals...\n");
        if (!computeNormals(model))
            return failForMemory();
    }
    return 1;
}

void freeModel(Model3DS* model)
{
    for (int i = 0; i < model->numObjects; ++i) {
        const ModelObject& object = model->objects[i];
        free(object.vertices);
        free(object.normals);
        free(object.texCoords);
        free(object.faces);
    }
    free(model->materials);
    free(model->objects);
    free(model->cameras);
    free(model->lights);
    *model = {};
}
