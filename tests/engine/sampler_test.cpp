#include "engine/sampler.h"

#include "engine/light.h"
#include "engine/ray.h"
#include "picture/image.h"
#include "primitives/sphere.h"
#include "support.h"

#include <array>

using Bytes = std::array<int, 3>;

static constexpr int WIDTH = 7, HEIGHT = 6;

/// A lit sphere before a background: no two samples on it have the same colour.
struct SamplerTest : SceneTest {
    SamplerTest()
    {
        myViewPoint = {.position = {0, -3, 0}, .up = {0, 0, 1}, .fovX = PI / 8, .ratio = 1};
        myDisplay.width = WIDTH;
        myDisplay.height = HEIGHT;
        myBackGroundColor = {0.2, 0.4, 0.9};
        screenInit();
        makeLight({5, -9, 7}, {0.5, 0.25, 0.1}, POINT_LIGHT, NO_ATTENUATION, SHARP_SHADOW, 0, 0, 0, 0, {});
        makeSphere({0.1, 0, 0}, 0.9)->surface = {.color = {1, 0.9, 0.8}, .ambient = 0.1, .diffuse = 1.2};
    }
};

static Bytes sample(double x, double y)
{
    Ray ray;
    Color color;
    int level = 0;
    unsigned char bytes[3];
    startRay(&ray);
    initRay(x, y, &ray);
    shoot(&ray, &color, &level);
    toBytes(color, bytes);
    return {bytes[0], bytes[1], bytes[2]};
}

static Bytes meanOf(const Bytes (&four)[4])
{
    Bytes mean;
    for (size_t i = 0; i < 3; ++i)
        mean[i] = (four[0][i] + four[1][i] + four[2][i] + four[3][i]) >> 2;
    return mean;
}

/// The colour of a square by its definition, without any memory of samples.
static Bytes adaptive(double x, double y, double size)
{
    const double right = x + size, low = y + size, half = size / 2;
    const Bytes corners[] = {sample(x, y), sample(right, y), sample(x, low), sample(right, low)};
    const Bytes mean = meanOf(corners);
    bool splits = false;
    for (const Bytes& corner : corners)
        for (size_t i = 0; i < 3; ++i)
            splits = splits || std::abs(mean[i] - corner[i]) >= adapt_dist;
    return splits && size > 0.25 ? meanOf({adaptive(x, y, half), adaptive(x + half, y, half),
                                           adaptive(x, y + half, half), adaptive(x + half, y + half, half)})
                                 : mean;
}

/// The pixels that a sampler hands on from two bands.
static std::string picture(void* (*sampler)(void*), int firstRowsInBand0)
{
    const Folder folder;
    iImageType = PPM;
    iBounds[0] = {0, firstRowsInBand0};
    iBounds[1] = {firstRowsInBand0, HEIGHT};
    printed([&] {
        openImage((folder.path + "/x").c_str(), WIDTH, HEIGHT);
        for (intptr_t band : {0, 1})
            sampler(reinterpret_cast<void*>(band));
        closeImage();
    });
    return folder.read("x.ppm").substr(11);
}

static std::string pictureOf(const std::function<Bytes(int column, int row)>& pixel)
{
    std::string bytes;
    for (int i = 0; i < WIDTH * HEIGHT; ++i)
        for (const int byte : pixel(i % WIDTH, i / WIDTH))
            bytes += static_cast<char>(byte);
    return bytes;
}

TEST_F(SamplerTest, PicturesFollowTheirDefinitionWhateverTheBands)
{
    const auto plain = pictureOf([](int x, int y) { return sample(x + 0.5, y + 0.5); });
    const auto corner = pictureOf([](int x, int y) {
        return meanOf({sample(x + 0.5, y + 0.5), sample(x + 1.5, y + 0.5), sample(x + 0.5, y - 0.5),
                       sample(x + 1.5, y - 0.5)});
    });
    for (const int rows : {0, 1, 4, HEIGHT}) {
        SCOPED_TRACE(rows);
        EXPECT_EQ(picture(scanNone, rows), plain);
        EXPECT_EQ(picture(scanCorners, rows), corner);
        for (const int distance : {-1, 1, 12, 40, 256}) {
            SCOPED_TRACE(adapt_dist = distance);
            EXPECT_EQ(picture(scanAdaptive, rows), pictureOf([](int x, int y) { return adaptive(x, y, 1); }));
        }
    }
}

TEST_F(SamplerTest, NoSampleIsTakenTwice)
{
    jitter = 1; // two random numbers for each sample
    const auto samples = [](void* (*sampler)(void*), int rows) {
        return drawsOf([=] { picture(sampler, rows); }) / 2;
    };
    const int w = WIDTH, h = HEIGHT;
    EXPECT_EQ(samples(scanNone, 2), w * h);
    EXPECT_EQ(samples(scanCorners, 2), (w + 1) * (h + 2)); // a line above each band
    EXPECT_EQ(samples(scanCorners, 0), (w + 1) * (h + 1)); // nothing for an empty band
    adapt_dist = 256; // the left edge of each row is new, the top edge in the first row of a band
    EXPECT_EQ(samples(scanAdaptive, h), (w + 1) * (h + 1) + h - 1);
    EXPECT_EQ(samples(scanAdaptive, 2), (w + 1) * (h + 2) + h - 2);
    adapt_dist = 0; // all 25 points of each pixel
    EXPECT_EQ(samples(scanAdaptive, h), (4 * w + 1) * (4 * h + 1) + h - 1);
}

TEST_F(SamplerTest, JitterMovesYFirst)
{
    jitter = 1;
    srand(7);
    const std::string plain = picture(scanNone, HEIGHT);
    srand(7);
    EXPECT_EQ(plain, pictureOf([](int x, int y) {
                  const double dy = rand() / 2147483647.0;
                  return sample(x + rand() / 2147483647.0, y + dy);
              }));
}

TEST(ToByte, KeepsTheLowBits)
{
    const std::pair<double, int> cases[] = {
        {0.99, 0},       {254.99, 254},       {255, 255},        {256, 0},     {-0.9, 0},
        {-1, 255},       {-128.5, 128},       {NAN, 0},          {1e300, 255}, {-1e300, 0},
        {HUGE_VAL, 255}, {2147483646.0, 254}, {-2147483647.0, 1}};
    for (const auto& [component, byte] : cases)
        EXPECT_EQ(toByte(component), byte) << component;
}
