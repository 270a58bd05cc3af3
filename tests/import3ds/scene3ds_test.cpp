#include "import3ds/scene3ds.h"

#include "core/data.h"
#include "import3ds/chunks.h"
#include "import3ds/settings3ds.h"
#include "scene/lexer.h"

#include <cstring>

TEST(Lens, FieldOfView)
{
    const struct {
        float lens, fov;
    } cases[] = {{-1, 97.87234f}, {15, 97.87234f},  {16, 92.340426f}, {17, 86.808511f},
                 {50, 39.14894f}, {800, 2.659574f}, {1000, 2.12766f}, {1e9f, 2.12766f}};
    for (const auto& c : cases)
        EXPECT_FLOAT_EQ(computeFOV(c.lens), c.fov) << c.lens;
}

/// For the child of a death test.
static void parseSettings(const char* text)
{
    dup2(STDERR_FILENO, STDOUT_FILENO);
    comptligne = 1;
    myViewPoint.position = {20, 20, 20};
    char inputName[256] = "";
    int attenuation = 0, shadowType = 0, samples = 0, cameraIndex = 0;
    double radius = 0;
    yy_3DSSettings(fmemopen(const_cast<char*>(text), strlen(text), "r"), inputName, &attenuation, &shadowType,
                   &samples, &radius, &cameraIndex);
    printf("%s %d %d %d %g %d %g", inputName, attenuation, shadowType, samples, radius, cameraIndex,
           myViewPoint.focalLength);
    exit(0);
}

TEST(SettingsDeathTest, ValuesAndFaults)
{
    static constexpr const char* unknown = "line: 2 -  Unkown parameter in 3ds settings structure";
    static constexpr const char* missing = "line: 2 -  Error in lights specifications - missing parameters";
    const struct {
        const char *text, *said;
        int status = 255;
    } cases[] = {
        {R"({ light_samples 4 attenuation_type "d2" shadow_type "smooth" radius 0.5 camera_index 7
              input_name "b.3ds" input_name "a.3ds.old" focal_point <20 20 23> } ?)",
         "a.3ds.old 2 1 4 0.5 7 3", 0},
        {"settings { }", "line: 1 -  Opening bracket '\\{' expected"},
        {"{\n samples 4 }", unknown},
        {"{\n light_samples 4", unknown},
        {"{ input_name \"a.3DS\" }", " '.3ds' file expected."},
        {"{ camera_samples 0 }", " camera samples must be greater than 0"},
        {"{ attenuation_type \"d3\" }", " invalid light attenuation type specified"},
        {"{ shadow_type \"none\" }", " invalid shadow type specified"},
        {"{ radius -1\n", "line: 1 -  smooth light radius must be greater than 0"},
        {"{ light_samples 0\n", "line: 1 -  smooth light samples must be greater than 0"},
        {"{ shadow_type \"smooth\"\n radius 1 }", missing},
        {"{ radius 1 light_samples 4 radius 1 shadow_type \"smooth\"\n }", missing},
        {"{ focal_length 1 focal_point <0 0 0> }", " focal lenght OR focal point must be defined"},
        {"{ background # red }", " Color declaration not found"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EXIT(parseSettings(c.text), testing::ExitedWithCode(c.status), c.said);
    }
}

/// Leaves the scene in the globals.
struct AssemblyTest : ModelTest {
    const std::string settings = name + ".txt";

    ~AssemblyTest() override
    {
        freeList(&myObjectList);
        freeList(&myLightList);
        remove(settings.c_str());
        myViewPoint = {};
        myDisplay = {};
        iImageType = BMP;
        nPrims = iCameraIndex = iAntialias = adapt_dist = 0;
    }

    int parse(const std::string& bytes, const std::string& words = "")
    {
        std::ofstream(name, std::ios::binary) << bytes;
        std::ofstream(settings) << "{ input_name \"" << name << "\" " << words << "}";
        return listen([this] { return parse3ds(settings.c_str()); });
    }
};

TEST_F(AssemblyTest, ModelBecomesAScene)
{
    const std::string lamp = chunk(0x4600, floats({1, 2, 3}) + chunk(0x0010, floats({.1f, .5f, 1})) +
                                               chunk(0x4610, floats({1, 1, 1, 1, 1})));
    EXPECT_EQ(
        parse(
            file(material("a", "\x33\xFF\x01") + material("b", "bbb") + object(CAMERA + lamp) +
                 object(chunk(0x4700, floats({9, 9, 9, 0, 0, 0, 0, 800})) + mesh(wears("b"))) +
                 object(mesh())),
            R"(camera_index 7 aperture 2 shadow_type "smooth" radius 2 light_samples 5 attenuation_type "d")"),
        0);
    EXPECT_EQ(said, "\n Reading " + name + "...\n Computing normals...\n");
    EXPECT_EQ(myDisplay.outputName, settings);
    EXPECT_EQ(iImageType, TGA);
    EXPECT_EQ(iCameraIndex, 1);
    EXPECT_EQ(myViewPoint.position.x, 9);
    EXPECT_EQ(myViewPoint.fovX, 0.5 * (3.125f / 1.175f) * PI / 180);
    EXPECT_EQ(myViewPoint.aperture, 2);

    ASSERT_NE(myLightList, nullptr);
    const Light& light = myLightList->light;
    EXPECT_EQ(light.lightType, POINT_LIGHT);
    EXPECT_EQ(light.position.z, 3);
    EXPECT_EQ(myLightList->surface.color.red, 0.1f);
    EXPECT_EQ(light.attenuation * 100 + light.shadowType * 10 + light.samples, 115);
    EXPECT_EQ(light.radius, 2);

    ASSERT_EQ(nPrims, 2);
    EXPECT_EQ(myObjectList->next->surface.color.red, static_cast<float>('b' / 255.0));
    const SurfaceAttrib& first = myObjectList->surface; // of an object that names no material
    EXPECT_EQ(first.color.red, 0.2f);
    EXPECT_EQ(first.color.blue, static_cast<float>(1 / 255.0));
    EXPECT_EQ(first.ambient, 0.3);
    EXPECT_EQ(first.diffuse, 0.375);
    EXPECT_EQ(first.refractionIndex + first.reflectionSamples + first.reflectionRadius, 0);
    EXPECT_EQ(myObjectList->patch.vertices[1].x, 1);
    EXPECT_EQ(myObjectList->patch.normals[2].z, 1);
}

TEST_F(AssemblyTest, WithoutCameraLightAndMaterial)
{
    EXPECT_EQ(parse(file(object(mesh())), "output_name \"out\" output_type \"png\""), 0);
    EXPECT_TRUE(said.ends_with(" No camera defined in " + settings +
                               ". Using default settings.\n No light defined in " + settings + ".\n"));
    EXPECT_STREQ(myDisplay.outputName, "out");
    EXPECT_EQ(myViewPoint.position.y, 20);
    EXPECT_EQ(myViewPoint.fovX, 0.3490658503988659);
    EXPECT_EQ(myViewPoint.focalLength, 10);
    ASSERT_EQ(nPrims, 1);
    EXPECT_EQ(myObjectList->surface.color.green, 0.8f); // grey
}

using AssemblyDeathTest = AssemblyTest;

TEST_F(AssemblyDeathTest, Failures)
{
    EXPECT_EQ(parse("no model"), -1);
    EXPECT_TRUE(said.ends_with(" An error occured while loading " + settings + "\n"));
    EXPECT_EQ(parse(file(object(CAMERA)), "camera_index -4"), 0); // becomes the first
    EXPECT_EQ(myViewPoint.lookAt.x, 4);
    const auto run = [](const std::string& path) {
        dup2(STDERR_FILENO, STDOUT_FILENO);
        parse3ds(path.c_str());
    };
    EXPECT_EXIT(run("none/x"), testing::ExitedWithCode(255),
                "\n 3ds settings file: none/x could no be opened\n");
    EXPECT_EXIT(run(std::string(255, 'x')), testing::ExitedWithCode(255), "could no be opened");
    EXPECT_EXIT(run(std::string(256, 'x')), testing::ExitedWithCode(255), "too long");
}
