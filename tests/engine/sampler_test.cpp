#include "engine/sampler.h"

#include "engine/light.h"
#include "engine/ray.h"
#include "picture/image.h"
#include "primitives/sphere.h"
#include "support.h"

// So wide that the numbers of a picture come from more than one block.
static constexpr int WIDTH = 700, HEIGHT = 6;

/// A lit sphere before a background: a sample on it that is moved has another colour.
struct SamplerTest : SceneTest {
    SamplerTest()
    {
        myViewPoint = {.position = {0, -3, 0}, .up = {0, 0, 1}, .fovX = PI / 8, .ratio = 1};
        myDisplay.width = WIDTH, myDisplay.height = HEIGHT;
        myBackGroundColor = {0.2, 0.4, 0.9};
        screenInit();
        makeLight({.color = {0.5, 0.25, 0.1}, .position = {5, -9, 7}});
        paint(makeSphere({0.1, 0, 0}, 0.9), {.color = {1, 0.9, 0.8}, .ambient = 0.1, .diffuse = 1.2});
    }
};

static std::string sample(double x, double y)
{
    Ray ray;
    Color color;
    int level = 0;
    std::string bytes(3, ' ');
    startRay(&ray);
    initRay(x, y, &ray);
    shoot(&ray, &color, &level);
    toBytes(255 * color, reinterpret_cast<unsigned char*>(bytes.data()));
    return bytes;
}

/// The pixels that a sampler hands on from two bands, or from some of them.
static std::string picture(void* (*sampler)(void*), int firstRowsInBand0,
                           const std::vector<intptr_t>& bands = {0, 1})
{
    const Folder folder;
    iImageType = PPM;
    iBounds[0] = {0, firstRowsInBand0};
    iBounds[1] = {firstRowsInBand0, HEIGHT};
    printed([&] {
        openImage((folder.path + "/x").c_str(), WIDTH, HEIGHT);
        for (const intptr_t band : bands)
            sampler(reinterpret_cast<void*>(band));
        closeImage();
    });
    return folder.read("x.ppm").substr(13);
}

TEST_F(SamplerTest, EachBandWithRowsMovesItsSamplesByItsShareOfTheNumbers)
{
    jitter = 1;
    for (const int rows : {0, 2, HEIGHT}) {
        const size_t shares = rows > 0 && rows < HEIGHT ? 2 : 1;
        std::string moved;
        for (int y = 0; y < HEIGHT; ++y)
            for (int x = 0; x < WIDTH; ++x) {
                if (x == 0 && (y == 0 || y == rows))
                    startRandom(y > 0 ? 1 : 0, shares);
                const double down = randomNumber(); // the first number is for y
                moved += sample(x + randomNumber(), y + down);
            }
        EXPECT_TRUE(picture(scanNone, rows) == moved) << rows;
    }
}

TEST_F(SamplerTest, EmptyBandTakesNoSample)
{
    jitter = 1;
    EXPECT_EQ(drawsOf([] { picture(scanCorners, 0, {0}); }), 0);
}

TEST(ToByte, KeepsTheLowBits)
{
    const std::pair<double, int> cases[] = {{0.99, 0},   {254.99, 254},   {256, 0},          {-0.9, 0},
                                            {-1, 255},   {-128.5, 128},   {NAN, 0},          {1e300, 255},
                                            {-1e300, 0}, {HUGE_VAL, 255}, {-2147483647.0, 1}};
    for (const auto& [component, byte] : cases)
        EXPECT_EQ(toByte(component), byte) << component;
}
