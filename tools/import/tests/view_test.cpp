#include "support.h"

#include <algorithm>

using ViewTest = ImportTest;

/// Where the camera of the scene shows a point: across and up, from -1 to 1, and its depth.
static Vec projected(const Scene& scene, const Vec& point)
{
    const Vec position = vectors(scene.camera, "position").at(0);
    const Vec ahead = unit(vectors(scene.camera, "look_at").at(0) - position);
    const Vec right = unit(ahead ^ vectors(scene.camera, "up").at(0));
    const double fov = numbers(scene.camera, "fov").x * PI / 360.0,
                 down = fov / numbers(scene.camera, "ratio").x;
    const Vec to = point - position;
    const double depth = to * ahead;
    return {to * right / (depth * std::tan(fov)), to * (right ^ ahead) / (depth * std::tan(down)), depth};
}

TEST_F(ViewTest, theBoxFillsThePicture)
{
    const auto brick = [](double x, double y, double z) {
        std::ostringstream text;
        for (int i = 0; i < 8; ++i)
            text << "v " << (i >> 2) * x << " " << (i >> 1 & 1) * y << " " << (i & 1) * z << "\n";
        return text.str() + cube("").substr(cube("").find('f'));
    };
    write("cube.obj", brick(1, 1, 1));
    write("needle.obj", brick(0.01, 5, 0.01));
    write("plate.obj", brick(4, 0.01, 3));
    write("wall.obj", brick(7, 1, 0));
    for (const char* model : {"cube", "needle", "plate", "wall"})
        for (const char* view : {"corner", "front", "back", "left", "right", "top"}) {
            SCOPED_TRACE(std::string(model) + " " + view);
            const Scene found = scene(std::string("--view ") + view + " " + model + ".obj");
            Vec low(9, 9, 9), high = -low;
            for (const Patch& patch : found.patches)
                for (const Vec& corner : patch.corners) {
                    const Vec at = projected(found, corner);
                    EXPECT_GT(at.z, 0.0);
                    low = least(low, at);
                    high = most(high, at);
                }
            EXPECT_GT(std::min(low.x, low.y), -0.96);
            EXPECT_LT(std::max(high.x, high.y), 0.96);
            const double filled = std::max(high.x - low.x, high.y - low.y) / 2.0;
            EXPECT_GT(filled, 0.5);
            EXPECT_LT(filled, 0.95);
        }
    // From the front right above: the right side, the front and the top of the cube are seen, in true shape.
    const Vec eye = vectors(scene("cube.obj").camera, "position").at(0);
    EXPECT_GT(eye.x, 5.0);
    EXPECT_LT(eye.y, -5.0);
    EXPECT_GT(eye.z, 10.0);
}

/// The sum of the colours of all lights.
static Vec sumOfLights(const Scene& scene)
{
    Vec sum;
    for (const std::string& light : scene.lights)
        sum += numbers(light, "color");
    return sum;
}

TEST_F(ViewTest, aWhiteModelIsLitAndNotTooBright)
{
    write("white.mtl", "newmtl white\nKd 1 1 1\n");
    write("cube.obj", cube("mtllib white.mtl\nusemtl white\n"));
    const Scene found = scene("cube.obj");
    EXPECT_EQ(found.lights.size(), 3u);
    EXPECT_NEAR(sumOfLights(found).x, 1.0, 1e-6);
    const Vec surface(numbers(found.surfaces[1], "ambient").x, numbers(found.surfaces[1], "diffuse").x, 0);
    EXPECT_LE(surface.x + surface.y, 1.0);
    // The middle of the picture is the cube, the corner the floor: both lit, neither burnt out.
    const std::string pixels = picture("cube.obj", 81, 61);
    for (const size_t at : {size_t{0}, pixels.size() / 2}) {
        EXPECT_GT(static_cast<unsigned char>(pixels[at]), 100);
        EXPECT_LT(static_cast<unsigned char>(pixels[at]), 250);
    }
    const auto brightest = *std::max_element(pixels.begin(), pixels.end(), [](char a, char b) {
        return static_cast<unsigned char>(a) < static_cast<unsigned char>(b);
    });
    EXPECT_LT(static_cast<unsigned char>(brightest), 255);
}

static std::string rig()
{
    // One triangle <0 0 0>, <1 0 0>, <0 1 0> on one bone that stands 2 above the origin; its own node is
    // elsewhere.
    return R"({"asset":{"version":"2.0"},"extensionsUsed":["KHR_lights_punctual"],"extensions":{"KHR_lights_punctual":{"lights":[
{"type":"point","name":"lamp","color":[1,0.5,0.25],"intensity":400},
{"type":"directional","name":"sun","intensity":1},
{"type":"spot","name":"spot","intensity":100,"spot":{"innerConeAngle":0.2,"outerConeAngle":0.4}}]}},
"scene":0,"scenes":[{"nodes":[0,1,2,3,4,5,6]}],"nodes":[{"mesh":0,"skin":0,"translation":[50,0,0]},{"translation":[0,2,0]},
{"name":"lampnode","translation":[0,2,10],"extensions":{"KHR_lights_punctual":{"light":0}}},
{"name":"sunnode","extensions":{"KHR_lights_punctual":{"light":1}}},
{"name":"spotnode","translation":[0,2,5],"extensions":{"KHR_lights_punctual":{"light":2}}},
{"name":"eye","translation":[0.5,2.5,4],"camera":0},{"name":"blind","translation":[0,0,-4],"camera":1}],
"cameras":[{"type":"perspective","perspective":{"yfov":0.5,"aspectRatio":2,"znear":0.1}},
{"type":"perspective","perspective":{"yfov":0.5,"znear":0.1}}],
"skins":[{"joints":[1],"inverseBindMatrices":3}],"materials":[{"pbrMetallicRoughness":{"baseColorFactor":[0.5,0.5,0.5,1],"metallicFactor":1,
"roughnessFactor":0.2}}],"meshes":[{"primitives":[{"material":0,"attributes":{"POSITION":0,"JOINTS_0":1,"WEIGHTS_0":2}}]}],
"buffers":[{"byteLength":160,"uri":"data:application/octet-stream;base64,AAAAAAAAAAAAAAAAAACAPwAAAAAAAAAAAAAAAAAAgD8AAAAAAAAAAAAAAAAAAAAAAACAPwAAAAAAAAAAAAAAAAAAgD8AAAAAAAAAAAAAAAAAAIA/AAAAAAAAAAAAAAAAAACAPwAAAAAAAAAAAAAAAAAAAAAAAIA/AAAAAAAAAAAAAAAAAAAAAAAAgD8AAAAAAAAAAAAAAAAAAAAAAACAPw=="}],
"bufferViews":[{"buffer":0,"byteLength":36},{"buffer":0,"byteOffset":36,"byteLength":12},{"buffer":0,"byteOffset":48,"byteLength":48},
{"buffer":0,"byteOffset":96,"byteLength":64}],
"accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3","min":[0,0,0],"max":[1,1,0]},
{"bufferView":1,"componentType":5121,"count":3,"type":"VEC4"},{"bufferView":2,"componentType":5126,"count":3,"type":"VEC4"},
{"bufferView":3,"componentType":5126,"count":1,"type":"MAT4"}]})";
}

TEST_F(ViewTest, camerasLightsAndBonesOfTheFile)
{
    write("rig.gltf", rig());
    const Scene found = scene("--keep-size rig.gltf");
    ASSERT_EQ(found.patches.size(), 1u);
    EXPECT_LT((found.patches[0].corners[1] - Vec(1, 0, 2)).Length(), 1e-5); // the bone's place, z up
    EXPECT_LT((vectors(found.camera, "position").at(0) - Vec(0.5, -4, 2.5)).Length(), 1e-5);
    EXPECT_GT(projected(found, found.patches[0].corners[2]).z, 0.0);
    EXPECT_NEAR(numbers(found.camera, "fov").x, 2 * std::atan(2 * std::tan(0.25)) * 180 / PI, 1e-3);

    // By the square of the distance the sun gives 1, the spot 4, the lamp 4 on the nearest corner;
    // together 1.
    ASSERT_EQ(found.lights.size(), 3u);
    EXPECT_NE(found.lights[0].find("\"d2\""), std::string::npos);
    EXPECT_NE(found.lights[1].find("\"none\""), std::string::npos);
    EXPECT_GT(vectors(found.lights[1], "position").at(0).Length(), 500.0);
    EXPECT_NEAR(numbers(found.lights[2], "max_angle").x, 0.8 * 180 / PI, 1e-3);
    const Vec corner(0, 0, 2);
    double sum = 0.0;
    for (const std::string& light : found.lights) {
        const double away = (vectors(light, "position").at(0) - corner).Length();
        sum += numbers(light, "color").x / (light.find("\"d2\"") != std::string::npos ? away * away : 1.0);
    }
    EXPECT_NEAR(sum, 1.0, 0.02);
    EXPECT_NEAR(numbers(found.lights[0], "color").y / numbers(found.lights[0], "color").x, 0.5, 1e-4);

    // Linear 0.5 is 0.735 on a screen. Smooth metal mirrors, and is a little blurred.
    EXPECT_NEAR(numbers(found.surfaces[1], "color").x, 0.735, 1e-3);
    EXPECT_GT(numbers(found.surfaces[1], "reflection").x, 0.3);
    EXPECT_NE(found.surfaces[1].find("\"fuzzy\""), std::string::npos);

    EXPECT_NE(import("--camera 1 rig.gltf").err.find("does not see the model"), std::string::npos);
    EXPECT_NE(import("--camera 7 rig.gltf").err.find("no camera 7"), std::string::npos);
    EXPECT_EQ(vectors(scene("--view top rig.gltf").camera, "up").at(0), Vec(0, 1, 0));
}

TEST_F(ViewTest, aLampOverTheMiddleOfAFaceIsNotTooBright)
{
    // A COLLADA scene would do as well; the lamp of the rig, brought close to one large triangle without
    // bones.
    std::string text = rig();
    const auto replace = [&](const std::string& from, const std::string& to) {
        text.replace(text.find(from), from.size(), to);
    };
    replace("\"mesh\":0,\"skin\":0,\"translation\":[50,0,0]",
            "\"mesh\":0,\"scale\":[100,100,100],\"translation\":[-30,-30,0]");
    replace("\"translation\":[0,2,10]", "\"translation\":[0,2,1]");
    write("lamp.gltf", text);
    const Scene found = scene("--keep-size --view front lamp.gltf");
    const std::string& lamp = found.lights.at(0);
    EXPECT_LT(numbers(lamp, "color").x, 1.01); // the triangle is at the distance 1
    EXPECT_GT(numbers(lamp, "color").x, 0.7);
}
