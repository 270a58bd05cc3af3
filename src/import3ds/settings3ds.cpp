#include "import3ds/settings3ds.h"

#include "core/settings.h"
#include "scene/block.h"
#include "scene/lexer.h"
#include "scene/shading.h"
#include "scene/view.h"

#include <cstring>

using namespace block;

static bool names3DSFile(char* name)
{
    return strstr(name, ".3ds") != nullptr;
}

void yy_3DSSettings(FILE* stream, char* inputName, Light* light)
{
    iImageType = TGA;
    startPicture();
    Vec focalPoint{};
    const BlockWord ownWords[] = {
        any("input_name", inputName, names3DSFile, " '.3ds' file expected."),
        any("aperture", &myViewPoint.aperture),
        any("focal_length", &myViewPoint.focalLength),
        any("focal_point", &focalPoint),
        any("camera_samples", &myViewPoint.samples, isAboveZero, CAMERA_SAMPLES_FAULT),
        any("camera_index", &iCameraIndex),
        choice("attenuation_type", &light->attenuation, attenuationTypes, ATTENUATION_FAULT),
        choice("shadow_type", &light->shadowType, shadowTypes, SHADOW_FAULT),
        any("radius", &light->radius, isAboveZero, LIGHT_RADIUS_FAULT),
        any("light_samples", &light->samples, isAboveZero, LIGHT_SAMPLES_FAULT),
    };
    auto words = pictureWords();
    words.insert(words.end(), std::begin(ownWords), std::end(ownWords));
    readBlock(stream, words, " Unkown parameter in 3ds settings structure");
    if (light->shadowType == SMOOTH_SHADOW &&
        (countOf(words, "radius") != 1 || countOf(words, "light_samples") != 1))
        yyerror(" Error in lights specifications - missing parameters");
    setFocus(words, focalPoint);
}
