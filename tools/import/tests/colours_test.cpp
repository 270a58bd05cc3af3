#include "palette.h"
#include "support.h"

#include <assimp/Exporter.hpp>
#include <assimp/Importer.hpp>
#include <assimp/material.h>
#include <assimp/scene.h>
#include <jpeglib.h>
#include <png.h>

#include <cstring>
#include <map>

using ColoursTest = ImportTest;

static constexpr const char* QUAD = "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nvt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\n";

/// Red on the left half, green on the right; its lower quarter is blue.
static std::vector<unsigned char> flag(unsigned size)
{
    std::vector<unsigned char> pixels;
    for (unsigned y = 0; y < size; ++y)
        for (unsigned x = 0; x < size; ++x) {
            const bool low = y >= size * 3 / 4, left = x < size / 2;
            for (const bool on : {!low && left, !low && !left, low})
                pixels.push_back(on ? 255 : 0);
        }
    return pixels;
}

static void writePng(const std::string& path)
{
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = image.height = 64;
    image.format = PNG_FORMAT_RGB;
    ASSERT_NE(png_image_write_to_file(&image, path.c_str(), 0, flag(64).data(), 0, nullptr), 0);
}

static void writeJpeg(const std::string& path)
{
    jpeg_compress_struct state = {};
    jpeg_error_mgr fault = {};
    state.err = jpeg_std_error(&fault);
    jpeg_create_compress(&state);
    FILE* file = fopen(path.c_str(), "wb");
    jpeg_stdio_dest(&state, file);
    state.image_width = state.image_height = 64;
    state.input_components = 3;
    state.in_color_space = JCS_RGB;
    jpeg_set_defaults(&state);
    jpeg_set_quality(&state, 100, TRUE);
    jpeg_start_compress(&state, TRUE);
    std::vector<unsigned char> pixels = flag(64);
    for (JSAMPROW row = pixels.data(); state.next_scanline < 64; row += size_t{3} * 64)
        jpeg_write_scanlines(&state, &row, 1);
    jpeg_finish_compress(&state);
    jpeg_destroy_compress(&state);
    fclose(file);
}

TEST_F(ColoursTest, materials)
{
    const struct {
        const char* name;
        const char* lines;   // of the material
        const char* surface; // starts with
    } cases[] = {
        {"plain", "Kd 0.8 0.4 0.2", "surface { color 0.8 0.4 0.2  ambient 0.25  diffuse 0.75 } ; m"},
        {"dim", "Kd 0.8 0.8 0.8\nKa 0.4 0.4 0.4",
         "surface { color 0.8 0.8 0.8  ambient 0.125  diffuse 0.875 }"},
        {"shiny", "Kd 0.5 0.5 0.5\nKs 0.3 0.2 0.1\nNs 50",
         "surface { color 0.5 0.5 0.5  ambient 0.25  diffuse 0.75  specular 0.3  roughness 50 }"},
        {"glaring", "Kd 0.5 0.5 0.5\nKs 1 1 1\nNs 9000",
         "surface { color 0.5 0.5 0.5  ambient 0.25  diffuse 0.75  specular 0.6  roughness 500 }"},
        {"clear", "Kd 1 1 1\nd 0.25",
         "surface { color 1 1 1  ambient 0.063  diffuse 0.188  refraction 0.75  refraction_index 1.0001 }"},
        {"red glass", "Kd 1 0 0\nd 0.5",
         "surface { color 0.982 0.338 0.338  ambient 0.125  diffuse 0.375  refraction 0.5"},
        {"unseen", "Kd 0.5 0.5 0.5\nd 0", "surface { color 0.5 0.5 0.5  ambient 0.25  diffuse 0.75 }"},
        {"lamp", "Kd 0 0 0\nKe 1 1 0.5", "surface { color 1 1 0.5  ambient 1 }"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        write("m.mtl", std::string("newmtl m\n") + c.lines + "\n");
        write("m.obj", cube("mtllib m.mtl\nusemtl m\n"));
        const Scene found = scene("m.obj");
        ASSERT_EQ(found.surfaces.size(), 2u); // the floor and this
        EXPECT_EQ(found.surfaces[1].substr(0, std::string(c.surface).size()), c.surface);
    }
    // Behind glass without a floor is nothing but the background, which only clear glass lets through.
    write("m.mtl", "newmtl m\nKd 1 0 0\nd 0.5\n");
    EXPECT_EQ(numbers(scene("--no-floor m.obj").surfaces[0], "color"), Vec(1, 1, 1));
}

TEST_F(ColoursTest, surfacesComeInTheOrderOfFirstUse)
{
    write("m.mtl", "newmtl never\nKd 1 1 1\nnewmtl one\nKd 1 0 0\nnewmtl two\nKd 0 1 0\n");
    write("m.obj", "mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 0 1\no a\nusemtl two\nf 1 2 3\no b\nusemtl "
                   "one\nf 1 2 4\n"
                   "o c\nusemtl two\nf 2 3 4\n");
    const Scene found = scene("--geometry m.obj");
    ASSERT_EQ(found.surfaces.size(), 2u);
    EXPECT_NE(found.surfaces[0].find("; two"), std::string::npos);
    EXPECT_NE(found.surfaces[1].find("; one"), std::string::npos);
    EXPECT_EQ(found.patches.size(), 3u);
}

/// How much of the area has a colour, rounded to tenths of a channel.
static std::map<std::string, double> areas(const Scene& scene)
{
    std::map<std::string, double> found;
    for (const Patch& patch : scene.patches) {
        const Vec colour = numbers(scene.surfaces[patch.surface], "color");
        char name[40];
        snprintf(name, sizeof name, "%.1f %.1f %.1f", colour.x, colour.y, colour.z);
        found[name] +=
            ((patch.corners[1] - patch.corners[0]) ^ (patch.corners[2] - patch.corners[0])).Length() / 200.0;
    }
    return found;
}

TEST_F(ColoursTest, pictures)
{
    const std::string model = std::string("mtllib m.mtl\n") + QUAD + "usemtl m\nf 1/1 2/2 3/3 4/4\n";
    std::filesystem::create_directory(folder / "elsewhere");
    writePng(folder / "flag.png");
    writePng(folder / "elsewhere" / "far.png");
    writeJpeg(folder / "flag.jpg");
    write("flag.tga", "no picture");
    write("cut.png", read("flag.png").substr(0, 60));
    write("cut.jpg", read("flag.jpg").substr(0, 40));
    const struct {
        const char* arguments;
        const char* picture;
        bool carried;
        const char* warning;
    } cases[] = {
        {"m.obj", "flag.png", true, ""},
        {"m.obj", "flag.jpg", true, ""},
        {"m.obj", "C:\\Art\\FLAG.PNG", true, ""},
        {"--textures elsewhere m.obj", "far.png", true, ""},
        {"m.obj", "far.png", false, "picture far.png: not found"},
        {"m.obj", "flag.tga", false, "picture flag.tga: neither PNG nor JPEG"},
        {"m.obj", "cut.png", false, "picture cut.png: "},
        {"m.obj", "cut.jpg", false, "picture cut.jpg: "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.picture);
        write("m.obj", model);
        write("m.mtl", std::string("newmtl m\nKd 1 1 1\nmap_Kd ") + c.picture + "\n");
        const Outcome outcome = import(c.arguments);
        EXPECT_EQ(outcome.status, 0);
        EXPECT_NE(outcome.err.find(c.warning), std::string::npos) << outcome.err;
        auto share = areas(parseScene(outcome.out));
        if (!c.carried) {
            EXPECT_NEAR(share["1.0 1.0 1.0"], 1.0, 1e-3);
            continue;
        }
        EXPECT_NEAR(share["1.0 0.0 0.0"], 0.375, 0.03);
        EXPECT_NEAR(share["0.0 1.0 0.0"], 0.375, 0.03);
        EXPECT_NEAR(share["0.0 0.0 1.0"], 0.25, 0.03);
    }

    // In the file itself; few colours; small parts; and tinted, since both formats multiply.
    write("m.mtl", "newmtl m\nKd 0.5 1 1\nmap_Kd flag.png\n");
    const std::string png = read("flag.png");
    Assimp::Importer importer;
    Assimp::Exporter exporter;
    auto* model3d = const_cast<aiScene*>(importer.ReadFile((folder / "m.obj").string(), 0));
    ASSERT_NE(model3d, nullptr);
    auto* embedded = new aiTexture; // the scene owns it
    embedded->mWidth = static_cast<unsigned>(png.size());
    embedded->pcData = new aiTexel[png.size() / sizeof(aiTexel) + 1];
    memcpy(embedded->pcData, png.data(), png.size());
    strcpy(embedded->achFormatHint, "png");
    model3d->mTextures = new aiTexture* [1] { embedded };
    model3d->mNumTextures = 1;
    const aiString name("*0");
    model3d->mMaterials[model3d->mMeshes[0]->mMaterialIndex]->AddProperty(&name,
                                                                          AI_MATKEY_TEXTURE_DIFFUSE(0));
    ASSERT_EQ(exporter.Export(model3d, "glb2", (folder / "m.glb").string()), AI_SUCCESS);
    std::filesystem::remove(folder / "flag.png");
    EXPECT_NEAR(areas(scene("m.glb"))["0.5 0.0 0.0"], 0.375, 0.03);
    EXPECT_EQ(scene("--colours 2 --geometry m.glb").surfaces.size(), 2u);
    EXPECT_GT(scene("--split 0.5 m.glb").patches.size(), scene("m.glb").patches.size() / 40);
    for (const Patch& patch : scene("--split 20 m.glb").patches)
        EXPECT_NEAR((patch.corners[1] - patch.corners[0]).Length(), 12.0, 2.2); // whole
}

TEST_F(ColoursTest, coloursAtVertices)
{
    const char* head =
        "ply\nformat ascii 1.0\nelement vertex 4\nproperty float x\nproperty float y\nproperty float z\n"
        "property uchar red\nproperty uchar green\nproperty uchar blue\nelement face 2\n"
        "property list uchar int vertex_indices\nend_header\n";
    const char* faces = "3 0 1 2\n3 0 2 3\n";
    write("c.ply",
          std::string(head) + "0 0 0 255 0 0\n1 0 0 255 0 0\n1 1 0 255 0 0\n0 1 0 255 0 255\n" + faces);
    auto share = areas(scene("--geometry c.ply"));
    EXPECT_NEAR(share["1.0 0.0 0.0"], 0.5, 1e-3);
    EXPECT_NEAR(share["1.0 0.0 0.3"], 0.5, 1e-3);
    EXPECT_EQ(scene("--geometry --colours 1 c.ply").surfaces.size(), 1u);
    // White at all vertices is what exporters write who have no colours.
    write("w.ply", std::string(head) +
                       "0 0 0 255 255 255\n1 0 0 255 255 255\n1 1 0 255 255 255\n0 1 0 255 255 255\n" +
                       faces);
    EXPECT_EQ(scene("--geometry w.ply").surfaces.size(), 1u);
}

TEST(Palette, coloursBecomeFew)
{
    const struct {
        const char* name;
        std::vector<Rgb> colours;
        size_t count;
        std::vector<Rgb> replaced; // each colour by that of the palette
    } cases[] = {
        {"none", {}, 4, {}},
        {"few stay exact", {0x010203, 0xFF8000, 0x010203}, 2, {0x010203, 0xFF8000, 0x010203}},
        {"the widest side is cut",
         {0x000000, 0x000010, 0xF00000, 0xF00010},
         2,
         {0x000008, 0x000008, 0xF00008, 0xF00008}},
        {"many of one count more", {0, 0, 0, 0x040404}, 1, {0x010101, 0x010101, 0x010101, 0x010101}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        std::vector<Rgb> places = c.colours;
        const std::vector<Colour> palette = quantise(places, c.count);
        EXPECT_LE(palette.size(), c.count);
        for (size_t i = 0; i < places.size(); ++i)
            EXPECT_EQ(packRgb(palette.at(places[i])), c.replaced[i]);
    }
}
