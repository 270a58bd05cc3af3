#include "primitives/outline.h"

Vec faceNormal(const Vec* vertices)
{
    return unit(cross(vertices[0] - vertices[1], vertices[2] - vertices[1]));
}

void chooseAxes(Vec normal, int* axisU, int* axisV)
{
    const double x = std::abs(normal.x);
    const double y = std::abs(normal.y);
    const double z = std::abs(normal.z);
    const bool dropX = !(x < y) && !(x < z);
    const bool dropY = !dropX && !(y < x) && !(y < z);
    *axisU = dropX ? 1 : 0;
    *axisV = dropX || dropY ? 2 : 1;
}

void projectOutline(const Vec* vertices, int count, int axisU, int axisV, double* u, double* v)
{
    for (int i = 0; i <= edgesOf(count); ++i) {
        u[i] = coordinate(vertices[i < count ? i : 0], axisU);
        v[i] = coordinate(vertices[i < count ? i : 0], axisV);
    }
}
