#include "import3ds/chunk.h"
#include "import3ds/chunks.h"

using namespace std::string_literals;

TEST_F(ModelTest, WhatAFileAddsUpTo)
{
    const std::string m(400, 'm'), a = material("a"), b = material("b"), junk = chunk(0xB000, "\xFF\xFF");
    const std::string map = chunk(0xA200, chunk(0x0030, "xx") + chunk(0xA300, "a.jpg"));
    const std::string point = floats({1, 2, 3}), one = chunk(0x4110, shorts({1}) + point);
    const std::string spot = chunk(0x4610, SPOT.substr(6) + junk), bMesh = object(mesh(wears("b")));
    const std::string last = object(""), none = "0 0 0 0 0 0", lone = "1 0 0 0 0 0";
    const auto named = [](const std::string& name) { return chunk(0xA000, name + '\0'); };
    std::string hundred, deep = last;
    for (int i = 0; i < 100; ++i)
        hundred += material("m"s + std::to_string(i)) + last;
    for (int i = 0; i < 30; ++i)
        deep = chunk(0x3D3D, chunk(0x3D3E, shorts({3, 0})) + deep);
    const struct {
        const char* name;
        std::string bytes, counts;
        int materialIndex = 0; // of the last object
        std::string warning = "";
    } cases[] = {
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
        {"object lost", chunk(0x4D4D, chunk(0x3D3D, object(CAMERA) + last)), lone, 0, "first object"},
        {"off", file(object(chunk(0x4600, point + chunk(0x4620) + spot + chunk(0x4620, "x")))),
         "1 0 0 0 0 1"},
        {"deep", chunk(0x4D4D, deep), lone},
        {"too deep", chunk(0x4D4D, chunk(0x3D3D, chunk(0x3D3E, "mark") + deep) + last), lone, 0,
         "(depth of chunks)"},
        {"length below 6", file(shorts({0xB000, 5, 0}) + last), none, 0, "byte 32 (chunk length)"},
        {"end behind parent", file(object(shorts({0xB000, 7, 0})) + last), lone, 0, "byte 44 (chunk length)"},
        {"no room for a header", file(object("12345") + last), lone, 0, "byte 44 (chunk header)"},
        {"name without end", file(chunk(0x4000, "thing") + last), lone, 0, "byte 43 (chunk too short)"},
        {"name of a material without end", file(object(mesh(chunk(0x4130, "thing"))) + last), "1 3 1 0 0 0",
         0, "(chunk too short)"},
        {"vertices", file(object(chunk(0x4110, shorts({2}) + point)) + last), lone, 0, "(vertex count)"},
        {"faces", file(object(chunk(0x4120, shorts({2, 0, 1, 2, 7}))) + last), lone, 0, "(face count)"},
        {"colour of two bytes", file(material("m", "ab") + last), "0 0 0 1 0 0", 0, "short"},
        {"short camera", file(object(chunk(0x4700, point)) + last), "1 0 0 0 1 0", 0, "short"},
        {"cut where nothing is read", chunk(0x4D4D, last + junk).substr(0, 25), lone, 0,
         "byte 25 (end of file)"},
        {"longer than the file", shorts({0x4D4D, 999, 0}) + last, lone, 0, "byte 18 (end of file)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        ASSERT_EQ(listen([&] { return read(c.bytes); }), 1);
        EXPECT_EQ(counts(), c.counts + " ");
        EXPECT_EQ(c.materialIndex,
                  model.numObjects > 0 ? model.objects[model.numObjects - 1].materialIndex : 0);
        EXPECT_NE(warned.find(c.warning), std::string::npos) << warned;
        EXPECT_EQ(warned.empty(), c.warning.empty()) << warned;
    }
}

TEST_F(ModelTest, WhatIsSaidOfTheFile)
{
    const std::string missing = "none/" + std::string(240, 'n');
    for (const char* bytes : {"", "M", "MXMMMMMMMMMM"}) {
        EXPECT_EQ(listen([&] { return read(bytes); }), 0);
        EXPECT_EQ(said, "  Unable to load PRIMARY chuck from file: model.3ds!\n");
    }
    EXPECT_EQ(listen([&] { return read("", missing); }), 0);
    EXPECT_EQ(said, " " + ("Unable to find the file: " + missing + "!").substr(0, 254) + "\n");
    listen([&] { return read(file("", 4)); });
    EXPECT_NE(said.find("\n This 3DS file is over version 3 so it may load incorrectly\n"),
              std::string::npos);
}

TEST_F(ModelTest, SurvivesEveryDamage)
{
    const std::string map = chunk(0xA200, chunk(0xA300, "t\0"s));
    const std::string uv = chunk(0x4140, shorts({1}) + floats({0, 1})), worn = object(mesh(wears("m") + uv));
    const std::string whole =
        file(material("m", "abc", map) + object(CAMERA) + object(LAMP) + object(OFF_LAMP) + worn);
    const auto expectSound = [&](const std::string& bytes) {
        EXPECT_EQ(read(bytes), bytes.starts_with("MM"));
        size_t size = 0;
        for (int i = 0; i < model.numObjects; ++i) {
            const ModelObject& o = model.objects[i];
            size += static_cast<size_t>(12 * o.numVertices + 8 * (o.numFaces + o.numTexCoords));
            EXPECT_LT(o.materialIndex, std::max(1, model.numMaterials));
            for (int f = 0; f < o.numFaces; ++f)
                for (const int v : o.faces[f].vertexIndex)
                    EXPECT_LT(static_cast<unsigned>(v), static_cast<unsigned>(o.numVertices));
        }
        EXPECT_LE(size, bytes.size());
    };
    std::vector<std::string> spoils{"\0"s,         "\x7F",        "\x80",        "\xFF",
                                    numbers({5u}), numbers({7u}), numbers({~0u})};
    listen([&] {
        expectSound(whole);
        EXPECT_EQ(damagedAt, -1);
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
