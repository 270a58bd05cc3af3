#include "import3ds/scene3ds.h"

#include "engine/light.h"
#include "import3ds/chunks.h"
#include "import3ds/settings3ds.h"
#include "primitives/patch.h"

using Scene3dsTest = ModelTest;

TEST_F(Scene3dsTest, FieldOfView)
{
    const float cases[][2] = {{-1, 97.87234f}, {16, 92.340426f}, {1e9f, 2.12766f}};
    for (const auto& [lens, fov] : cases)
        EXPECT_FLOAT_EQ(computeFOV(lens), fov) << lens;
}

TEST_F(Scene3dsTest, SettingsAndTheirFaults)
{
    const auto rows =
        rowsOf(R"({ camera_index 7 input_name "b.3ds" input_name "a.3ds.old" }|a.3ds.old 0 0 0 0 7 0 |0
{ attenuation_type "d2" radius 0.5 shadow_type "smooth" light_samples 4 } ?| 2 1 4 0.5 0 0 |0
{ input_name "a.3ds" focal_point <20 20 23> }|a.3ds 0 0 0 0 0 3 |0
settings { }|line: 1 -  Opening bracket '{' expected|255
{~ light_samples 4|line: 2 -  Unkown parameter in 3ds settings structure|255
{ input_name "a.3DS" }| '.3ds' file expected.|255
{ camera_samples 0 }| camera samples must be greater than 0|255
{ attenuation_type "d3" }| invalid light attenuation type specified|255
{ shadow_type "none" }| invalid shadow type specified|255
{ radius -1~|line: 1 -  smooth light radius must be greater than 0|255
{ light_samples 0~|line: 1 -  smooth light samples must be greater than 0|255
{ shadow_type "smooth"~ radius 1 }|line: 2 -  Error in lights specifications - missing parameters|255
{ radius 1 light_samples 4 radius 1 shadow_type "smooth" }|missing parameters|255
{ focal_length 1 focal_point <0 0 0> }| focal lenght OR focal point must be defined|255
{ background # red }| Color declaration not found|255)");
    for (const auto& row : rows) {
        const Outcome outcome = inChild([&] {
            myViewPoint.position = {20, 20, 20};
            char name[256] = "";
            Light light;
            yy_3DSSettings(streamOf(row[0]), name, &light);
            puts(line(name, light.attenuation, light.shadowType, light.samples, light.radius, iCameraIndex,
                      myViewPoint.focalLength)
                     .c_str());
        });
        EXPECT_EQ(std::to_string(outcome.status), row[2]) << row[0];
        EXPECT_NE(outcome.out.find(row[1]), std::string::npos) << outcome.out;
    }
}

struct AssemblyTest : ModelTest {
    /// Makes the scene of a model with these words as its settings.
    int parse(const std::string& bytes, const std::string& words = "")
    {
        folder.write("model.3ds", bytes);
        folder.write("set", "{ input_name \"model.3ds\" " + words + "}");
        return listen([] { return parse3ds("set"); });
    }
};

TEST_F(AssemblyTest, ModelBecomesAScene)
{
    const std::string second = chunk(0x4700, floats({9, 9, 9, 0, 0, 0, 0, 800})) + mesh(wears("b"));
    const std::string things = material("a", "\x33\xFF\x01") + material("b", "bbb") + object(CAMERA + LAMP);
    const char* set =
        R"(camera_index 7 aperture 2 radius 2 light_samples 5 shadow_type "smooth" attenuation_type "d")";
    EXPECT_EQ(parse(file(things + object(second) + object(mesh())), set), 0);
    EXPECT_EQ(said, "\n Reading model.3ds...\n Computing normals...\n");
    EXPECT_EQ(line(myDisplay.outputName, iImageType, iCameraIndex), line("set", TGA, 1));
    EXPECT_EQ(line(myViewPoint.position.x, myViewPoint.aperture), "9 2 ");
    EXPECT_EQ(myViewPoint.fovX, 0.5 * (3.125f / 1.175f) * PI / 180);
    ASSERT_NE(myLightList, nullptr);
    const Light& l = recordOf<Light>(myLightList);
    EXPECT_EQ(line(l.lightType, l.position.z, l.attenuation, l.shadowType, l.samples, l.radius),
              "0 3 1 1 5 2 ");
    EXPECT_EQ(l.color.red, 0.1f);
    ASSERT_EQ(nPrims, 2);
    EXPECT_EQ(myObjectList->next->surface->color.red, static_cast<float>('b' / 255.0));
    const SurfaceAttrib& s = *myObjectList->surface; // of an object that names no material
    expectColor(s.color, {0.2f, 1, static_cast<float>(1 / 255.0)});
    EXPECT_EQ(line(s.ambient, s.diffuse, s.refractionIndex, s.reflectionSamples), "0.3 0.375 0 0 ");
    EXPECT_EQ(line(myObjectList->boundsMax[0], recordOf<Patch>(myObjectList).normals[2].z), "1.001 1 ");
}

TEST_F(AssemblyTest, WithoutCameraLightAndMaterial)
{
    EXPECT_EQ(parse(file(object(mesh())), "output_name \"out\" output_type \"png\""), 0);
    EXPECT_TRUE(
        said.ends_with(" camera defined in set. Using default settings.\n No light defined in set.\n"));
    EXPECT_EQ(line(myDisplay.outputName, myViewPoint.position.y, myViewPoint.focalLength), "out 20 10 ");
    EXPECT_EQ(myViewPoint.fovX, 0.3490658503988659);
    ASSERT_EQ(nPrims, 1);
    EXPECT_EQ(myObjectList->surface->color.green, 0.8f); // grey
}

TEST_F(AssemblyTest, Failures)
{
    EXPECT_EQ(parse("no model"), -1);
    EXPECT_TRUE(said.ends_with(" An error occured while loading set\n"));
    EXPECT_EQ(parse(file(object(CAMERA)), "camera_index -4"), 0); // becomes the first
    EXPECT_EQ(myViewPoint.lookAt.x, 4);
    const std::string none = "\n 3ds settings file: none/x could no be opened\n", longest(255, 'x');
    EXPECT_EQ(inChild([] { parse3ds("none/x"); }).out, none);
    EXPECT_EQ(inChild([&] { parse3ds(longest.c_str()); }).err, "");
    const Outcome tooLong = inChild([&] { parse3ds((longest + "x").c_str()); });
    EXPECT_EQ(tooLong.status, 255);
    EXPECT_NE(tooLong.err.find("too long"), std::string::npos);
}
