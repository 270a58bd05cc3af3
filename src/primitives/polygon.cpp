#include "primitives/polygon.h"

#include <cstdio>
#include <cstdlib>

static void polygonPrint(const Object*)
{
    printf("polygon\n");
}

constexpr auto polygonIntersect = evenIntersect<Polygon, polygonReach>;

constinit const Operations polygonOperations = {polygonIntersect, polygonPrint};

[[gnu::noinline]] bool longOutlineHolds(const Polygon& polygon, double px, double py)
{
    const auto* u = reinterpret_cast<const double*>(&polygon + 1);
    const double* v = u + polygon.edges + 1;
    return polygon.bins != nullptr ? outlineHolds(u, v, *polygon.bins, px, py)
                                   : outlineHolds(u, v, polygon.edges, px, py);
}

Object* makePolygon(const Vec* vertices, int count)
{
    const int edges = edgesOf(count);
    const size_t points = static_cast<size_t>(edges) + 1;
    auto* polygon = newPrimitive<Polygon>(POLYGON, 2 * points * sizeof(double));
    if (polygon == nullptr)
        return nullptr;
    auto* u = reinterpret_cast<double*>(polygon + 1);
    double* v = u + points;
    polygon->edges = edges;
    polygon->normal = faceNormal(vertices);
    polygon->offset = -dot(polygon->normal, vertices[0]);
    chooseAxes(polygon->normal, &polygon->axisU, &polygon->axisV);
    projectOutline(vertices, count, polygon->axisU, polygon->axisV, u, v);
    polygon->bins = makeOutlineBins(u, v, edges);
    boundPoints(&polygon->head, vertices, count, 0.0); // unlike a triangle it stays flat
    return listPrimitive(&polygon->head);
}
