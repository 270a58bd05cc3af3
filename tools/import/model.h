#pragma once

#include "normals.h"
#include "options.h"

#include <assimp/Importer.hpp>
#include <assimp/scene.h>

#include <deque>
#include <string>
#include <vector>

/// A mesh in a place: one for each time that a node shows a mesh.
struct Instance {
    const aiMesh* mesh;
    unsigned index;         // of the mesh
    const MeshPart* smooth; // null: the mesh has its own normals, or none are asked for
    const aiNode* node;
    Matrix place; // from the mesh to the scene
    Matrix turn;  // for its normals
};

/// The conventions of a file's format that its scene does not tell.
struct Format {
    Axis up = AXIS_Y;           // the library turns most formats that know an up so that it is y
    bool hasNormals = true;     // false: what the library gives for them is made up from the faces
    bool whiteIsNone = false;   // a white material without a name is none
    bool linearColours = false; // colours are light, not what a screen is told
    double coneFactor = 1.0;    // the angles of spots, as the library has them, times this are those across
    bool nodeCameras =
        false; // the library gives a camera the place of its node twice, and a product for its angle
    bool lenses = false; // cameras have a lens in millimetres where the library says angle, and stand upright
    bool tintedPictures = false; // pictures are multiplied with the material's colour
    bool tintedColours = false;  // so are colours at the vertices
};

enum FaceKind {
    FACE_GOOD,
    FACE_DEGENERATE, // no area
    FACE_BROKEN,     // a coordinate that is no finite number, or a corner that is not there
    FACE_THIN,       // a point or a line
    FACE_KINDS
};

struct Model {
    Assimp::Importer importer; // owns the scene
    const aiScene* scene = nullptr;
    Format format;
    Axis up = AXIS_Y;                // of the file
    std::vector<Instance> instances; // by material, in the order of the first use of each
    std::vector<MeshPart> parts;     // of each mesh
    std::deque<SmoothGroup> groups;  // that the parts point to
    size_t triangles = 0;
    size_t dropped[FACE_KINDS] = {}; // faces that were left out, by their kind
    double scale = 1.0;              // from lengths of the file to those of the scene
    Matrix placement;                // from the file's frame to the scene's
    Vec low, high;                   // the model's box, in the scene
    double meanEdge = 0.0;           // of the triangles, in the scene
};

/// The product of two edges, which is square to the face; zero if the face has no area or a corner is no
/// finite number.
inline Vec acrossFace(const Vec corners[3])
{
    const Vec a = corners[1] - corners[0], b = corners[2] - corners[0], across = a ^ b;
    const double longest = std::max(std::max(a.SquareLength(), b.SquareLength()), (b - a).SquareLength());
    // Less high than a billionth of its length: two corners are one, or all are in a line.
    return across.Length() > 1e-9 * longest ? across : Vec();
}

/// Tells what a face is, and gives the corners of a good one in the frame of the scene.
FaceKind faceCorners(const Instance& instance, const aiFace& face, Vec corners[3]);

/// From the frame of the node to that of the file.
Matrix placeOf(const aiNode* node);

/// Reads the file and places it in the scene. False, with a message, if there is nothing to show.
bool readModel(const Options& options, Model& model);
