#include "scene/view.h"

#include "core/data.h"
#include "core/settings.h"
#include "scene/lexer.h"

using namespace block;

static constexpr Choice imageTypes[] = {{"tga", TGA}, {"bmp", BMP},   {"ppm", PPM},
                                        {"png", PNG}, {"jpeg", JPEG}, {"tiff", TIF}};
static constexpr Choice yesNo[] = {{"yes", 1}, {"no", 0}};
static constexpr Choice antialiasTypes[] = {
    {"none", AA_NONE}, {"quick", AA_QUICK}, {"adaptive", AA_ADAPTIVE}};
static constexpr Choice projections[] = {{"flat", FLAT}, {"fisheye", FISHEYE}};

void setFocus(std::span<const BlockWord> words, Vec point)
{
    const int points = countOf(words, "focal_point");
    if (points > 0 && countOf(words, "focal_length") > 0)
        yyerror(" focal lenght OR focal point must be defined");
    if (points > 0)
        myViewPoint.focalLength = lengthOf(myViewPoint.position - point);
}

void startCamera()
{
    myViewPoint.up = {0.0, 0.0, 1.0};
    myViewPoint.fovX = PI / 8.0;
    myViewPoint.ratio = 4.0 / 3.0;
    myViewPoint.aperture = 0.0;
    myViewPoint.focalLength = 10.0;
    myViewPoint.samples = 16;
    myViewPoint.projection = FLAT;
}

void yy_camera(FILE* stream)
{
    startCamera();
    Vec focalPoint{};
    const auto toHalfRadians = [](double* fov) {
        *fov = *fov * 0.5 * PI / 180.0;
        return true;
    };

    BlockWord words[] = {
        once("position", &myViewPoint.position),
        once("look_at", &myViewPoint.lookAt),
        any("up", &myViewPoint.up),
        any<double>("fov", &myViewPoint.fovX, toHalfRadians),
        any("ratio", &myViewPoint.ratio),
        any("aperture", &myViewPoint.aperture),
        any("focal_length", &myViewPoint.focalLength),
        any("focal_point", &focalPoint),
        also("camera_samples", any("samples", &myViewPoint.samples, isAboveZero, CAMERA_SAMPLES_FAULT)),
        choice("projection_type", &myViewPoint.projection, projections,
               " invalid camera projection type specified"),
    };
    readBlock(stream, words, " Unkown parameter in camera structure");
    requireCounts(words, " error in camera structure declaration");
    setFocus(words, focalPoint);
}

void startPicture()
{
    myBackGroundColor = {};
    myDisplay.width = 320;
    myDisplay.height = 240;
    jitter = 0;
    iAntialias = AA_NONE;
    adapt_dist = 64;
    myHaze = {};
}

std::vector<BlockWord> pictureWords()
{
    return {
        any("background", &myBackGroundColor),
        pair("display", &myDisplay.width, &myDisplay.height),
        choice("output_type", &iImageType, imageTypes, " invalid output file type specified"),
        any("output_name", myDisplay.outputName),
        choice("jitter", &jitter, yesNo, " jitter must be either 'yes' or 'no'"),
        choice("antialiasing", &iAntialias, antialiasTypes, " invalid anti-aliasing type specified"),
        any("aa_distance", &adapt_dist),
        any("haze_color", &myHaze.color),
        any("haze_factor", &myHaze.factor),
        any("jpeg_quality", &jpeg_quality),
    };
}

void yy_settings(FILE* stream)
{
    startPicture();
    auto words = pictureWords();
    readBlock(stream, words, " Unkown parameter in settings structure");
    if (countOf(words, "output_name") != 1 || countOf(words, "output_type") != 1)
        yyerror(" error in settings structure declaration");
}
