#include "import3ds/mesh.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

static Vec3f Vector(Vec3f a, Vec3f b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

static Vec3f AddVector(Vec3f a, Vec3f b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

static Vec3f divideVectorByScaler(Vec3f a, float scaler)
{
    return {a.x / scaler, a.y / scaler, a.z / scaler};
}

static Vec3f Cross(Vec3f a, Vec3f b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

/// Zero for a vector without length.
static Vec3f normalize(Vec3f a)
{
    const float length = std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z);
    return length == 0.0f ? Vec3f{} : divideVectorByScaler(a, length);
}

int dropBadFaces(Model3DS* model)
{
    int dropped = 0;
    for (int i = 0; i < model->numObjects; ++i) {
        ModelObject& object = model->objects[i];
        int kept = 0;
        for (int f = 0; f < object.numFaces; ++f) {
            const ModelFace face = object.faces[f];
            const auto& v = face.vertexIndex;
            if (v[0] < object.numVertices && v[1] < object.numVertices && v[2] < object.numVertices)
                object.faces[kept++] = face;
        }
        dropped += object.numFaces - kept;
        object.numFaces = kept;
    }
    return dropped;
}

void computeBBox(const Model3DS* model)
{
    for (int i = 0; i < model->numObjects; ++i) {
        const ModelObject& object = model->objects[i];
        for (int f = 0; f < object.numFaces; ++f) {
            for (const int v : object.faces[f].vertexIndex) {
                const Vec3f& p = object.vertices[v];
                vVMin = {std::min(vVMin.x, p.x), std::min(vVMin.y, p.y), std::min(vVMin.z, p.z)};
                vVMax = {std::max(vVMax.x, p.x), std::max(vVMax.y, p.y), std::max(vVMax.z, p.z)};
            }
        }
    }
}

/// One walk over the faces adds each to its corners, so that every vertex gets its faces in their order,
/// which decides how a sum of floats is rounded. `shared` counts the faces of each vertex and starts at 0.
static void sumFaceNormals(const ModelObject& object, Vec3f* sums, int* shared)
{
    for (int f = 0; f < object.numFaces; ++f) {
        const auto& v = object.faces[f].vertexIndex;
        const Vec3f p0 = object.vertices[v[0]], p1 = object.vertices[v[1]], p2 = object.vertices[v[2]];
        const Vec3f normal = Cross(Vector(p0, p2), Vector(p2, p1));
        for (int corner = 0; corner < 3; ++corner) {
            const bool repeated = (corner > 0 && v[corner] == v[0]) || (corner > 1 && v[corner] == v[1]);
            if (repeated)
                continue; // a face counts once for a vertex, however often it names it
            sums[v[corner]] = AddVector(sums[v[corner]], normal);
            ++shared[v[corner]];
        }
    }
}

static bool computeObjectNormals(ModelObject& object)
{
    const auto count = static_cast<size_t>(object.numVertices) + 1; // so that no size is 0
    object.normals = static_cast<Vec3f*>(calloc(count, sizeof(Vec3f)));
    auto* shared = static_cast<int*>(calloc(count, sizeof(int)));
    const bool ready = object.normals != nullptr && shared != nullptr;
    if (ready) {
        sumFaceNormals(object, object.normals, shared);
        for (int v = 0; v < object.numVertices; ++v)
            if (shared[v] > 0)
                object.normals[v] =
                    normalize(divideVectorByScaler(object.normals[v], -static_cast<float>(shared[v])));
    }
    free(shared);
    return ready;
}

bool computeNormals(Model3DS* model)
{
    for (int i = 0; i < model->numObjects; ++i)
        if (!computeObjectNormals(model->objects[i]))
            return false;
    return true;
}
