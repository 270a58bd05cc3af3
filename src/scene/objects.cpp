#include "scene/objects.h"

#include "core/surface.h"
#include "primitives/cone.h"
#include "primitives/patch.h"
#include "primitives/plane.h"
#include "primitives/polygon.h"
#include "primitives/ring.h"
#include "primitives/sphere.h"
#include "primitives/triangle.h"
#include "scene/block.h"
#include "scene/current.h"
#include "scene/lexer.h"

#include <cstdlib>
#include <utility>

using namespace block;

/// The end of every object block: it gets the current surface, and is counted.
static void finishObject(Object* object, int* count)
{
    if (object == nullptr || !setSurfaceAttrib(object, surface))
        yyerror(NO_MEMORY);
    ++*count;
}

void yy_sphere(FILE* stream)
{
    Vec center{};
    double radius = 0.0;
    BlockWord words[] = {
        once("center", &center),
        once("radius", &radius, isAboveZero, " sphere radius must be greater than 0"),
    };
    readBlock(stream, words, " Unkown parameter in sphere structure");
    requireCounts(words, " error in sphere structure declaration");
    finishObject(makeSphere(center, radius), &iNumSphere);
}

void yy_plane(FILE* stream)
{
    Vec normal{};
    double distance = 0.0;
    BlockWord words[] = {
        once("normal", &normal),
        once("distance", &distance),
    };
    readBlock(stream, words, " Unkown parameter in plane structure");
    requireCounts(words, " error in plane structure declaration");
    if (normal == Vec{})
        yyerror(" plane normal cannot be <0 0 0>");
    // A plane is hit by rays that travel along its normal, and the scene's one points to the viewer.
    finishObject(makePlane(-normal, -distance), &iNumPlane);
}

static constexpr const char* SAME_ENDS = " base and cap cannot be the same point";
static constexpr const char* RADIUS_FAULT = " radius cannot be null or negative";

void yy_cylindre(FILE* stream)
{
    Vec base{}, cap{};
    double radius = 0.0;
    BlockWord words[] = {
        once("base", &base),
        once("cap", &cap),
        once("radius", &radius),
    };
    readBlock(stream, words, " Unkown parameter in cylinder structure");
    requireCounts(words, " error in cylinder structure declaration");
    if (!(radius > 0.0))
        yyerror(RADIUS_FAULT);
    if (base == cap)
        yyerror(SAME_ENDS);
    finishObject(makeCone(base, radius, cap, radius), &iNumCylinder);
}

void yy_cone(FILE* stream)
{
    Vec base{}, cap{};
    double baseRadius = 0.0, capRadius = 0.0;
    BlockWord words[] = {
        once("base", &base),
        once("cap", &cap),
        once("base_radius", &baseRadius),
        once("cap_radius", &capRadius),
    };
    readBlock(stream, words, " Unkown parameter in cone structure");
    requireCounts(words, " Error in cone structure");
    if (baseRadius == capRadius && baseRadius == 0.0)
        yyerror(" base radius and cap radius cannot be both null");
    if (capRadius < 0.0 || baseRadius < 0.0)
        yyerror(" base radius or cap radius cannot be negative");
    if (base == cap)
        yyerror(SAME_ENDS);
    finishObject(makeCone(base, baseRadius, cap, capRadius), &iNumCone);
}

// The ring speaks of a disc here as well.
static constexpr const char* FLAT_COUNTS = " missing parameter(s) in disc structure";

void yy_disc(FILE* stream)
{
    Vec center{}, normal{};
    double radius = 0.0;
    BlockWord words[] = {
        once("center", &center),
        once("normal", &normal),
        once("radius", &radius),
    };
    readBlock(stream, words, " Unkown parameter in disc structure");
    requireCounts(words, FLAT_COUNTS);
    if (!(radius > 0.0))
        yyerror(RADIUS_FAULT);
    finishObject(makeRing(center, normal, 0.0, radius), &iNumDisc);
}

void yy_ring(FILE* stream)
{
    Vec center{}, normal{};
    double internal = 0.0, external = 0.0;
    BlockWord words[] = {
        once("center", &center),
        once("normal", &normal),
        once("internal_radius", &internal),
        once("external_radius", &external),
    };
    readBlock(stream, words, " Unkown parameter in ring structure");
    requireCounts(words, FLAT_COUNTS);
    if (!(internal > 0.0 && external > 0.0))
        yyerror(" external and internal radius cannot be null or negative");
    if (internal == external)
        yyerror(" both radius are equal");
    if (internal > external)
        std::swap(internal, external);
    finishObject(makeRing(center, normal, internal, external), &iNumRing);
}

void yy_triangle(FILE* stream)
{
    Vec vertices[3];
    BlockWord words[] = {
        points("vertex", vertices, 1, 3, " Too many vertices in triangle structure"),
    };
    readBlock(stream, words, " Unkown parameter in triangle structure");
    if (words[0].count < 3)
        yyerror(" Too few vertices in triangle structure");
    finishObject(makeTriangle(vertices), &iNumTriangle);
}

void yy_patch(FILE* stream)
{
    Vec corners[6]; // each vertex with its normal behind it
    BlockWord words[] = {
        points("vertex", corners, 2, 3, " Too many vertices in patch structure"),
        points("normal", corners + 1, 2, 3, " Too many normals in patch structure"),
    };
    readBlock(stream, words, " Unkown parameter in patch structure");
    if (words[0].count < 3)
        yyerror(" Too few vertices in patch structure");
    if (words[1].count < 3)
        yyerror(" Too few normals in patch structure");
    finishObject(makePatch(corners), &iNumPatch);
}

void yy_polygon(FILE* stream)
{
    openBlock(stream);
    Lire_Entier(stream);
    const int count = val_INT;
    if (count < 4)
        yyerror(" valid number of vertices expected");
    auto* vertices = static_cast<Vec*>(malloc(static_cast<size_t>(count) * sizeof(Vec)));
    if (vertices == nullptr)
        yyerror(NO_MEMORY);
    BlockWord words[] = {
        points("vertex", vertices, 1, count, " Too many vertices in polygon structure"),
    };
    readWords(stream, words, " Unkown parameter in polygon structure");
    if (words[0].count < count)
        yyerror(" Too few vertices in polygon structure");
    finishObject(makePolygon(vertices, count), &iNumPolygone);
    free(vertices);
}
