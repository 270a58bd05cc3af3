#include "normals.h"

#include "parallel.h"

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

// Finds equal places: a table of open addresses, at most half full. A slot is known by its hash, of which its
// address is a part, so that others are passed over, and the table grows, without a look at the places.
struct PointTable {
    struct Slot {
        uint32_t hash = 0;
        unsigned point = 0; // its number plus 1; 0: free
    };
    std::vector<Slot> slots = std::vector<Slot>(1024);
    std::vector<aiVector3D> places; // of each point
};

static uint32_t hashOf(const aiVector3D& v)
{
    uint64_t hash = 0;
    for (const float part : {v.x, v.y, v.z}) // adding 0 makes one of 0 and -0
        hash = (hash ^ std::bit_cast<uint32_t>(part + 0.0f)) * 0x9E3779B97F4A7C15u;
    return static_cast<uint32_t>(hash >> 32);
}

static void growTable(PointTable& table)
{
    const std::vector<PointTable::Slot> old = std::move(table.slots);
    table.slots.assign(old.size() * 2, {});
    const size_t mask = table.slots.size() - 1;
    for (const PointTable::Slot& slot : old) {
        size_t i = slot.hash & mask;
        while (slot.point != 0 && table.slots[i].point != 0)
            i = (i + 1) & mask;
        if (slot.point != 0)
            table.slots[i] = slot;
    }
}

static unsigned pointAt(PointTable& table, const aiVector3D& v, uint32_t hash)
{
    const size_t mask = table.slots.size() - 1;
    size_t i = hash & mask;
    for (; table.slots[i].point != 0; i = (i + 1) & mask)
        if (table.slots[i].hash == hash && table.places[table.slots[i].point - 1] == v)
            return table.slots[i].point - 1;
    table.places.push_back(v);
    const auto count = static_cast<unsigned>(table.places.size());
    table.slots[i] = {hash, count};
    if (count * size_t{2} > table.slots.size())
        growTable(table);
    return count - 1;
}

/// The point of each vertex.
static void findPoints(PointTable& table, const aiMesh& mesh, std::vector<unsigned>& points)
{
    constexpr unsigned AHEAD = 16; // the slots of so many vertices are on their way from memory
    points.resize(mesh.mNumVertices);
    // What is no number equals nothing and would fill the table; its faces count nowhere, so any point does.
    const auto place = [&](unsigned v) {
        return isFinite(widen(mesh.mVertices[v])) ? mesh.mVertices[v] : aiVector3D();
    };
    uint32_t hashes[AHEAD];
    for (unsigned v = 0; v < mesh.mNumVertices + AHEAD; ++v) {
        uint32_t& hash = hashes[v % AHEAD];
        if (v >= AHEAD)
            points[v - AHEAD] = pointAt(table, place(v - AHEAD), hash);
        if (v >= mesh.mNumVertices)
            continue;
        hash = hashOf(place(v));
        __builtin_prefetch(&table.slots[hash & (table.slots.size() - 1)]);
    }
}

// ---- groups ----

/// Where all faces lie within half of the angle of their mean, each two lie within the angle, so that all
/// corners there have one normal. That is most of a smooth mesh, and saves each corner the sum.
static void findSmoothPoints(SmoothGroup& group)
{
    const double half = std::cos(std::acos(std::clamp(group.cosine, -1.0, 1.0)) / 2.0);
    group.smooth.resize(group.first.size() - 1);
    forBlocks(blocksOf(group.smooth.size()), [&](size_t block) {
        for (size_t point = block * BLOCK; point < std::min(group.smooth.size(), (block + 1) * BLOCK);
             ++point) {
            const size_t begin = group.first[point], end = group.first[point + 1];
            aiVector3D sum;
            for (size_t i = begin; i < end; ++i)
                sum += group.facets[group.meetings[i] / 3] * group.angles[group.meetings[i]];
            const double least = half * static_cast<double>(sum.Length());
            bool agree = end > begin && least > 0.0;
            for (size_t i = begin; i < end && agree; ++i)
                agree = static_cast<double>(sum * group.facets[group.meetings[i] / 3]) >= least;
            if (agree)
                group.smooth[point] = sum;
        }
    });
}

/// The normals and angles of a block of the faces of a mesh.
static void measureFacets(SmoothGroup& group, const aiMesh& mesh, size_t firstFacet, size_t block)
{
    for (size_t f = block * BLOCK; f < std::min<size_t>(mesh.mNumFaces, (block + 1) * BLOCK); ++f) {
        aiVector3D& facet = group.facets[firstFacet + f];
        facet = facetOf(mesh, mesh.mFaces[f]);
        for (unsigned k = 0; k < 3 && facet.SquareLength() > 0.0f; ++k)
            group.angles[3 * (firstFacet + f) + k] = angleAt(mesh, mesh.mFaces[f], k);
    }
}

void makeGroup(SmoothGroup& group, double degrees, const std::vector<const aiMesh*>& meshes,
               const std::vector<MeshPart*>& parts)
{
    group.cosine = std::cos(degrees * PI / 180.0) - 1e-4; // an edge of just this angle is smoothed

    size_t faces = 0;
    for (const aiMesh* mesh : meshes)
        faces += mesh->mNumFaces;
    group.facets.resize(faces);
    group.angles.resize(3 * faces);
    PointTable table;
    faces = 0;
    for (size_t m = 0; m < meshes.size(); ++m) {
        const aiMesh& mesh = *meshes[m];
        parts[m]->group = &group;
        parts[m]->firstFacet = static_cast<unsigned>(faces);
        // One thread finds the points while the others take the faces.
        forBlocks(1 + blocksOf(mesh.mNumFaces), [&](size_t block) {
            if (block == 0)
                findPoints(table, mesh, parts[m]->points);
            else
                measureFacets(group, mesh, faces, block - 1);
        });
        faces += mesh.mNumFaces;
    }

    // Count the faces at each point, sum the counts up, and fill each point's part from its end.
    group.first.assign(table.places.size() + 1, 0);
    const auto eachCorner = [&](auto&& act) {
        for (size_t m = 0; m < meshes.size(); ++m)
            for (unsigned f = 0; f < meshes[m]->mNumFaces; ++f) {
                const unsigned facet = parts[m]->firstFacet + f;
                if (group.facets[facet].SquareLength() > 0.0f)
                    for (unsigned k = 0; k < 3; ++k)
                        act(parts[m]->points[meshes[m]->mFaces[f].mIndices[k]], 3 * facet + k);
            }
    };
    eachCorner([&](unsigned point, unsigned) { ++group.first[point]; });
    unsigned sum = 0;
    for (unsigned& first : group.first)
        first = sum += first;
    group.meetings.resize(sum);
    eachCorner([&](unsigned point, unsigned corner) { group.meetings[--group.first[point]] = corner; });
    findSmoothPoints(group);
}

Vec smoothNormal(const MeshPart& part, const aiFace& faceRecord, unsigned face, int k)
{
    const SmoothGroup& group = *part.group;
    if (const aiVector3D* agreed = agreedNormal(part, faceRecord.mIndices[k]); agreed != nullptr)
        return widen(*agreed);
    const unsigned point = part.points[faceRecord.mIndices[k]];
    const Vec own = widen(group.facets[part.firstFacet + face]);
    const size_t begin = group.first[point], end = group.first[point + 1];
    Vec sum;
    for (size_t i = begin; i < end; i += (end - begin) / HUB + 1) {
        const unsigned corner = group.meetings[i];
        const Vec other = widen(group.facets[corner / 3]);
        const double cosine = own * other, angle = static_cast<double>(group.angles[corner]);
        // In many a file some faces run the other way round; they lie against their neighbours all the same.
        if (cosine >= group.cosine)
            sum += other * angle;
        else if (-cosine >= std::max(group.cosine, 0.5))
            sum -= other * angle;
    }
    return sum.SquareLength() > 0.0 ? sum : own;
}
