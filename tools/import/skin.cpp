#include "skin.h"

#include "model.h"

#include <vector>

/// The first node that shows the mesh of this index, or null.
static const aiNode* nodeOfMesh(const aiNode* node, unsigned mesh)
{
    for (unsigned i = 0; i < node->mNumMeshes; ++i)
        if (node->mMeshes[i] == mesh)
            return node;
    for (unsigned i = 0; i < node->mNumChildren; ++i)
        if (const aiNode* found = nodeOfMesh(node->mChildren[i], mesh))
            return found;
    return nullptr;
}

static void applySkin(const aiScene& scene, aiMesh& mesh, const aiNode* node)
{
    Matrix fromRoot = placeOf(node);
    fromRoot.Inverse();

    // For each vertex the mean of its bones' matrices, each weighted.
    std::vector<Matrix> sums(mesh.mNumVertices, Matrix(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
    for (unsigned b = 0; b < mesh.mNumBones; ++b) {
        const aiBone& bone = *mesh.mBones[b];
        const aiNode* joint = scene.mRootNode->FindNode(bone.mName);
        if (joint == nullptr)
            return;
        const Matrix m = fromRoot * placeOf(joint) * Matrix(bone.mOffsetMatrix);
        for (unsigned w = 0; w < bone.mNumWeights; ++w)
            if (bone.mWeights[w].mVertexId < mesh.mNumVertices)
                sums[bone.mWeights[w].mVertexId] =
                    sums[bone.mWeights[w].mVertexId] + m * static_cast<double>(bone.mWeights[w].mWeight);
    }
    for (unsigned v = 0; v < mesh.mNumVertices; ++v) {
        const Matrix& sum = sums[v];
        if (!(sum.d4 > 0.0)) // the sum of the weights
            continue;
        const Vec p = sum * widen(mesh.mVertices[v]) / sum.d4;
        mesh.mVertices[v] =
            aiVector3D(static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(p.z));
        if (!mesh.HasNormals())
            continue;
        const Vec n = unit(turned(forNormals(sum), widen(mesh.mNormals[v])));
        mesh.mNormals[v] =
            aiVector3D(static_cast<float>(n.x), static_cast<float>(n.y), static_cast<float>(n.z));
    }
}

void applySkins(const aiScene& scene)
{
    for (unsigned i = 0; i < scene.mNumMeshes; ++i)
        if (scene.mMeshes[i]->HasBones())
            if (const aiNode* node = nodeOfMesh(scene.mRootNode, i))
                applySkin(scene, *scene.mMeshes[i], node);
}
