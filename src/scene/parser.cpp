#include "scene/parser.h"

#include "core/records.h"
#include "core/settings.h"
#include "scene/colors.h"
#include "scene/current.h"
#include "scene/keywords.h"
#include "scene/lexer.h"
#include "scene/objects.h"
#include "scene/shading.h"
#include "scene/view.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

// Blocks read, for the test of completeness.
static constinit std::int16_t c = 0, s = 0, su = 0, l = 0, uncounted = 0;

// What is told of a scene in the end, in this order.
static constexpr struct {
    const char* text;
    int* count;
} counts[] = {
    {"\n\n Number of sphere(s):\t\t%d\n", &iNumSphere}, {" Number of ring(s):\t\t%d\n", &iNumRing},
    {" Number of plane(s):\t\t%d\n", &iNumPlane},       {" Number of cone(s):\t\t%d\n", &iNumCone},
    {" Number of cylinder(s):\t\t%d\n", &iNumCylinder}, {" Number of disc(s):\t\t%d\n", &iNumDisc},
    {" Number of polygon(s):\t\t%d\n", &iNumPolygone},  {" Number of triangle(s):\t\t%d\n", &iNumTriangle},
    {" Number of patch(es):\t\t%d\n", &iNumPatch},      {" Number of surface(s):\t\t%d\n", &iNumSurface},
    {" Number of light(s):\t\t%d\n", &iNumLight},
};

void resetScene()
{
    setStartValues();
    resetRecords();
    freeColorList(&myColorList);
    surface = {};
    resetLexer();
}

static void yy_declare(FILE* stream)
{
    Lire_Chaine(stream);
    if (strlen(strTemp) >= COLOR_NAME_SIZE)
        yyerror(" declared name too long");
    char name[COLOR_NAME_SIZE];
    strcpy(name, strTemp);

    if (Lire_MotCle(stream) != Keyword("color").code)
        yyerror(" Unkown element in declaration");
    auto* entry = static_cast<ColorEntry*>(calloc(1, sizeof(ColorEntry)));
    if (entry == nullptr)
        yyerror(NO_MEMORY);
    memcpy(entry->name, name, sizeof name);
    for (double* component : {&entry->color.red, &entry->color.green, &entry->color.blue}) {
        Lire_Decimal(stream);
        *component = val_DBL;
    }
    addColorToList(&myColorList, entry);
}

struct Statement {
    Keyword word;
    void (*parse)(FILE* stream);
    std::int16_t* blocks = &uncounted; // counter of the test of completeness
};

static constexpr Statement statements[] = {
    {"camera", yy_camera, &c}, {"settings", yy_settings, &s}, {"surface", yy_surface, &su},
    {"light", yy_light, &l},   {"sphere", yy_sphere},         {"plane", yy_plane},
    {"cone", yy_cone},         {"cylinder", yy_cylindre},     {"ring", yy_ring},
    {"disc", yy_disc},         {"polygon", yy_polygon},       {"triangle", yy_triangle},
    {"patch", yy_patch},       {"smooth_triangle", yy_patch}, {"declare", yy_declare},
};

struct SceneFile {
    FILE* stream;
    std::string name;
};

static SceneFile openScene(const char* fileName)
{
    FILE* stream = fopen(fileName, "r");
    if (stream == nullptr) {
        printf("\n Scene file: %s could no be opened\n", fileName);
        exit(-1);
    }
    printf("\n Parsing %s", fileName);
    return {stream, fileName};
}

/// Acts on the statement whose first word was read. An `include` puts its file on top of `open`.
static void parseStatement(std::vector<SceneFile>& open)
{
    FILE* stream = open.back().stream;
    if (mot_cle == Keyword("include").code) {
        Lire_Chaine(stream);
        open.push_back(openScene(strTemp));
        return;
    }
    for (const Statement& statement : statements) {
        if (statement.word.code == mot_cle) {
            statement.parse(stream);
            ++*statement.blocks;
            return;
        }
    }
    printf("\n Scene parser returned error: %d '%s'\n", mot_cle, chaine);
    yyerror(" Unkown term");
}

int parseScene(const char* fileName)
{
    // A file that includes itself goes on until the system refuses one more stream, and that limit may be
    // high: the files that wait for their included one stand here and not on the stack.
    std::vector<SceneFile> open{openScene(fileName)};
    while (!open.empty()) {
        sourceName = open.back().name.c_str();
        if (Lire_MotCle(open.back().stream) != TOKEN_EOF) {
            parseStatement(open);
        } else {
            fclose(open.back().stream);
            open.pop_back();
        }
    }
    return 0;
}

static int endIncomplete(const char* message)
{
    fputs(message, stdout);
    return -1;
}

int parseFile(const char* fileName)
{
    for (const auto& each : counts)
        *each.count = 0;
    c = s = su = l = 0;
    surface = {}; // so that objects ahead of the first surface block have a defined one
    parseScene(fileName);

    if (c == 0)
        return endIncomplete(" Missing camera!");
    if (s == 0)
        return endIncomplete(" Missing settings!");
    if (su == 0)
        return endIncomplete(" Missing surface!");
    if (l == 0)
        printf(" Warning: scene doesn't contain any light.");

    for (const auto& each : counts)
        printf(each.text, *each.count);
    freeColorList(&myColorList);
    return 0;
}
