#include "faces.h"

#include "output.h"

#include <utility>

// The least cosine between the normal of a corner and that of its face. A patch whose corner normal points to
// the other side has that one turned over, and shows a black or bright spot there.
constexpr double LEAST_COSINE = 0.05;

static Vec cornerNormal(const Instance& instance, unsigned index, int k)
{
    const aiMesh& mesh = *instance.mesh;
    const aiFace& record = mesh.mFaces[index];
    const Vec normal = instance.smooth != nullptr ? smoothNormal(*instance.smooth, record, index, k)
                                                  : widen(mesh.mNormals[record.mIndices[k]]);
    return unit(turned(instance.turn, normal));
}

bool makeFace(const Instance& instance, unsigned index, Face& face)
{
    if (faceCorners(instance, instance.mesh->mFaces[index], face.corners) != FACE_GOOD)
        return false;
    Vec front = unit((face.corners[1] - face.corners[0]) ^ (face.corners[2] - face.corners[0]));
    double side = 0.0;
    for (int k = 0; k < 3; ++k) {
        face.normals[k] = cornerNormal(instance, index, k);
        if (!isFinite(face.normals[k]))
            face.normals[k] = Vec();
        side += face.normals[k] * front;
    }
    // The normals tell more about the side than the order of the corners, which mirrors and authors turn
    // round.
    if (side < 0.0)
        front = -front;
    for (Vec& normal : face.normals) {
        const double cosine = normal * front;
        if (cosine < LEAST_COSINE)
            normal = unit(normal + front * (LEAST_COSINE * 2.0 - cosine));
    }
    return true;
}

void partWeights(unsigned part, Vec weights[3])
{
    if (part == 1) {
        weights[0] = Vec(1, 0, 0);
        weights[1] = Vec(0, 1, 0);
        weights[2] = Vec(0, 0, 1);
        return;
    }
    partWeights(part / 4, weights);
    const Vec middles[3] = {(weights[1] + weights[2]) * 0.5, (weights[2] + weights[0]) * 0.5,
                            (weights[0] + weights[1]) * 0.5};
    for (unsigned k = 0; k < 3; ++k)
        if (part % 4 == 3) // the one in the middle
            weights[k] = middles[k];
        else if (k != part % 4)
            weights[k] = middles[3 - k - part % 4];
}

/// Normals need not be exact: these steps are a hundredth of a degree.
static Vec rounded(const Vec& v)
{
    return {std::round(v.x * 1e4) * 1e-4, std::round(v.y * 1e4) * 1e-4, std::round(v.z * 1e4) * 1e-4};
}

void putFace(const Face& face, unsigned part, bool flat)
{
    Vec weights[3];
    partWeights(part, weights);
    put(flat ? "triangle {" : "patch {");
    for (const Vec& w : weights) {
        putAll(" vertex ", blend(face.corners, w));
        if (!flat)
            putAll(" normal ", rounded(unit(blend(face.normals, w))));
    }
    put(" }\n");
}
