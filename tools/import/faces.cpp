#include "faces.h"

#include "output.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <iterator>

// The least cosine between the normal of a corner and that of its face. A patch whose corner normal points to
// the other side has that one turned over, and shows a black or bright spot there.
constexpr double LEAST_COSINE = 0.05;

static Vec cornerNormal(const Instance& instance, unsigned index, int k)
{
    const aiMesh& mesh = *instance.mesh;
    const aiFace& record = mesh.mFaces[index];
    Vec normal; // for flat triangles none is needed
    if (instance.smooth != nullptr)
        normal = smoothNormal(*instance.smooth, record, index, k);
    else if (mesh.HasNormals())
        normal = widen(mesh.mNormals[record.mIndices[k]]);
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

// ---- writing ----

// Corners come again in the faces around them, mostly soon: the text of each waits in a place that hangs on
// where the corner is, until another one needs that. All places together are small enough for a near cache.
struct CornerText {
    Vec corner, normal;
    unsigned length = 0; // 0: none
    char text[92];       // longer ones do not wait
};
static CornerText cornerTexts[1 << 12];

static size_t slotOf(const Vec& corner)
{
    uint64_t hash = 0;
    for (const double part : {corner.x, corner.y, corner.z})
        hash = (hash ^ std::bit_cast<uint64_t>(part)) * 0x9E3779B97F4A7C15u;
    return hash >> 32 & (std::size(cornerTexts) - 1);
}

static char* append(char* out, std::string_view text)
{
    return std::copy(text.begin(), text.end(), out);
}

static void putCorner(const Vec& corner, const Vec& normal, bool flat)
{
    constexpr int NORMAL_DECIMALS = 4; // a hundredth of a degree
    const auto equal = [](const Vec& a, const Vec& b) { return a.x == b.x && a.y == b.y && a.z == b.z; };
    CornerText& slot = cornerTexts[slotOf(corner)];
    if (slot.length != 0 && equal(slot.corner, corner) && equal(slot.normal, normal))
        return put(std::string_view(slot.text, slot.length));

    char text[8 * LONGEST_NUMBER];
    char* end = formatVector(append(text, " vertex "), corner, pointDecimals);
    if (!flat)
        end = formatVector(append(end, " normal "), normal, NORMAL_DECIMALS);
    const std::string_view whole(text, end);
    put(whole);
    slot.length = 0;
    if (whole.size() > sizeof slot.text)
        return;
    slot.corner = corner;
    slot.normal = normal;
    slot.length = static_cast<unsigned>(whole.size());
    append(slot.text, whole);
}

void putFace(const Face& face, unsigned part, bool flat)
{
    Vec weights[3];
    partWeights(part, weights);
    put(flat ? "triangle {" : "patch {");
    for (const Vec& w : weights)
        putCorner(blend(face.corners, w), flat ? Vec() : unit(blend(face.normals, w)), flat);
    put(" }\n");
}
