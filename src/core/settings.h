#pragma once

#include "core/vector.h"

// The view and the settings of a run: the values of setStartValues, then the scene, then the command line.
// The render threads only read them.

enum Projection { FLAT, FISHEYE };
enum Antialias { AA_NONE, AA_QUICK, AA_ADAPTIVE };
enum ImageType { TGA, BMP, PPM, PNG, JPEG, TIF, NUM_IMAGE_TYPES };

/// The camera. screenInit replaces `up` and fills fovY and the two aperture vectors.
struct ViewPoint {
    Vec position{};
    Vec up{};
    Vec lookAt{};
    Vec apertureX{}, apertureY{}; // axes of the square lens, of length `aperture`
    double fovX = 0.0;            // half of the field of view, in radians
    double fovY = 0.0;
    double ratio = 0.0;    // width to height of the field of view, whatever the picture's size
    double aperture = 0.0; // 0 or less is a pinhole
    double focalLength = 0.0;
    int samples = 0; // rays through the lens for each sample of the picture
    int projection = FLAT;
};

constexpr int OUTPUT_NAME_SIZE = 256;
constexpr int INPUT_NAME_SIZE = 512;

struct Display {
    int width = 0, height = 0;
    char outputName[OUTPUT_NAME_SIZE] = ""; // without the extension, which the picture sink adds
};

struct Haze {
    double factor = 0.0; // 0 means no haze
    Color color{};
};

/// First row of a band, and the row after its last one.
struct Band {
    int first, end;
};

constexpr int MAX_THREADS = 8;

inline constinit ViewPoint myViewPoint{};
inline constinit Display myDisplay{};
inline constinit Haze myHaze{};
inline constinit Color myBackGroundColor{}; // of a ray that hits nothing, when there is no haze
inline constinit int iAntialias{};          // an Antialias
inline constinit int adapt_dist{};          // colour distance at which the adaptive sampler splits
inline constinit int jitter{};              // 1 moves each sample at random within its pixel
inline constinit int iImageType{};          // an ImageType
inline constinit int jpeg_quality{};        // 0 or less stands for 90
inline constinit int bunching{};            // most members of a bounding node
inline constinit int iPQSize{};             // entries of a traversal queue, of which one is never used
inline constinit int numThreads{};          // 2, 4 or 8
inline constinit Band iBounds[MAX_THREADS]{};
inline constinit int use3ds{}; // 1: the input is a 3DS settings file
inline constinit char inputFileName[INPUT_NAME_SIZE]{};
inline constinit int iCameraIndex{}; // which camera of a 3DS model

/// Sets numThreads. Anything but 2, 4 or 8 becomes 2, with a line on standard output, and returns false.
bool setThreads(int threads);

/// Gives all of the above their start values, and the scene in `core/data.h` its own: empty lists, whose
/// records stay where they are.
void setStartValues();
