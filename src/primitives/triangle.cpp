#include "primitives/triangle.h"

#include <cstdio>

static void trianglePrint(const Object*)
{
    printf("triangle\n");
}

constexpr auto triangleIntersect = evenIntersect<Triangle, triangleReach>;

constinit const Operations triangleOperations = {triangleIntersect, trianglePrint};

Object* makeTriangle(const Vec* vertices)
{
    auto* triangle = newPrimitive<Triangle>(TRIANGLE);
    if (triangle == nullptr)
        return nullptr;
    triangle->normal = faceNormal(vertices);
    triangle->offset = -dot(triangle->normal, vertices[0]);
    chooseAxes(triangle->normal, &triangle->axisU, &triangle->axisV);
    // The first v takes the place of the last u.
    projectOutline(vertices, 3, triangle->axisU, triangle->axisV, triangle->outline, triangle->outline + 4);
    boundPoints(&triangle->head, vertices, 3, EPSILON); // gives a triangle square to an axis some thickness
    return listPrimitive(&triangle->head);
}
