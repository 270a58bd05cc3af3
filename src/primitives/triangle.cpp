#include "primitives/triangle.h"

#include "primitives/primitive.h"

#include <cstdio>

static int triangleIntersect(const Object* self, const Ray* ray, Hit* hit)
{
    double t;
    if (!triangleReach(self->triangle, *ray, &t))
        return 0;
    *hit = {.distance = t, .entering = 1, .object = self, .hitNormal = {}};
    return 1;
}

static Vec triangleNormal(const Object* self, Vec, const Hit*)
{
    return self->triangle.normal;
}

static void trianglePrint(const Object*)
{
    printf("triangle\n");
}

Object* makeTriangle(Vec* vertices)
{
    Object* self = newPrimitive(TRIANGLE, triangleIntersect, triangleNormal, trianglePrint);
    if (self == nullptr)
        return nullptr;
    Triangle* triangle = &self->triangle;
    *triangle = {};
    triangle->vertices = vertices;
    triangle->normal = faceNormal(vertices);
    triangle->offset = -dot(triangle->normal, vertices[0]);
    chooseAxes(triangle->normal, &triangle->axisU, &triangle->axisV);
    projectOutline(vertices, 3, triangle->axisU, triangle->axisV, triangle->u, triangle->v);
    boundPoints(self, vertices, 3, EPSILON); // gives a triangle square to an axis some thickness
    return listPrimitive(self);
}
