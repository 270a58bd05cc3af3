#pragma once

#include "core/vector.h"

// The view and the settings of a run: start values, then the scene, then the command line. The render threads
// only read them.

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

extern ViewPoint myViewPoint;
extern Display myDisplay;
extern Haze myHaze;
extern Color myBackGroundColor; // of a ray that hits nothing, when there is no haze
extern int iAntialias;          // an Antialias
extern int adapt_dist;          // colour distance at which the adaptive sampler splits
extern int jitter;              // 1 moves each sample at random within its pixel
extern int iImageType;          // an ImageType
extern int jpeg_quality;        // 0 or less stands for 90
extern int bunching;            // most members of a bounding node
extern int iPQSize;             // entries of a traversal queue, of which one is never used
extern int numThreads;          // 2, 4 or 8
extern Band iBounds[MAX_THREADS];
extern int use3ds; // 1: the input is a 3DS settings file
extern char inputFileName[INPUT_NAME_SIZE];
extern int iCameraIndex; // which camera of a 3DS model

/// Sets numThreads. Anything but 2, 4 or 8 becomes 2, with a line on standard output, and returns false.
bool setThreads(int threads);

/// Gives all of the above their start values, and the scene in `core/data.h` its own: empty lists, whose
/// records stay where they are.
void setStartValues();
