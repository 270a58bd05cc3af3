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

// Finds equal places: a table of open addresses, at most half full, of the numbers of points; 0 is free.
struct PointTable {
    std::vector<unsigned> slots = std::vector<unsigned>(1024);
    std::vector<const aiVector3D*> places; // of each point
};

static size_t hashOf(const aiVector3D& v)
{
    uint64_t hash = 0;
    for (const float part : {v.x, v.y, v.z}) // adding 0 makes one of 0 and -0
        hash = (hash ^ std::bit_cast<uint32_t>(part + 0.0f)) * 0x9E3779B97F4A7C15u;
    return hash >> 20;
}

/// The slot of the point at `v`, or the free one that it would take.
static unsigned& slotAt(PointTable& table, const aiVector3D& v)
{
    const size_t mask = table.slots.size() - 1;
    for (size_t i = hashOf(v) & mask;; i = (i + 1) & mask)
        if (table.slots[i] == 0 || *table.places[table.slots[i] - 1] == v)
            return table.slots[i];
}

static unsigned pointAt(PointTable& table, const aiVector3D& given)
{
    // What is no number equals nothing and would fill the table; its faces count nowhere, so any point does.
    static const aiVector3D origin;
    const aiVector3D& v = isFinite(widen(given)) ? given : origin;
    unsigned& slot = slotAt(table, v);
    if (slot != 0)
        return slot - 1;
    table.places.push_back(&v);
    const auto count = static_cast<unsigned>(table.places.size());
    slot = count;
    if (count * size_t{2} > table.slots.size()) {
        table.slots.assign(table.slots.size() * 2, 0);
        for (unsigned i = 0; i < count; ++i)
            slotAt(table, *table.places[i]) = i + 1;
    }
    return count - 1;
}

// ---- groups ----

/// Where all faces lie within half of the angle of their mean, each two lie within the angle, so that all
/// corners there have one normal. That is most of a smooth mesh, and saves each corner the sum.
static void findSmoothPoints(SmoothGroup& group)
{
    const double half = std::cos(std::acos(std::clamp(group.cosine, -1.0, 1.0)) / 2.0);
    group.smooth.resize(group.first.size() - 1);
    for (size_t point = 0; point < group.smooth.size(); ++point) {
        const size_t begin = group.first[point], end = group.first[point + 1];
        aiVector3D sum;
        for (size_t i = begin; i < end; ++i)
            sum += group.facets[group.meetings[i].facet] * group.meetings[i].angle;
        const double least = half * static_cast<double>(sum.Length());
        bool agree = end > begin && least > 0.0;
        for (size_t i = begin; i < end && agree; ++i)
            agree = static_cast<double>(sum * group.facets[group.meetings[i].facet]) >= least;
        if (agree)
            group.smooth[point] = sum;
    }
}

void makeGroup(SmoothGroup& group, double degrees, const std::vector<const aiMesh*>& meshes,
               const std::vector<MeshPart*>& parts)
{
    group.cosine = std::cos(degrees * PI / 180.0) - 1e-4; // an edge of just this angle is smoothed

    PointTable table;
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
    findSmoothPoints(group);
}

Vec smoothNormal(const MeshPart& part, const aiFace& faceRecord, unsigned face, int k)
{
    const SmoothGroup& group = *part.group;
    const unsigned point = part.points[faceRecord.mIndices[k]];
    if (const aiVector3D& smooth = group.smooth[point]; smooth.SquareLength() > 0.0f)
        return widen(smooth);
    const Vec own = widen(group.facets[part.firstFacet + face]);
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
