#include "primitives/polygon.h"

#include <cstdio>
#include <cstdlib>

static void polygonPrint(const Object*)
{
    printf("polygon\n");
}

constexpr auto polygonIntersect = evenIntersect<Polygon, polygonReach>;
constexpr auto polygonNormal = flatNormal<Polygon>;

constinit const Operations polygonOperations = {polygonIntersect, polygonNormal, polygonPrint};

Object* makePolygon(const Vec* vertices, int count)
{
    auto* polygon = newPrimitive<Polygon>(POLYGON);
    const size_t points = static_cast<size_t>(count) + 1;
    auto* u = static_cast<double*>(calloc(2 * points, sizeof(double)));
    if (polygon == nullptr || u == nullptr) {
        free(polygon);
        free(u);
        return nullptr;
    }
    double* v = u + points;
    polygon->vertexCount = count;
    polygon->normal = faceNormal(vertices);
    polygon->offset = -dot(polygon->normal, vertices[0]);
    chooseAxes(polygon->normal, &polygon->axisU, &polygon->axisV);
    projectOutline(vertices, count, polygon->axisU, polygon->axisV, u, v);
    polygon->u = u;
    polygon->v = v;
    boundPoints(&polygon->head, vertices, count, 0.0); // unlike a triangle it stays flat
    return listPrimitive(&polygon->head);
}
