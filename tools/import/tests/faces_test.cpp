#include "support.h"

#include <assimp/Exporter.hpp>
#include <assimp/Importer.hpp>
#include <assimp/scene.h>

#include <cstring>
#include <set>

using FacesTest = ImportTest;

/// A ball on a box, with normals, in two colours without highlights, as every format of the test can hold
/// them.
static std::string body()
{
    std::ostringstream text;
    text << "mtllib body.mtl\n";
    constexpr int ROUND = 24, RINGS = 12;
    for (int j = 0; j <= RINGS; ++j)
        for (int i = 0; i < ROUND; ++i) {
            const double t = PI * j / RINGS, p = 2 * PI * i / ROUND;
            const Vec n(std::sin(t) * std::cos(p), std::cos(t), std::sin(t) * std::sin(p));
            text << "v " << n.x << " " << n.y + 1.5 << " " << n.z << "\nvn " << n.x << " " << n.y << " "
                 << n.z << "\n";
        }
    text << "usemtl fur\n";
    for (int j = 0; j < RINGS; ++j)
        for (int i = 0; i < ROUND; ++i) {
            const int a = j * ROUND + i + 1, b = j * ROUND + (i + 1) % ROUND + 1;
            const std::vector<int> face = j == 0           ? std::vector{a, b + ROUND, a + ROUND}
                                          : j == RINGS - 1 ? std::vector{a, b, a + ROUND}
                                                           : std::vector{a, b, b + ROUND, a + ROUND};
            text << "f";
            for (const int corner : face)
                text << " " << corner << "//" << corner;
            text << "\n";
        }
    text << "usemtl wood\n";
    int corner = ROUND * (RINGS + 1);
    for (unsigned side = 0; side < 6; ++side) {
        Vec n, a, b;
        n[side / 2] = side % 2 == 1 ? 1 : -1;
        a[(side / 2 + 1) % 3] = 1;
        b[(side / 2 + 2) % 3] = 1;
        for (const Vec& v : {n - a - b, n + a - b, n + a + b, n - a + b})
            text << "v " << v.x * 1.2 << " " << v.y * 0.4 << " " << v.z * 0.9 << "\nvn " << n.x << " " << n.y
                 << " " << n.z << "\n";
        text << "f";
        for (int k = 0; k < 4; ++k, ++corner)
            text << " " << corner + 1 << "//" << corner + 1;
        text << "\n";
    }
    return text.str();
}

/// The mean difference of two pictures, in steps of 255.
static double difference(const std::string& a, const std::string& b)
{
    double sum = 0.0;
    for (size_t i = 0; i < a.size(); ++i)
        sum += std::abs(static_cast<unsigned char>(a[i]) - static_cast<unsigned char>(b[i]));
    return sum / static_cast<double>(a.size());
}

TEST_F(FacesTest, eachFormatGivesTheSamePicture)
{
    write("body.obj", body());
    write("body.mtl", "newmtl fur\nKd 0.6 0.4 0.3\nnewmtl wood\nKd 0.3 0.4 0.7\n");
    std::string plain = body();
    for (const char* line : {"mtllib body.mtl\n", "usemtl fur\n", "usemtl wood\n"})
        plain.erase(plain.find(line), strlen(line));
    write("plain.obj", plain);
    const struct {
        const char* id;
        const char* file;
        const char* like; // the OBJ file with the colours that this format can hold
    } cases[] = {{"glb2", "body.glb", "body.obj"},    {"gltf2", "body.gltf", "body.obj"},
                 {"collada", "body.dae", "body.obj"}, {"stl", "text.stl", "plain.obj"},
                 {"stlb", "body.stl", "plain.obj"},   {"ply", "text.ply", "plain.obj"},
                 {"plyb", "body.ply", "plain.obj"}};
    Assimp::Importer importer;
    ASSERT_NE(importer.ReadFile((folder / "body.obj").string(), 0), nullptr);
    const size_t count = scene("body.obj").patches.size();
    EXPECT_EQ(count, 24u * 22 + 12);
    for (const auto& c : cases) {
        SCOPED_TRACE(c.file);
        Assimp::Exporter exporter;
        ASSERT_EQ(exporter.Export(importer.GetScene(), c.id, (folder / c.file).string()), AI_SUCCESS);
        EXPECT_EQ(scene(c.file).patches.size(), count);
        EXPECT_LT(difference(picture(c.file, 80, 60), picture(c.like, 80, 60)), 1.0);
    }
}

TEST_F(FacesTest, normalsFollowTheFileOrTheAngle)
{
    write("cube.obj", cube(""));
    // A roof of 40 degrees, without normals; and with one that points behind its face, one of zero, one of
    // nan.
    const std::string roof = "v 0 0 0\nv 0 0 2\nv 2 0.7279404685 2\nv 2 0.7279404685 0\nv -2 0.7279404685 2\n"
                             "v -2 0.7279404685 0\n";
    write("roof.obj", roof + "f 1 2 3 4\nf 2 1 6 5\n");
    write("turned.obj", roof + "f 1 2 3 4\nf 1 2 5 6\n"); // the second face the other way round
    write("bad.obj", roof + "vn 0 1 0\nvn 1 -0.9 0\nvn 0 0 0\nvn nan 0 0\nf 1//1 2//2 3//3 4//4\n");
    const struct {
        const char* arguments;
        size_t directions; // different normals in all
    } cases[] = {{"cube.obj", 6},
                 {"cube.obj --smooth 91", 8},
                 {"roof.obj", 2},
                 {"roof.obj --smooth 40", 3},
                 {"turned.obj --smooth 40", 3},
                 {"bad.obj --smooth 30", 1}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments);
        std::set<std::vector<long>> directions;
        for (const Patch& patch : scene(c.arguments).patches)
            for (Vec n : patch.normals) {
                n = n.z < 0 && std::string(c.arguments).find("turned") == 0 ? -n : n;
                directions.insert(
                    {std::lround(n.x * 1000), std::lround(n.y * 1000), std::lround(n.z * 1000)});
            }
        EXPECT_EQ(directions.size(), c.directions);
    }
    // A patch turns each normal by itself to the side that the order of its corners gives: all lie on one
    // side.
    for (const char* model : {"bad.obj", "turned.obj", "cube.obj --smooth 91"})
        for (const Patch& patch : scene(model).patches) {
            const Vec front = (patch.corners[1] - patch.corners[0]) ^ (patch.corners[2] - patch.corners[0]);
            const double side = front * patch.normals[0];
            for (const Vec& normal : patch.normals) {
                EXPECT_GT(front * normal * side, 0.0) << model;
                EXPECT_GE(std::fabs(unit(front) * normal), 0.049) << model;
            }
        }
    EXPECT_EQ(import("--flat cube.obj").out.find("patch"), std::string::npos);
    EXPECT_EQ(scene("--flat cube.obj").patches.size(), 12u);
}

TEST_F(FacesTest, whatIsNoTriangleIsCounted)
{
    write("bad.ply",
          "ply\nformat ascii 1.0\nelement vertex 6\nproperty float x\nproperty float y\nproperty float z\n"
          "element face 5\nproperty list uchar int vertex_indices\nend_header\n"
          "0 0 0\n1 0 0\n0 1 0\nnan 0 0\n2 0 0\n0 inf 0\n"
          "3 0 1 2\n3 0 1 3\n3 0 1 4\n3 0 0 2\n3 0 1 5\n");
    const Outcome outcome = import("bad.ply");
    EXPECT_EQ(parseScene(outcome.out).patches.size(), 1u);
    EXPECT_NE(outcome.err.find("bad.ply: 2 faces without area left out"), std::string::npos) << outcome.err;
    EXPECT_NE(outcome.err.find("bad.ply: 2 faces with a corner"), std::string::npos) << outcome.err;

    write("thin.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\np 1\nl 1 2\nf 1 2 3\n");
    const Outcome thin = import("thin.obj");
    EXPECT_EQ(parseScene(thin.out).patches.size(), 1u);
    EXPECT_NE(thin.err.find("2 points and lines left out"), std::string::npos) << thin.err;
}

TEST_F(FacesTest, manyComeInTheirOrder)
{
    // A strip in three objects of one material, more faces than a thread takes at a time; every 100th has no
    // area.
    constexpr int FACES = 6000;
    std::ostringstream text;
    for (int i = 0; i < FACES + 2; ++i)
        text << "v " << i << " " << i % 2 << " 0\n";
    for (int i = 1; i <= FACES; ++i) {
        if (i % 1900 == 1)
            text << "o part" << i << "\n";
        text << "f " << i << " " << i + 1 << " " << (i % 100 == 0 ? i : i + 2) << "\n";
    }
    write("strip.obj", text.str());
    const Scene strip = scene("--keep-size --flat strip.obj");
    EXPECT_EQ(strip.surfaces.size(), 2u); // with the floor's
    ASSERT_EQ(strip.patches.size(), static_cast<size_t>(FACES - FACES / 100));
    int i = 1;
    for (const auto& patch : strip.patches) {
        i += i % 100 == 0 ? 1 : 0;
        ASSERT_EQ(patch.corners[0].x, i++ - 1);
    }
}

/// The box of all corners.
static std::pair<Vec, Vec> boxOf(const Scene& scene)
{
    Vec low(INFINITY, INFINITY, INFINITY), high = -low;
    for (const Patch& patch : scene.patches)
        for (const Vec& corner : patch.corners) {
            low = least(low, corner);
            high = most(high, corner);
        }
    return {low, high};
}

TEST_F(FacesTest, sizeAndPlace)
{
    // 1 wide, 2 high in y, 4 deep in z, away from the origin; tiny and huge in the same shape.
    const auto brick = [](double unit) {
        std::ostringstream text;
        for (int i = 0; i < 8; ++i)
            text << "v " << (5 + (i >> 2)) * unit << " " << (7 + 2 * (i >> 1 & 1)) * unit << " "
                 << (9 + 4 * (i & 1)) * unit << "\n";
        return text.str() + cube("").substr(cube("").find('f'));
    };
    write("brick.obj", brick(1));
    write("tiny.obj", brick(1e-6));
    write("huge.obj", brick(1e9));
    const struct {
        const char* arguments;
        Vec low, high;
    } cases[] = {
        {"brick.obj", {-1.25, -5, 0}, {1.25, 5, 5}},
        {"tiny.obj", {-1.25, -5, 0}, {1.25, 5, 5}},
        {"huge.obj", {-1.25, -5, 0}, {1.25, 5, 5}},
        {"--size 2 brick.obj", {-0.25, -1, 0}, {0.25, 1, 1}},
        {"--up z brick.obj", {-1.25, -2.5, 0}, {1.25, 2.5, 10}},
        {"--up x --size 4 brick.obj", {-1, -2, 0}, {1, 2, 1}},
        {"--at 1 2 3 brick.obj", {-0.25, -3, 3}, {2.25, 7, 8}},
        {"--turn 0 0 90 brick.obj", {-5, -1.25, 0}, {5, 1.25, 5}},
        {"--turn 90 0 0 --size 4 brick.obj", {-0.5, -1, 0}, {0.5, 1, 4}},
        {"--keep-size brick.obj", {5, -13, 7}, {6, -9, 9}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments);
        const auto [low, high] = boxOf(scene(c.arguments));
        EXPECT_LT((low - c.low).Length(), 1e-4) << low.x << " " << low.y << " " << low.z;
        EXPECT_LT((high - c.high).Length(), 1e-4) << high.x << " " << high.y << " " << high.z;
    }
    EXPECT_NE(import("--keep-size tiny.obj").err.find("try --size"), std::string::npos);
    EXPECT_EQ(import("--keep-size brick.obj").err.find("try --size"), std::string::npos);
}
