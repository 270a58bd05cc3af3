#pragma once

#include "core/vector.h"

#include <cstdio>

/// The tolerance of all geometry and shading tests; each test says whether the limit itself passes.
constexpr double EPSILON = 0.001;
/// Stands for no limit: the reach of a primary ray, the distance of a miss, the bounds of a plane, and the
/// start value of every search for bounds.
constexpr double NO_LIMIT = 10000000000.0;
constexpr double PI = 3.141592653589793;

/// Values of Object::type. A light is on myLightList, a bounding node only in the tree.
enum ObjectType { LIGHT = 1, BOUNDING_NODE, SPHERE, PLANE, RING, TRIANGLE, POLYGON, CONE, PATCH };

enum LightType { POINT_LIGHT, SPOT_LIGHT };
enum ShadowType { SHARP_SHADOW, SMOOTH_SHADOW };
enum Attenuation { NO_ATTENUATION, BY_DISTANCE, BY_SQUARED_DISTANCE };
enum ReflectionType { SHARP_REFLECTION, FUZZY_REFLECTION };
enum Projection { FLAT, FISHEYE };
enum Antialias { AA_NONE, AA_QUICK, AA_ADAPTIVE };
enum ImageType { TGA, BMP, PPM, PNG, JPEG, TIF, NUM_IMAGE_TYPES };

struct Object;

struct Ray {
    Vec origin;
    Vec direction; // unit length, so that a ray parameter is a distance
};

/// What an intersection test hands back. Everything that one ray needs is here and not in the records,
/// which many threads read at once.
struct Hit {
    double distance;
    int entering; // 1 or 0 by the rule of the primitive; decides the order of the refraction indices
    const Object* object;
    Vec hitNormal; // patches only: the interpolated normal, not yet unit
};

/// The optical properties of a surface. The start values are those of an empty `surface` block.
struct SurfaceAttrib {
    Color color{};
    double ambient = 0.0;
    double diffuse = 0.0;
    double brilliance = 0.0;
    double specular = 0.0;
    double roughness = 0.0; // the exponent of the highlight itself: larger is smaller
    double reflection = 0.0;
    int reflectionType = SHARP_REFLECTION;
    int reflectionSamples = 10;
    double reflectionRadius = 1.0;
    double refraction = 0.0;
    double refractionIndex = 1.0; // only above 1.0 does a ray pass
};

struct Sphere {
    Vec center;
    double radius; // as given, sign included
    double radiusSquared;
};

struct Plane {
    Vec normal;
    double offset; // the points p with normal . p + offset = 0
};

/// A disc is a ring with an inner radius of 0.
struct Ring {
    Vec center;
    Vec normal;
    double offset;
    double innerSquared;
    double outerSquared;
};

/// The face is tested in two dimensions: the coordinate in which the normal is largest is dropped.
struct Triangle {
    Vec* vertices; // 3, given by the caller, owned by the record until the process ends
    Vec normal;
    double offset;
    int axisU, axisV;
    double u[4], v[4]; // the two kept coordinates of each vertex, the first vertex again at the end
};

struct Polygon {
    Vec* vertices; // vertexCount, given by the caller, owned by the record until the process ends
    Vec normal;    // of the plane through the first three vertices
    int vertexCount;
    double offset;
    int axisU, axisV;
    const double* u; // vertexCount + 1, as in a triangle; one heap block with v behind it, never freed either
    const double* v;
};

/// The wall between two circles, open at both ends. A cylinder is a cone with a slope of 0.
struct Cone {
    Vec base;
    double baseRadius;
    double axisOffset; // -(axis . base)
    Vec cap;
    double capRadius;
    Vec frameU, frameV; // with axis, a right-angled frame of unit vectors
    Vec axis;           // unit, from base to cap
    double length;
    double slope;            // growth of the radius per unit of axis
    double axisMin, axisMax; // coordinates along axis, measured from the world origin
};

/// A flat triangle whose shading normal is interpolated between its corners.
struct Patch {
    Vec vertices[3];
    Vec normals[3]; // unit, all on the side to which inverse row 2 points
    Vec inverse[3]; // rows: weight of corner 1, weight of corner 2, unit face normal
};

struct Light {
    Vec position;
    Vec direction; // unit, towards the target of a spot; of no meaning for a point light
    int lightType;
    int shadowType;
    int attenuation;
    int samples;   // shadow rays of a smooth shadow
    double radius; // size of the light for a smooth shadow
    double cosMinAngle, cosMaxAngle;
};

/// The members of a bounding node.
struct ChildList {
    int count;     // at least 2
    Object* first; // chained by `next`
};

using IntersectOperation = int (*)(const Object* self, const Ray* ray, Hit* hit);
using NormalOperation = Vec (*)(const Object* self, Vec point, const Hit* hit);
using PrintOperation = void (*)(const Object* self);

/// The one record shape of primitives, bounding nodes and lights. Only primitives set the operations; only a
/// bounding node has `children`, and no tail. A light uses `surface.color` alone, as its colour.
struct Object {
    Object* next; // in the list that holds this record; null at the end
    int type;
    IntersectOperation ObjectIntersect; // 1 and a filled hit, or 0; the hit is then not to be read
    NormalOperation ObjectNormal;       // unit normal at the point of that hit, turned to no special side
    PrintOperation ObjectPrint;
    ChildList* children;
    double boundsMin[3],
        boundsMax[3]; // along the three Slab directions; near `next`: the build reads them together
    SurfaceAttrib surface;
    union {
        Sphere sphere;
        Plane plane;
        Ring ring;
        Triangle triangle;
        Polygon polygon;
        Cone cone;
        Patch patch;
        Light light;
    };
};

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

// The scene. `main` and the parsers write it, the bounding build rearranges myObjectList into a tree, and
// from then on the render threads only read.
extern Object* myObjectList; // the primitives, latest first; after the build the root of the tree
extern Object* myLightList;  // the lights, latest first
extern int nPrims;           // primitives, and after the build bounding nodes too
extern ViewPoint myViewPoint;
extern Display myDisplay;
extern Haze myHaze;
extern Color myBackGroundColor; // of a ray that hits nothing, when there is no haze
extern Vec Slab[3];             // the unit vectors of x, y, z: the directions of all bounds

// Settings: start values from `main`, then the scene, then the command line.
extern int iAntialias;   // an Antialias
extern int adapt_dist;   // colour distance at which the adaptive sampler splits
extern int jitter;       // 1 moves each sample at random within its pixel
extern int iImageType;   // an ImageType
extern int jpeg_quality; // 0 or less stands for 90
extern int bunching;     // most members of a bounding node
extern int iPQSize;      // entries of a traversal queue, of which one is never used
extern int numThreads;   // 2, 4 or 8
extern Band iBounds[MAX_THREADS];
extern int use3ds; // 1: the input is a 3DS settings file
extern char inputFileName[INPUT_NAME_SIZE];
extern int iCameraIndex; // which camera of a 3DS model

/// Puts `node` at the front of the list.
void addToList(Object** head, Object* node);

/// Frees the records along their `next` links, leaves the head null and returns how many there were. The
/// members of bounding nodes and what a tail points to stay until the process ends.
int freeList(Object** head);

/// Calls ObjectPrint on each record and returns their number. For debugging.
int printList(const Object* head);

/// Prints the message and ends the process with status 1. Safe to call from any number of threads: the first
/// caller is heard, the others wait for the end.
[[noreturn]] void fatal(const char* message, FILE* stream = stderr);
