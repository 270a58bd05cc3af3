#include "import3ds/settings3ds.h"

#include "scene/block.h"
#include "scene/shading.h"
#include "scene/view.h"

#include <cstring>
#include <vector>

static bool names3DSFile(char* name)
{
    return strstr(name, ".3ds") != nullptr;
}

void yy_3DSSettings(FILE* stream, char* inputName, int* attenuation, int* shadowType, int* samples,
                    double* radius, int* cameraIndex)
{
    openBlock(stream);
    iImageType = TGA;
    Vec focalPoint{};
    const BlockWord ownWords[] = {
        name(CODE_INPUT_NAME, inputName, names3DSFile, " '.3ds' file expected."),
        any(CODE_APERTURE, &myViewPoint.aperture),
        any(CODE_FOCAL_LENGTH, &myViewPoint.focalLength),
        any(CODE_FOCAL_POINT, &focalPoint),
        any(CODE_CAMERA_SAMPLES, &myViewPoint.samples, isAboveZero, CAMERA_SAMPLES_FAULT),
        any(CODE_CAMERA_INDEX, cameraIndex),
        choice(CODE_ATTENUATION_TYPE, attenuation, attenuationTypes, ATTENUATION_FAULT),
        choice(CODE_SHADOW_TYPE, shadowType, shadowTypes, SHADOW_FAULT),
        any(CODE_RADIUS, radius, isAboveZero, LIGHT_RADIUS_FAULT),
        any(CODE_LIGHT_SAMPLES, samples, isAboveZero, LIGHT_SAMPLES_FAULT),
    };
    std::vector<BlockWord> words = pictureWords();
    words.insert(words.end(), std::begin(ownWords), std::end(ownWords));
    readWords(stream, words, " Unkown parameter in 3ds settings structure");
    if (*shadowType == SMOOTH_SHADOW &&
        (countOf(words, CODE_RADIUS) != 1 || countOf(words, CODE_LIGHT_SAMPLES) != 1))
        yyerror(" Error in lights specifications - missing parameters");
    setFocus(words, focalPoint);
}
