#pragma once

#include <cstdint>

// A 3DS model in memory, in the terms of the file: 32-bit floats, materials by index, one array for each kind
// of record. It knows nothing of the scene that is made of it.

/// A point or a direction of a model. No axis is swapped or scaled on the way to the scene.
struct Vec3f {
    float x, y, z;
};

struct TexCoord {
    float u, v;
};

struct ModelFace {
    int vertexIndex[3]; // of the object's vertices; all in range once import3DS has returned
};

/// Room of a name, with the zero at its end. A longer one is cut.
constexpr int MODEL_NAME_SIZE = 255;

struct ModelMaterial {
    char name[MODEL_NAME_SIZE];
    char textureFile[MODEL_NAME_SIZE]; // empty without a texture
    std::uint8_t rgb[3];               // diffuse colour
};

/// Some objects hold nothing but a light or a camera; they have neither vertices nor faces.
struct ModelObject {
    int numVertices;
    int numFaces;
    int numTexCoords;
    int materialIndex; // 0 if nothing set it, even in a model without materials
    int hasTexture;    // 1 if that material has a textureFile
    char name[MODEL_NAME_SIZE];
    Vec3f* vertices; // numVertices
    Vec3f* normals;  // numVertices, or null before computeNormals
    TexCoord* texCoords;
    ModelFace* faces;
};

struct ModelCamera {
    Vec3f position;
    Vec3f target;
    float roll;
    float lens; // focal length in millimetres
};

struct ModelLight {
    Vec3f position;
    Vec3f target;
    float hotspot, falloff;
    std::uint8_t off;
    std::uint8_t spot;
    float color[3]; // from a colour of three floats only: a light that has just bytes is black
    float multiplier;
    std::uint8_t rgb[3];
};

/// Starts zeroed. The arrays are on the heap, null until they are read; freeModel gives them back.
struct Model3DS {
    int numLights, numCameras, numObjects, numMaterials;
    ModelMaterial* materials;
    ModelObject* objects;
    ModelCamera* cameras;
    ModelLight* lights;
};
