#include "import3ds/chunk.h"
#include "import3ds/chunks.h"

#include <random>

using namespace std::string_literals;

/// A chunk of the kind `id` in itself, `levels` deep; `head` goes ahead of what is within.
static std::string nest(int levels, std::uint16_t id, const std::string& head, std::string inner)
{
    for (int i = 0; i < levels; ++i)
        inner = chunk(id, head + inner);
    return inner;
}

TEST_F(ModelTest, WhatAFileAddsUpTo)
{
    const std::string m(400, 'm'), a = material("a"), b = material("b"), junk = chunk(0xB000, "\xFF\xFF");
    const std::string map = chunk(0xA200, chunk(0x0030, "xx") + chunk(0xA300, "a.jpg"));
    const std::string point = floats({1, 2, 3}), one = chunk(0x4110, shorts({1}) + point);
    const std::string mark = chunk(0x3D3E, shorts({3, 0})), spot = chunk(0x4610, SPOT.substr(6) + junk);
    const std::string last = object(""); // lost where there is damage ahead of it
    const std::string bMesh = object(mesh(wears("b")));
    const auto named = [](const std::string& name) { return chunk(0xA000, name + '\0'); };
    std::string hundred;
    for (int i = 0; i < 100; ++i)
        hundred += material("m"s + std::to_string(i)) + last;
    const struct {
        const char* name;
        std::string bytes, counts;
        int materialIndex = 0; // of the last object
        std::string warning = "";
    } cases[] = {
        {"data behind a camera", file(object(chunk(0x4700, CAMERA.substr(6) + junk))), "1 0 0 0 1 0"},
        {"material inside the faces", file(a + b + bMesh), "1 3 1 2 0 0", 1},
        {"unknown one", file(a + b + object(mesh(wears("c")))), "1 3 1 2 0 0"},
        {"last match", file(a + b + object(mesh(wears("a") + wears("b") + wears("c")))), "1 3 1 2 0 0", 1},
        {"first of a name", file(a + b + b + bMesh), "1 3 1 3 0 0", 1},
        {"named anew", file(chunk(0xAFFF, named("b") + named("c")) + a + b + bMesh), "1 3 1 3 0 0", 2},
        {"no name", file(a + chunk(0xAFFF) + object(mesh(wears("")))), "1 3 1 2 0 0", 1},
        {"between the lookups", file(a + bMesh + b + a + bMesh), "2 6 2 3 0 0", 1},
        {"material that comes later", file(a + bMesh + b), "1 3 1 2 0 0"},
        {"names cut alike", file(a + material(m + "x") + object(mesh(wears(m + "y")))), "1 3 1 2 0 0", 1},
        {"growing arrays", file(hundred + object(mesh(wears("m63")))), "101 3 1 100 0 0", 63},
        {"unknown", file(junk + material("m", "abc", junk + map) + object(junk + mesh(junk))), "1 3 1 1 0 0"},
        {"vertices again, behind the faces", file(object(mesh() + one + CORNERS)), "1 3 1 0 0 0"},
        {"vertices that are gone", file(object(mesh() + one)), "1 1 0 0 0 0", 0, " 1 face(s)"},
        {"material lost", chunk(0x4D4D, chunk(0x3D3D, a + b + last)), "1 0 0 1 0 0", 0, "l, at byte 12, is"},
        {"object lost", chunk(0x4D4D, chunk(0x3D3D, object(CAMERA) + last)), "1 0 0 0 0 0", 0,
         "first object"},
        {"off", file(object(chunk(0x4600, point + chunk(0x4620) + spot + chunk(0x4620, "x")))),
         "1 0 0 0 0 1"},
        {"nothing", chunk(0x4D4D), "0 0 0 0 0 0"},
        {"bytes behind the end", chunk(0x4D4D, last) + "xyz", "1 0 0 0 0 0"},
        {"deep", chunk(0x4D4D, nest(30, 0x3D3D, mark, last)), "1 0 0 0 0 0"},

        {"too deep", chunk(0x4D4D, nest(31, 0x3D3D, mark, last) + last), "1 0 0 0 0 0", 0, "damaged"},
        {"length below 6", file(shorts({0xB000, 5, 0}) + last), "0 0 0 0 0 0", 0, "byte 32"},
        {"end behind parent", file(object(shorts({0xB000, 7, 0})) + last), "1 0 0 0 0 0", 0, "byte 44"},
        {"no room for a header", file(object("12345") + last), "1 0 0 0 0 0", 0, "byte 44"},
        {"name without end", file(chunk(0x4000, "thing") + last), "1 0 0 0 0 0", 0, "byte 43"},
        {"vertices", file(object(chunk(0x4110, shorts({2}) + point)) + last), "1 0 0 0 0 0", 0, "damaged"},
        {"faces", file(object(chunk(0x4120, shorts({2, 0, 1, 2, 7}))) + last), "1 0 0 0 0 0", 0, "damaged"},
        {"coordinates", file(object(chunk(0x4140, shorts({1, 0}))) + last), "1 0 0 0 0 0", 0, "damaged"},
        {"colour of two bytes", file(material("m", "ab") + last), "0 0 0 1 0 0", 0, "damaged"},
        {"colour of nothing", file(chunk(0xAFFF, chunk(0xA020)) + last), "0 0 0 1 0 0", 0, "damaged"},
        {"short camera", file(object(chunk(0x4700, point)) + last), "1 0 0 0 1 0", 0, "damaged"},
        {"cut where nothing is read", chunk(0x4D4D, last + junk).substr(0, 25), "1 0 0 0 0 0", 0, "byte 25"},
        {"longer than the file", shorts({0x4D4D, 999, 0}) + last, "1 0 0 0 0 0", 0, "byte 18"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_EQ(listen([&] { return read(c.bytes); }), 1);
        EXPECT_EQ(counts(), c.counts + " "s);
        EXPECT_EQ(c.materialIndex,
                  model.numObjects > 0 ? model.objects[model.numObjects - 1].materialIndex : 0);
        EXPECT_NE(warned.find(c.warning), std::string::npos) << warned;
        EXPECT_EQ(warned.empty(), c.warning.empty()) << warned;
    }
}

TEST_F(ModelTest, WhatIsSaidOfTheFile)
{
    const std::string missing = "none/" + std::string(240, 'n'), end = " Computing normals...\n";
    const std::string refusal = "  Unable to load PRIMARY chuck from file: model.3ds!\n";
    const std::string over = " This 3DS file is over version 3 so it may load incorrectly\n";
    const std::string start = "\n Reading model.3ds...\n";
    const std::pair<std::string, std::string> cases[] = {{chunk(0x4D4D, version(3)), start + end},
                                                         {chunk(0x4D4D, version(4)), start + over + end},
                                                         {"", refusal},
                                                         {"M", refusal},
                                                         {"MXMMMMMMMMMM", refusal}};
    for (const auto& c : cases) {
        EXPECT_EQ(listen([&] { return read(c.first); }), c.second != refusal);
        EXPECT_EQ(said, c.second);
    }
    EXPECT_EQ(listen([&] { return read("", missing); }), 0);
    EXPECT_EQ(said, " " + ("Unable to find the file: " + missing + "!").substr(0, 254) + "\n");
}

TEST_F(ModelTest, SurvivesEveryDamage)
{
    const std::string map = chunk(0xA200, chunk(0xA300, "t\0"s)),
                      uv = chunk(0x4140, shorts({1}) + floats({0, 1}));
    const std::string whole =
        file(material("m", "abc", map) + object(CAMERA) + object(LAMP) + object(mesh(wears("m") + uv)));
    const auto expectSound = [&](const std::string& bytes) {
        EXPECT_EQ(read(bytes), bytes.starts_with("MM"));
        size_t size = 0;
        for (int i = 0; i < model.numObjects; ++i) {
            const ModelObject& o = model.objects[i];
            size += static_cast<size_t>(12 * o.numVertices + 8 * (o.numFaces + o.numTexCoords));
            EXPECT_TRUE(o.materialIndex == 0 || o.materialIndex < model.numMaterials);
            for (int f = 0; f < o.numFaces; ++f)
                for (const int v : o.faces[f].vertexIndex)
                    EXPECT_TRUE(v >= 0 && v < o.numVertices);
        }
        EXPECT_LE(size, bytes.size());
    };
    std::vector<std::string> spoils{"\0"s, "\x7F", "\x80", "\xFF"};
    for (const std::uint32_t length : {0u, 5u, 6u, 7u, 0x7FFFFFFFu, 0xFFFFFFFFu})
        spoils.push_back(numbers({length})); // the length of a chunk, in some places
    listen([&] {
        for (size_t place = 0; place < whole.size(); ++place) {
            SCOPED_TRACE(place);
            expectSound(whole.substr(0, place));
            EXPECT_GE(damagedAt, 0);
            for (const std::string& spoilt : spoils)
                expectSound(std::string(whole).replace(place, spoilt.size(), spoilt));
        }
        return 0;
    });
}

TEST_F(ModelTest, FilesOfOtherWriters)
{
    const std::filesystem::path models = VARLO_SOURCE_DIR "/../shared/models";
    if (!std::filesystem::exists(models))
        GTEST_SKIP() << "no models in " << models;
    const struct {
        const char *name, *counts;
        const char* warning = "";
        int result = 1;
    } cases[] = {
        {"assimp_test1", "9 288 108 3 0 0"},
        {"assimp_CameraRollAnim", "2 26 12 0 1 0"},
        {"psionic_jeep1", "7 1948 2032 1 0 0"},
        {"o3dv_wrong", "0 0 0 0 0 0", "", 0},
        {"celestia_toutatis", "1 6518 12796 0 0 0"},
        {"celestia_marsodyssey", "11 3994 6859 11 0 0"},
        {"playerom_logo_v01", "9 220 344 1 0 0", " The first material"},
        {"lib3ds_studio", "8 588 1090 3 2 3"},
        {"assimp_export_two_colours", "2 7 3 2 0 0", " The first material"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(listen([&] { return read("", models / (c.name + ".3ds"s)); }), c.result);
        EXPECT_EQ(counts(), c.counts + " "s);
        EXPECT_EQ(warned.substr(0, warned.find(" of the model, at byte")), c.warning);
    }
}

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
    ASSERT_EQ(counts(), "1 40 300 0 0 0 ");
    for (int v = 0; v < 40; ++v) {
        const Vec3f expected = normalOf(model.objects[0], v), actual = model.objects[0].normals[v];
        EXPECT_EQ(std::memcmp(&actual, &expected, sizeof actual), 0) << v;
    }
}
