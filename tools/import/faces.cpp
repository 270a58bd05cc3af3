#include "faces.h"

#include "output.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <iterator>

// The least cosine between the normal of a corner and that of its face. A patch whose corner normal points to
// the other side has that one turned over, and shows a black or bright spot there.
constexpr double LEAST_COSINE = 0.05;

// Corners come again in the faces around them, mostly soon: what became of each waits in a place that hangs
// on where the corner is, until another one needs that. All places together are small enough for a near
// cache.
struct CornerText {
    const Instance* instance;
    aiVector3D vertex; // with the next, as the mesh has them
    Vec direction;
    Vec corner, normal; // in the frame of the scene
    unsigned length;    // of the text; 0: none yet
    char text[92];      // longer ones do not wait
};
static thread_local CornerText cornerTexts[1 << 12];

static size_t hashOf(const aiVector3D& vertex, const Vec& direction)
{
    const auto bits = [](auto a, auto b) {
        return uint64_t{std::bit_cast<uint32_t>(static_cast<float>(a))} << 32 |
               std::bit_cast<uint32_t>(static_cast<float>(b));
    };
    const uint64_t hash = bits(vertex.x, vertex.y) * 0x9E3779B97F4A7C15u ^
                          bits(vertex.z, direction.x) * 0xC2B2AE3D27D4EB4Fu ^
                          bits(direction.y, direction.z) * 0x165667B19E3779F9u;
    return (hash * 0x9E3779B97F4A7C15u) >> 40;
}

static CornerText& cornerAt(const Instance& instance, unsigned index, int k)
{
    const aiMesh& mesh = *instance.mesh;
    const aiFace& record = mesh.mFaces[index];
    const unsigned v = record.mIndices[k];
    const aiVector3D& vertex = mesh.mVertices[v];

    // The direction of the normal, in the frame of the mesh; flat triangles can do without.
    Vec direction;
    size_t slot;
    if (const aiVector3D* agreed = instance.smooth != nullptr ? agreedNormal(*instance.smooth, v) : nullptr) {
        direction = widen(*agreed);
        slot = instance.smooth->points[v]; // points near each other have near numbers: no two take one place
    } else {
        if (instance.smooth != nullptr)
            direction = smoothNormal(*instance.smooth, record, index, k);
        else if (mesh.HasNormals())
            direction = widen(mesh.mNormals[v]);
        slot = hashOf(vertex, direction);
    }

    CornerText& corner = cornerTexts[slot & (std::size(cornerTexts) - 1)];
    const auto equal = [](const auto& a, const auto& b) { return a.x == b.x && a.y == b.y && a.z == b.z; };
    if (corner.instance == &instance && equal(corner.vertex, vertex) && equal(corner.direction, direction))
        return corner;
    corner.instance = &instance;
    corner.vertex = vertex;
    corner.direction = direction;
    corner.corner = instance.place * widen(vertex);
    corner.normal = unit(turned(instance.turn, direction));
    if (!isFinite(corner.normal))
        corner.normal = Vec();
    corner.length = 0;
    return corner;
}

bool makeFace(const Instance& instance, unsigned index, Face& face)
{
    const aiFace& record = instance.mesh->mFaces[index];
    if (record.mNumIndices != 3)
        return false;
    for (int k = 0; k < 3; ++k) {
        if (record.mIndices[k] >= instance.mesh->mNumVertices)
            return false;
        CornerText& corner = cornerAt(instance, index, k);
        face.corners[k] = corner.corner;
        face.normals[k] = corner.normal;
        face.texts[k] = &corner;
        for (int before = 0; before < k; ++before)
            if (face.texts[before] == &corner) // it has lost its place
                face.texts[before] = nullptr;
    }
    const Vec across = acrossFace(face.corners);
    if (!(across.SquareLength() > 0.0))
        return false;

    Vec front = unit(across);
    // The normals tell more about the side than the order of the corners, which mirrors and authors turn
    // round.
    if (face.normals[0] * front + face.normals[1] * front + face.normals[2] * front < 0.0)
        front = -front;
    for (int k = 0; k < 3; ++k) {
        Vec& normal = face.normals[k];
        const double cosine = normal * front;
        if (cosine >= LEAST_COSINE)
            continue;
        normal = unit(normal + front * (LEAST_COSINE * 2.0 - cosine));
        face.texts[k] = nullptr;
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

// ---- writing ----

static char* append(char* out, std::string_view text)
{
    return std::copy(text.begin(), text.end(), out);
}

void putFace(const Face& face, unsigned part, bool flat)
{
    constexpr int NORMAL_DECIMALS = 4; // a hundredth of a degree
    Vec weights[3];
    partWeights(part, weights);
    put(flat ? "triangle {" : "patch {");
    for (int k = 0; k < 3; ++k) {
        CornerText* known = part == 1 ? face.texts[k] : nullptr;
        if (known != nullptr && known->length > 0) {
            put(std::string_view(known->text, known->length));
            continue;
        }
        char text[8 * LONGEST_NUMBER];
        char* end = formatVector(append(text, " vertex "), blend(face.corners, weights[k]), pointDecimals);
        if (!flat)
            end =
                formatVector(append(end, " normal "), unit(blend(face.normals, weights[k])), NORMAL_DECIMALS);
        const std::string_view whole(text, end);
        put(whole);
        if (known != nullptr && whole.size() <= sizeof known->text) {
            known->length = static_cast<unsigned>(whole.size());
            append(known->text, whole);
        }
    }
    put(" }\n");
}
