#include "primitives/patch.h"

#include <cstdio>

void checkPatch(Vec* array)
{
    const Vec side = cross(array[0] - array[2], array[0] - array[4]);
    for (int i = 1; i < 6; i += 2) {
        if (dot(side, array[i]) <= 0.0)
            array[i] = -array[i];
    }
}

void invertMatrix(const Vec* m, Vec* out)
{
    // The cofactors of a row are the cross product of the two others.
    out[0] = cross(m[1], m[2]);
    out[1] = cross(m[2], m[0]);
    out[2] = cross(m[0], m[1]);
    // The rule of Sarrus: the falling products, then the rising ones. The order decides the last bits.
    const double det = m[0].x * m[1].y * m[2].z + m[0].y * m[1].z * m[2].x + m[0].z * m[1].x * m[2].y -
                       m[0].z * m[1].y * m[2].x - m[0].x * m[1].z * m[2].y - m[0].y * m[1].x * m[2].z;
    const double r = 1.0 / det;
    for (int i = 0; i < 3; ++i)
        out[i] = r * out[i];
}

static int patchIntersect(const Object* self, const Ray* ray, Hit* hit)
{
    const Patch& patch = recordOf<Patch>(self);
    double t, u, v;
    if (!patchReach(patch, *ray, &t, &u, &v))
        return 0;
    *hit = {.distance = t, .entering = 1, .object = self, .hitNormal = patchHitNormal(patch, u, v)};
    return 1;
}

static void patchPrint(const Object*)
{
    printf("patch\n");
}

constinit const Operations patchOperations = {patchIntersect, patchPrint};

Object* makePatch(Vec* array)
{
    checkPatch(array);
    auto* patch = newPrimitive<Patch>(PATCH);
    if (patch == nullptr)
        return nullptr;
    const Vec corners[] = {array[0], array[2], array[4]};
    const Vec edge1 = array[2] - array[0];
    const Vec edge2 = array[4] - array[0];
    const Vec face = unit(cross(edge1, edge2));
    patch->corner = corners[0];
    for (int i = 0; i < 3; ++i) {
        const Vec normal = array[2 * i + 1];
        patch->normals[i] = lengthOf(normal) == 0.0 ? face : unit(normal); // models have corners without one
    }
    const Vec matrix[] = {edge1, edge2, face};
    invertMatrix(matrix, patch->inverse);
    boundPoints(&patch->head, corners, 3, EPSILON); // gives a patch square to an axis some thickness
    return listPrimitive(&patch->head);
}
