#include "import3ds/chunk.h"
#include "import3ds/chunks.h"

#include <cstring>

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
    const std::string one = chunk(0x4110, shorts({1}) + floats({9, 9, 9})),
                      mark = chunk(0x3D3E, shorts({3, 0}));
    const std::string point = floats({1, 2, 3}), spot = chunk(0x4610, floats({1, 2, 3, 4, 5}) + junk);
    const std::string last = object(""); // lost where there is damage ahead of it
    std::string hundred;
    for (int i = 0; i < 100; ++i)
        hundred += material("m"s + std::to_string(i)) + last;
    const struct {
        const char* name;
        std::string bytes, counts;
        int materialIndex = 0; // of the last object
        std::string warning = "";
    } cases[] = {
        {"only a camera, and data behind it", file(object(chunk(0x4700, CAMERA.substr(6) + junk))),
         "1/0/0/0/1/0"},
        {"material inside the faces", file(a + b + object(mesh(wears("b")))), "1/3/1/2/0/0", 1},
        {"unknown material", file(a + b + object(mesh(wears("c")))), "1/3/1/2/0/0"},
        {"last match", file(a + b + object(mesh(wears("a") + wears("b") + wears("c")))), "1/3/1/2/0/0", 1},
        {"first of a name", file(a + b + b + object(mesh(wears("b")))), "1/3/1/3/0/0", 1},
        {"material that comes later", file(a + object(mesh(wears("b"))) + b), "1/3/1/2/0/0"},
        {"names cut alike", file(a + material(m + "x") + object(mesh(wears(m + "y")))), "1/3/1/2/0/0", 1},
        {"growing arrays", file(hundred + object(mesh(wears("m63")))), "101/3/1/100/0/0", 63},
        {"unknown chunks", file(junk + material("m", "abc", junk + map) + object(junk + mesh(junk)) + junk),
         "1/3/1/1/0/0"},
        {"vertices again, behind the faces", file(object(mesh() + one + CORNERS)), "1/3/1/0/0/0"},
        {"vertices that are gone", file(object(mesh() + one)), "1/1/0/0/0/0", 0, " 1 face(s)"},
        {"first is a material", chunk(0x4D4D, chunk(0x3D3D, a + b + last)), "1/0/0/1/0/0", 0,
         "first material of the model, at byte 12, is lost"},
        {"first is an object", chunk(0x4D4D, chunk(0x3D3D, object(CAMERA) + last)), "1/0/0/0/0/0", 0,
         "first object"},
        {"off", file(object(chunk(0x4600, point + chunk(0x4620) + spot + chunk(0x4620, "x")))),
         "1/0/0/0/0/1"},
        {"nothing", chunk(0x4D4D), "0/0/0/0/0/0"},
        {"bytes behind the end", chunk(0x4D4D, last) + "xyz", "1/0/0/0/0/0"},
        {"deep", chunk(0x4D4D, nest(30, 0x3D3D, mark, last)), "1/0/0/0/0/0"},

        {"too deep", chunk(0x4D4D, nest(31, 0x3D3D, mark, last) + last), "1/0/0/0/0/0", 0, "damaged"},
        {"length below 6", file(shorts({0xB000, 5, 0}) + last), "0/0/0/0/0/0", 0, "damaged at byte 32"},
        {"end behind the parent's", file(object(shorts({0xB000, 7, 0})) + last), "1/0/0/0/0/0", 0,
         "damaged at byte 44"},
        {"no room for a header", file(object("12345") + last), "1/0/0/0/0/0", 0, "damaged at byte 44"},
        {"name without end", file(chunk(0x4000, "thing") + last), "1/0/0/0/0/0", 0, "damaged at byte 43"},
        {"vertices", file(object(chunk(0x4110, shorts({2}) + point)) + last), "1/0/0/0/0/0", 0, "damaged"},
        {"faces", file(object(chunk(0x4120, shorts({2, 0, 1, 2, 7}))) + last), "1/0/0/0/0/0", 0, "damaged"},
        {"coordinates", file(object(chunk(0x4140, shorts({1, 0}))) + last), "1/0/0/0/0/0", 0, "damaged"},
        {"colour of two bytes", file(material("m", "ab") + last), "0/0/0/1/0/0", 0, "damaged"},
        {"colour of nothing", file(chunk(0xAFFF, chunk(0xA020)) + last), "0/0/0/1/0/0", 0, "damaged"},
        {"short camera", file(object(chunk(0x4700, point)) + last), "1/0/0/0/1/0", 0, "damaged"},
        {"cut where nothing is read", chunk(0x4D4D, last + junk).substr(0, 25), "1/0/0/0/0/0", 0, "byte 25"},
        {"longer than the file", shorts({0x4D4D, 999, 0}) + last, "1/0/0/0/0/0", 0, "damaged at byte 18"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_EQ(listen([&] { return read(c.bytes); }), 1);
        EXPECT_EQ(counts(), c.counts);
        EXPECT_EQ(model.numObjects > 0 ? model.objects[model.numObjects - 1].materialIndex : 0,
                  c.materialIndex);
        EXPECT_NE(warned.find(c.warning), std::string::npos) << warned;
        EXPECT_EQ(warned.empty(), c.warning.empty()) << warned;
    }
}

TEST_F(ModelTest, FieldsOfTheRecords)
{
    const std::string gamma = chunk(0x0012, "xyz"), bytes = chunk(0x0011, "rgb"),
                      tint = floats({.25f, .5f, 1});
    read(file(material("a", floats({1}) + gamma, chunk(0xA200, chunk(0xA300, text("a.jpg")))) +
              chunk(0xAFFF, chunk(0xA020, bytes + gamma)) +
              object(CAMERA + chunk(0x4600, floats({1, 2, 3}) + chunk(0x4610, floats({4, 5, 6, 7, 8})) +
                                                bytes + chunk(0x0010, tint))) +
              object(mesh(wears("a")))));
    ASSERT_EQ(counts(), "2/3/1/2/1/1");
    EXPECT_STREQ(model.objects[1].name, "thing");
    EXPECT_EQ(model.objects[1].hasTexture, 1);
    EXPECT_EQ(memcmp(model.materials[0].rgb, floats({1}).data(), 3), 0); // no other form is told apart
    EXPECT_EQ(memcmp(model.materials[1].rgb, "rgb", 3), 0);
    EXPECT_EQ(memcmp(model.cameras, CAMERA.data() + 6, sizeof(ModelCamera)), 0);
    const ModelLight& light = model.lights[0];
    EXPECT_EQ(memcmp(&light, floats({1, 2, 3, 4, 5, 6, 7, 8}).data(), 32), 0); // position to falloff
    EXPECT_EQ(memcmp(light.color, tint.data(), 12), 0);
    EXPECT_EQ(light.spot, 1);
}

TEST_F(ModelTest, WhatIsSaidOfTheFile)
{
    const std::string missing = "none/" + std::string(240, 'n');
    const std::string refusal = "  Unable to load PRIMARY chuck from file: " + name + "!\n";
    const std::string start = "\n Reading " + name + "...\n", end = " Computing normals...\n";
    const std::string over = " This 3DS file is over version 3 so it may load incorrectly\n";
    const struct {
        std::string bytes, said;
    } cases[] = {{chunk(0x4D4D, version(3)), start + end},
                 {chunk(0x4D4D, version(4)), start + over + end},
                 {"", refusal},
                 {"M", refusal},
                 {"MXMMMMMMMMMM", refusal}};
    for (const auto& c : cases) {
        EXPECT_EQ(listen([&] { return read(c.bytes); }), c.said != refusal);
        EXPECT_EQ(said, c.said);
    }
    EXPECT_EQ(listen([&] { return readFile(missing); }), 0);
    EXPECT_EQ(said, " "s + ("Unable to find the file: " + missing + "!").substr(0, 254) + "\n");
}

TEST_F(ModelTest, SurvivesEveryDamage)
{
    const std::string lamp =
        floats({1, 2, 3}) + chunk(0x0010, floats({1, 1, 1})) + chunk(0x4610, floats({1, 2, 3, 4, 5}));
    const std::string map = chunk(0xA200, chunk(0xA300, text("t"))),
                      uv = chunk(0x4140, shorts({1}) + floats({0, 1}));
    const std::string whole =
        file(material("m", "abc", map) + object(CAMERA) + object(chunk(0x4600, lamp + chunk(0x4620, "x"))) +
             object(mesh(wears("m") + uv)));
    const auto expectSound = [&](const std::string& bytes) {
        EXPECT_EQ(read(bytes), bytes.substr(0, 2) == "MM");
        size_t size = 0;
        for (int i = 0; i < model.numObjects; ++i) {
            const ModelObject& o = model.objects[i];
            size += 12 * static_cast<size_t>(o.numVertices) +
                    8 * static_cast<size_t>(o.numFaces + o.numTexCoords);
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
            for (const std::string& spoilt : spoils) {
                const size_t behind = std::min(place + spoilt.size(), whole.size());
                expectSound(whole.substr(0, place) + spoilt + whole.substr(behind));
            }
        }
        return 0;
    });
}

TEST_F(ModelTest, FilesOfOtherWriters)
{
    const std::filesystem::path folder = VARLO_SOURCE_DIR "/../shared/models";
    if (!std::filesystem::exists(folder))
        GTEST_SKIP() << "no models in " << folder;
    const struct {
        const char *name, *counts;
        const char* warning = "";
        int result = 1;
    } cases[] = {
        {"assimp_test1", "9/288/108/3/0/0"},
        {"assimp_CameraRollAnim", "2/26/12/0/1/0"},
        {"assimp_cubes_with_alpha", "5/130/60/5/0/0"},
        {"assimp_cube_with_diffuse_texture", "1/32/12/1/0/0"},
        {"tsiantas_cart_wheel", "13/720/1400/2/0/0"},
        {"psionic_jeep1", "7/1948/2032/1/0/0"},
        {"o3dv_cube_with_materials", "1/8/12/5/0/0"},
        {"o3dv_cube_hierarchy", "1/8/12/3/0/0"},
        {"o3dv_wrong", "0/0/0/0/0/0", "", 0},
        {"celestia_bacchus", "1/283/508/0/0/0"},
        {"celestia_toutatis", "1/6518/12796/0/0/0"},
        {"celestia_marsodyssey", "11/3994/6859/11/0/0"},
        {"playerom_asteroid01", "1/200/320/1/0/0"},
        {"playerom_cube", "1/8/12/0/0/0", " The first material"},
        {"playerom_logo_v01", "9/220/344/1/0/0", " The first material"},
        {"lib3ds_studio", "8/588/1090/3/2/3"},
        {"assimp_export_two_colours", "2/7/3/2/0/0", " The first material"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(listen([&] { return readFile(folder / (c.name + ".3ds"s)); }), c.result);
        EXPECT_EQ(counts(), c.counts);
        EXPECT_EQ(warned.substr(0, warned.find(" of the model, at byte")), c.warning);
    }
}
