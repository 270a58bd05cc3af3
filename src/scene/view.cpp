#include "scene/view.h"

#include <algorithm>

static constexpr Choice imageTypes[] = {{"tga", TGA}, {"bmp", BMP},   {"ppm", PPM},
                                        {"png", PNG}, {"jpeg", JPEG}, {"tiff", TIF}};
static constexpr Choice yesNo[] = {{"yes", 1}, {"no", 0}};
static constexpr Choice antialiasTypes[] = {
    {"none", AA_NONE}, {"quick", AA_QUICK}, {"adaptive", AA_ADAPTIVE}};
static constexpr Choice projections[] = {{"flat", FLAT}, {"fisheye", FISHEYE}};

void setFocus(std::span<const BlockWord> words, Vec point)
{
    const int points = countOf(words, CODE_FOCAL_POINT);
    if (points > 0 && countOf(words, CODE_FOCAL_LENGTH) > 0)
        yyerror(" focal lenght OR focal point must be defined");
    if (points > 0)
        myViewPoint.focalLength = lengthOf(myViewPoint.position - point);
}

void yy_camera(FILE* stream)
{
    myViewPoint.up = {0.0, 0.0, 1.0};
    myViewPoint.fovX = PI / 8.0;
    myViewPoint.ratio = 4.0 / 3.0;
    myViewPoint.aperture = 0.0;
    myViewPoint.focalLength = 10.0;
    myViewPoint.samples = 16;
    myViewPoint.projection = FLAT;
    Vec focalPoint{};
    const auto toHalfRadians = [](double* fov) {
        *fov = *fov * 0.5 * PI / 180.0;
        return true;
    };

    BlockWord words[] = {
        once(CODE_POSITION, &myViewPoint.position),
        once(CODE_LOOK_AT, &myViewPoint.lookAt),
        any(CODE_UP, &myViewPoint.up),
        any<double>(CODE_FOV, &myViewPoint.fovX, toHalfRadians),
        any(CODE_RATIO, &myViewPoint.ratio),
        any(CODE_APERTURE, &myViewPoint.aperture),
        any(CODE_FOCAL_LENGTH, &myViewPoint.focalLength),
        any(CODE_FOCAL_POINT, &focalPoint),
        also(CODE_CAMERA_SAMPLES, any(CODE_SAMPLES, &myViewPoint.samples, isAboveZero, CAMERA_SAMPLES_FAULT)),
        choice(CODE_PROJECTION_TYPE, &myViewPoint.projection, projections,
               " invalid camera projection type specified"),
    };
    readBlock(stream, words, " Unkown parameter in camera structure");
    requireCounts(words, " error in camera structure declaration");
    setFocus(words, focalPoint);
}

static bool limitQuality(int* quality)
{
    *quality = *quality <= 0 ? 90 : std::min(*quality, 100);
    return true;
}

std::vector<BlockWord> pictureWords()
{
    myBackGroundColor = {};
    myDisplay.width = 320;
    myDisplay.height = 240;
    jitter = 0;
    iAntialias = AA_NONE;
    adapt_dist = 64;
    myHaze = {};

    return {
        any(CODE_BACKGROUND, &myBackGroundColor),
        pair(CODE_DISPLAY, &myDisplay.width, &myDisplay.height),
        choice(CODE_OUTPUT_TYPE, &iImageType, imageTypes, " invalid output file type specified"),
        name(CODE_OUTPUT_NAME, myDisplay.outputName),
        choice(CODE_JITTER, &jitter, yesNo, " jitter must be either 'yes' or 'no'"),
        choice(CODE_ANTIALIASING, &iAntialias, antialiasTypes, " invalid anti-aliasing type specified"),
        any(CODE_AA_DISTANCE, &adapt_dist),
        any(CODE_HAZE_COLOR, &myHaze.color),
        any(CODE_HAZE_FACTOR, &myHaze.factor),
        any(CODE_JPEG_QUALITY, &jpeg_quality, limitQuality),
    };
}

void yy_settings(FILE* stream)
{
    std::vector<BlockWord> words = pictureWords();
    readBlock(stream, words, " Unkown parameter in settings structure");
    if (countOf(words, CODE_OUTPUT_NAME) != 1 || countOf(words, CODE_OUTPUT_TYPE) != 1)
        yyerror(" error in settings structure declaration");
}
