#include "normals.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>

// A hub with more faces than this is judged by a sample of them: otherwise a fan of n faces takes n * n
// steps.
constexpr size_t HUB = 256;

static aiVector3D facetOf(const aiMesh& mesh, const aiFace& face)
{
    if (face.mNumIndices != 3)
        return {};
    Vec corners[3];
    for (int k = 0; k < 3; ++k) {
        if (face.mIndices[k] >= mesh.mNumVertices)
            return {};
        corners[k] = widen(mesh.mVertices[face.mIndices[k]]);
    }
    const Vec n = unit((corners[1] - corners[0]) ^ (corners[2] - corners[0]));
    if (!isFinite(n))
        return {};
    return {static_cast<float>(n.x), static_cast<float>(n.y), static_cast<float>(n.z)};
}

/// The angle of a face at its corner `k`.
static float angleAt(const aiMesh& mesh, const aiFace& face, unsigned k)
{
    const aiVector3D& here = mesh.mVertices[face.mIndices[k]];
    const aiVector3D a = mesh.mVertices[face.mIndices[(k + 1) % 3]] - here;
    const aiVector3D b = mesh.mVertices[face.mIndices[(k + 2) % 3]] - here;
    const float cosine = a * b / std::sqrt(a.SquareLength() * b.SquareLength());
    return std::acos(std::clamp(cosine, -1.0f, 1.0f));
}

// ---- points ----

// Finds equal places: a table of open addresses, of the numbers of points; 0 is free.
struct PointTable {
    std::vector<unsigned> slots;
    std::vector<const aiVector3D*> places; // of each point
};

static size_t hashOf(const aiVector3D& v)
{
    uint64_t hash = 0;
    for (const float part : {v.x, v.y, v.z}) // adding 0 makes one of 0 and -0
        hash = (hash ^ std::bit_cast<uint32_t>(part + 0.0f)) * 0x9E3779B97F4A7C15u;
    return hash >> 20;
}

static unsigned pointAt(PointTable& table, const aiVector3D& v)
{
    const size_t mask = table.slots.size() - 1;
    for (size_t i = hashOf(v) & mask;; i = (i + 1) & mask) {
        if (table.slots[i] == 0) {
            table.places.push_back(&v);
            table.slots[i] = static_cast<unsigned>(table.places.size());
        } else if (const aiVector3D& p = *table.places[table.slots[i] - 1];
                   !(p.x == v.x && p.y == v.y && p.z == v.z)) {
            continue;
        }
        return table.slots[i] - 1;
    }
}

// ---- groups ----

void makeGroup(SmoothGroup& group, double degrees, const std::vector<const aiMesh*>& meshes,
               const std::vector<MeshPart*>& parts)
{
    group.cosine = std::cos(degrees * PI / 180.0) - 1e-4; // an edge of just this angle is smoothed

    size_t vertices = 0, faces = 0;
    for (const aiMesh* mesh : meshes) {
        vertices += mesh->mNumVertices;
        faces += mesh->mNumFaces;
    }
    PointTable table;
    table.slots.resize(std::bit_ceil(2 * vertices + 1));
    group.facets.reserve(faces);
    for (size_t m = 0; m < meshes.size(); ++m) {
        const aiMesh& mesh = *meshes[m];
        parts[m]->group = &group;
        parts[m]->firstFacet = static_cast<unsigned>(group.facets.size());
        parts[m]->points.reserve(mesh.mNumVertices);
        for (unsigned v = 0; v < mesh.mNumVertices; ++v)
            parts[m]->points.push_back(pointAt(table, mesh.mVertices[v]));
        for (unsigned f = 0; f < mesh.mNumFaces; ++f)
            group.facets.push_back(facetOf(mesh, mesh.mFaces[f]));
    }

    // Count the faces at each point, sum the counts up, and fill each point's part from its end.
    group.first.assign(table.places.size() + 1, 0);
    const auto eachCorner = [&](auto&& act) {
        for (size_t m = 0; m < meshes.size(); ++m)
            for (unsigned f = 0; f < meshes[m]->mNumFaces; ++f) {
                const unsigned facet = parts[m]->firstFacet + f;
                const aiFace& face = meshes[m]->mFaces[f];
                if (group.facets[facet].SquareLength() > 0.0f)
                    for (unsigned k = 0; k < 3; ++k)
                        act(parts[m]->points[face.mIndices[k]], facet, *meshes[m], face, k);
            }
    };
    eachCorner([&](unsigned point, auto&&...) { ++group.first[point]; });
    unsigned sum = 0;
    for (unsigned& first : group.first)
        first = sum += first;
    group.meetings.resize(sum);
    eachCorner([&](unsigned point, unsigned facet, const aiMesh& mesh, const aiFace& face, unsigned k) {
        group.meetings[--group.first[point]] = {facet, angleAt(mesh, face, k)};
    });
}

Vec smoothNormal(const MeshPart& part, const aiFace& faceRecord, unsigned face, int k)
{
    const SmoothGroup& group = *part.group;
    const Vec own = widen(group.facets[part.firstFacet + face]);
    const unsigned point = part.points[faceRecord.mIndices[k]];
    const size_t begin = group.first[point], end = group.first[point + 1];
    Vec sum;
    for (size_t i = begin; i < end; i += (end - begin) / HUB + 1) {
        const Vec other = widen(group.facets[group.meetings[i].facet]);
        const double cosine = own * other, angle = static_cast<double>(group.meetings[i].angle);
        // In many a file some faces run the other way round; they lie against their neighbours all the same.
        if (cosine >= group.cosine)
            sum += other * angle;
        else if (-cosine >= std::max(group.cosine, 0.5))
            sum -= other * angle;
    }
    return sum.SquareLength() > 0.0 ? sum : own;
}
