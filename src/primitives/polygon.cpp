#include "primitives/polygon.h"

#include "primitives/primitive.h"

#include <cstdio>
#include <cstdlib>

static int polygonIntersect(const Object* self, const Ray* ray, Hit* hit)
{
    double t;
    if (!polygonReach(self->polygon, *ray, &t))
        return 0;
    *hit = {.distance = t, .entering = 1, .object = self, .hitNormal = {}};
    return 1;
}

static Vec polygonNormal(const Object* self, Vec, const Hit*)
{
    return self->polygon.normal;
}

static void polygonPrint(const Object*)
{
    printf("polygon\n");
}

Object* makePolygon(Vec* vertices, int count)
{
    Object* self = newPrimitive(POLYGON, polygonIntersect, polygonNormal, polygonPrint);
    const size_t points = static_cast<size_t>(count) + 1;
    auto* u = static_cast<double*>(calloc(2 * points, sizeof(double)));
    if (self == nullptr || u == nullptr) {
        free(self);
        free(u);
        return nullptr;
    }
    double* v = u + points;

    Polygon* polygon = &self->polygon;
    *polygon = {};
    polygon->vertices = vertices;
    polygon->vertexCount = count;
    polygon->normal = faceNormal(vertices);
    polygon->offset = -dot(polygon->normal, vertices[0]);
    chooseAxes(polygon->normal, &polygon->axisU, &polygon->axisV);
    projectOutline(vertices, count, polygon->axisU, polygon->axisV, u, v);
    polygon->u = u;
    polygon->v = v;
    boundPoints(self, vertices, count, 0.0); // unlike a triangle it stays flat
    return listPrimitive(self);
}
