#pragma once

#include "vec.h"

#include <assimp/mesh.h>

#include <vector>

/// The faces of meshes that are smoothed as one, and which of them meet at each point. Corner k of face f is
/// 3 f + k.
struct SmoothGroup {
    double cosine;                  // of the largest angle that is smoothed
    std::vector<aiVector3D> facets; // the normal of each face, in the frame of its mesh; zero without area
    std::vector<float> angles;      // of each corner, between the edges of its face, in radians
    std::vector<unsigned> first;    // of each point its place in `meetings`; one more at the end
    std::vector<unsigned> meetings; // the corners at the points
    std::vector<aiVector3D> smooth; // of each point the normal that all its corners have; zero if they differ
};

/// The part of one mesh in its group.
struct MeshPart {
    const SmoothGroup* group = nullptr; // null: the mesh has its normals from the file
    unsigned firstFacet = 0;
    std::vector<unsigned> points; // of each vertex; vertices in the same place are one point
};

/// Makes one group of `meshes` and fills the part of each. Edges up to `degrees` are smoothed.
void makeGroup(SmoothGroup& group, double degrees, const std::vector<const aiMesh*>& meshes,
               const std::vector<MeshPart*>& parts);

/// The normal that all corners at the vertex have, of any length; null if they differ.
inline const aiVector3D* agreedNormal(const MeshPart& part, unsigned vertex)
{
    const aiVector3D& normal = part.group->smooth[part.points[vertex]];
    return normal.SquareLength() > 0.0f ? &normal : nullptr;
}

/// The normal at corner `k` of face `face`, in the frame of the mesh: the mean of the faces that meet there
/// at no more than the angle of the group, each with the weight of its own angle there. Any length.
Vec smoothNormal(const MeshPart& part, const aiFace& faceRecord, unsigned face, int k);
