#include "import3ds/scene3ds.h"

#include "core/data.h"
#include "core/settings.h"
#include "core/surface.h"
#include "engine/light.h"
#include "import3ds/3ds.h"
#include "import3ds/settings3ds.h"
#include "primitives/patch.h"
#include "scene/lexer.h"
#include "scene/view.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

static constinit Model3DS g_3DModel{};

static constexpr ModelMaterial GREY = {.name = "", .textureFile = "", .rgb = {204, 204, 204}};

// Focal lengths, and the field of view in degrees that belongs to each.
static constexpr int NUM_LENSES = 13;
static constexpr float lens_table[NUM_LENSES] = {15.0f,  17.0f,  24.0f,  35.0f,  50.0f,  85.0f,  100.0f,
                                                 135.0f, 200.0f, 500.0f, 625.0f, 800.0f, 1000.0f};
static constexpr float fov_table[NUM_LENSES] = {115.0f, 102.0f, 84.0f, 63.0f, 46.0f,  28.0f, 24.0f,
                                                18.0f,  12.0f,  5.0f,  4.0f,  3.125f, 2.5f};

float computeFOV(float lens)
{
    lens = std::clamp(lens, lens_table[0], lens_table[NUM_LENSES - 1]);
    int i = 1;
    while (i < NUM_LENSES - 1 && !(lens_table[i] > lens))
        ++i;
    const float fov = fov_table[i - 1] + (fov_table[i] - fov_table[i - 1]) * (lens - lens_table[i - 1]) /
                                             (lens_table[i] - lens_table[i - 1]);
    return fov / 1.175f;
}

static Vec toVec(Vec3f v)
{
    return {v.x, v.y, v.z};
}

static void setCamera(Vec eye, Vec target, float fov)
{
    myViewPoint.position = eye;
    myViewPoint.lookAt = target;
    myViewPoint.fovX = 0.5 * fov * PI / 180.0;
}

static void setDefaultCamera()
{
    setCamera({20.0, 20.0, 20.0}, {}, 40.0f);
}

static void placeCamera(const Model3DS& model, const char* fileName)
{
    if (model.numCameras == 0) {
        printf(" No camera defined in %s. Using default settings.\n", fileName);
        setDefaultCamera();
        return;
    }
    iCameraIndex = std::clamp(iCameraIndex, 0, model.numCameras - 1);
    const ModelCamera& camera = model.cameras[iCameraIndex];
    setCamera(toVec(camera.position), toVec(camera.target), computeFOV(camera.lens));
}

/// `light` has what all lights of the model have in common.
static void placeLights(const Model3DS& model, Light light, const char* fileName)
{
    if (model.numLights == 0)
        printf(" No light defined in %s.\n", fileName);
    for (int i = 0; i < model.numLights; ++i) {
        const ModelLight& source = model.lights[i];
        light.position = toVec(source.position);
        light.color = {source.color[0], source.color[1], source.color[2]};
        makeLight(light);
    }
}

/// Of a material only the colour counts; all else is a fixed recipe. False without memory.
static bool paint(Object* patch, const ModelMaterial& material)
{
    // Divided as floats: the same 256 values, and g++ 12 drops the rounding of (double)(float)(value / 255.0)
    // where it takes two channels at a time.
    const auto channel = [](std::uint8_t value) { return static_cast<float>(value) / 255.0F; };
    return setSurfaceAttrib(
        patch, {.color = {channel(material.rgb[0]), channel(material.rgb[1]), channel(material.rgb[2])},
                .ambient = 0.3,
                .diffuse = 0.375,
                .reflectionSamples = 0,
                .reflectionRadius = 0.0,
                .refractionIndex = 0.0});
}

/// False without memory.
static bool placeObject(const ModelObject& object, const ModelMaterial& material)
{
    for (int f = 0; f < object.numFaces; ++f) {
        Vec corners[6]; // each vertex with its normal behind it
        for (int i = 0; i < 3; ++i) {
            const int v = object.faces[f].vertexIndex[i];
            corners[2 * i] = toVec(object.vertices[v]);
            corners[2 * i + 1] = toVec(object.normals[v]);
        }
        Object* patch = makePatch(corners);
        if (patch == nullptr || !paint(patch, material))
            return false;
    }
    return true;
}

static bool placeObjects(const Model3DS& model)
{
    for (int i = 0; i < model.numObjects; ++i) {
        const ModelObject& object = model.objects[i];
        const ModelMaterial& material =
            model.numMaterials == 0 ? GREY : model.materials[object.materialIndex];
        if (!placeObject(object, material))
            return false;
    }
    return true;
}

static int assemble(const char* modelName, const Light& light, const char* fileName)
{
    if (import3DS(&g_3DModel, modelName, 1) == 0) {
        printf(" An error occured while loading %s\n", fileName);
        return -1;
    }
    placeCamera(g_3DModel, fileName);
    placeLights(g_3DModel, light, fileName);
    if (!placeObjects(g_3DModel)) {
        fputs(" No memory for the faces of the model\n", stderr);
        return -1;
    }
    return 0;
}

int parse3ds(const char* fileName)
{
    if (strlen(fileName) >= OUTPUT_NAME_SIZE) {
        fprintf(stderr, " The name is too long to name the picture: %s\n", fileName);
        exit(-1);
    }
    strcpy(myDisplay.outputName, fileName); // unless the settings file has another one
    startCamera();
    setDefaultCamera(); // the settings file measures its focus from here

    FILE* stream = fopen(fileName, "r");
    if (stream == nullptr) {
        printf("\n 3ds settings file: %s could no be opened\n", fileName);
        exit(-1);
    }
    sourceName = fileName;
    char modelName[INPUT_NAME_SIZE] = "";
    Light light;
    yy_3DSSettings(stream, modelName, &light);
    fclose(stream);

    const int status = assemble(modelName, light, fileName);
    freeModel(&g_3DModel);
    return status;
}
