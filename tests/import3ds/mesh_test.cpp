#include "import3ds/chunks.h"

#include <cmath>
#include <ctime>
#include <random>

/// Faces with any corners, out of any points.
static std::string noiseMesh(std::uint16_t count, std::uint16_t faces)
{
    std::minstd_rand random;
    std::string points, corners = shorts({faces});
    for (int i = 0; i < 3 * count; ++i)
        points += floats({static_cast<float>(random()) / 4e7f - 25.0f});
    for (int i = 0; i < 4 * faces; ++i)
        corners += shorts({static_cast<std::uint16_t>(random() % count)});
    return file(object(chunk(0x4110, shorts({count}) + points) + chunk(0x4120, corners)));
}

/// The normal of vertex `v` by its definition, with a search of all faces.
static Vec3f normalOf(const ModelObject& owner, int v)
{
    Vec3f n{};
    float shared = 0;
    for (int f = 0; f < owner.numFaces; ++f) {
        const auto& at = owner.faces[f].vertexIndex;
        if (at[0] != v && at[1] != v && at[2] != v)
            continue;
        const Vec3f p0 = owner.vertices[at[0]], p1 = owner.vertices[at[1]], p2 = owner.vertices[at[2]];
        const Vec3f a = {p0.x - p2.x, p0.y - p2.y, p0.z - p2.z}, b = {p2.x - p1.x, p2.y - p1.y, p2.z - p1.z};
        n = {n.x + (a.y * b.z - a.z * b.y), n.y + (a.z * b.x - a.x * b.z), n.z + (a.x * b.y - a.y * b.x)};
        shared += 1;
    }
    n = {n.x / -shared, n.y / -shared, n.z / -shared};
    const float length = std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
    return {n.x / length, n.y / length, n.z / length};
}

TEST_F(ModelTest, NormalsAreSumsInTheOrderOfFaces)
{
    read(noiseMesh(40, 300)); // so few vertices that some faces name one twice or thrice
    ASSERT_EQ(counts(), "1/40/300/0/0/0");
    for (int v = 0; v < 40; ++v) {
        const Vec3f expected = normalOf(model.objects[0], v), actual = model.objects[0].normals[v];
        EXPECT_EQ(floats({actual.x, actual.y, actual.z}), floats({expected.x, expected.y, expected.z})) << v;
    }
}

TEST_F(ModelTest, NormalOfTheCornerOfACube)
{
    const float sixth = 1 / std::sqrt(6.0f);
    const struct {
        std::string faces;
        float x, y, z; // of vertex 0
    } cases[] = {
        {shorts({1, 0, 1, 2, 0}), 0, 0, 1},
        {shorts({4, 0, 4, 1, 0, 0, 2, 4, 0, 0, 1, 3, 0, 0, 3, 2, 0}), -sixth, -sixth, -2 * sixth},
        {shorts({2, 0, 1, 2, 0, 0, 2, 1, 0}), 0, 0, 0}, // cancelled
        {shorts({1, 1, 2, 3, 0}), 0, 0, 0},             // without a face
    };
    const std::string points = shorts({5}) + floats({0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 1, 1, 0});
    for (const auto& c : cases) {
        read(file(object(chunk(0x4110, points) + chunk(0x4120, c.faces))));
        ASSERT_EQ(model.numObjects, 1);
        const Vec3f& normal = model.objects[0].normals[0];
        EXPECT_TRUE(normal.x == c.x && normal.y == c.y && normal.z == c.z)
            << normal.x << normal.y << normal.z;
    }
}

TEST_F(ModelTest, TheLargestObjectTakesAMoment)
{
    const std::string bytes = noiseMesh(65535, 65535);
    const clock_t start = clock();
    read(bytes);
    EXPECT_LT(clock() - start, 2 * CLOCKS_PER_SEC); // a search of all faces for each vertex takes longer
    EXPECT_EQ(counts(), "1/65535/65535/0/0/0");
}
