#include "options.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

static const char* const USAGE =
    "Usage: varlo-import [OPTION...] MODEL\n"
    "\n"
    "Writes a scene for varlo that shows MODEL, a file of any kind that libassimp reads.\n"
    "\n"
    "  -o, --output FILE      write to FILE, whole or not at all, in place of standard output\n"
    "      --list             list meshes, materials, cameras, lights, triangles and extent\n"
    "      --geometry         write surfaces and faces only, to be included by a scene\n"
    "      --at X Y Z         put the foot of the model there (0 0 0)\n"
    "      --turn X Y Z       turn it by these degrees about x, then y, then z\n"
    "      --size LENGTH      scale it to this longest side (10)\n"
    "      --keep-size        leave its size and place as they are\n"
    "      --up x|y|z         the axis of the file that points up (by its format)\n"
    "      --smooth DEGREES   smooth edges up to this angle (30, where the file has no normals)\n"
    "      --flat             flat triangles in place of smooth patches\n"
    "      --textures FOLDER  look for pictures there too\n"
    "      --colours N        surfaces for each material with a picture (64)\n"
    "      --split LENGTH     longest edge of a face that carries a picture (a hundredth of the size)\n"
    "      --camera N         use camera N of the file, from 0\n"
    "      --view VIEW        front, back, left, right, top or corner, in place of the file's camera\n"
    "      --no-floor         no floor under the model\n"
    "      --help             this text\n"
    "      --version          the version\n";

[[noreturn]] static void refuse(const char* option, const char* why)
{
    fprintf(stderr, "varlo-import: %s: %s\n\n%s", option, why, USAGE);
    exit(2);
}

// ---- values ----

static double number(const char* option, const char* text)
{
    char* end = nullptr;
    const double value = strtod(text, &end);
    if (end == text || *end != '\0' || !std::isfinite(value))
        refuse(option, "a number is expected");
    return value;
}

static double numberAbove(const char* option, const char* text, double limit)
{
    const double value = number(option, text);
    if (!(value > limit))
        refuse(option, "the number is too small");
    return value;
}

static int integer(const char* option, const char* text, int least, int most)
{
    char* end = nullptr;
    const long value = strtol(text, &end, 10);
    if (end == text || *end != '\0' || value < least || value > most)
        refuse(option, "no integer, or out of range");
    return static_cast<int>(value);
}

/// The place of `text` in `words`, which ends with a null.
static int oneOf(const char* option, const char* text, const char* const* words)
{
    for (int i = 0; words[i] != nullptr; ++i)
        if (strcmp(text, words[i]) == 0)
            return i;
    refuse(option, "no such choice");
}

static Vec vector(const char* option, char** values)
{
    return {number(option, values[0]), number(option, values[1]), number(option, values[2])};
}

// ---- the table ----

static const char* const AXES[] = {"x", "y", "z", nullptr};
static const char* const VIEWS[] = {"corner", "front", "back", "left", "right", "top", nullptr}; // as in View

struct OptionRow {
    const char* name;
    const char* letter; // the short form, or null
    int values;         // that follow
    void (*take)(Options& options, const char* name, char** values);
};

static const OptionRow OPTIONS[] = {
    {"--output", "-o", 1, [](Options& o, const char*, char** v) { o.output = v[0]; }},
    {"--list", nullptr, 0, [](Options& o, const char*, char**) { o.list = true; }},
    {"--geometry", nullptr, 0, [](Options& o, const char*, char**) { o.geometry = true; }},
    {"--at", nullptr, 3, [](Options& o, const char* n, char** v) { o.at = vector(n, v); }},
    {"--turn", nullptr, 3, [](Options& o, const char* n, char** v) { o.turn = vector(n, v); }},
    {"--size", nullptr, 1, [](Options& o, const char* n, char** v) { o.size = numberAbove(n, v[0], 0.0); }},
    {"--keep-size", nullptr, 0, [](Options& o, const char*, char**) { o.keepSize = true; }},
    {"--up", nullptr, 1,
     [](Options& o, const char* n, char** v) { o.up = static_cast<Axis>(AXIS_X + oneOf(n, v[0], AXES)); }},
    {"--smooth", nullptr, 1,
     [](Options& o, const char* n, char** v) {
         o.smooth = number(n, v[0]);
         if (o.smooth < 0.0 || o.smooth > 180.0)
             refuse(n, "the angle lies from 0 to 180");
         o.smoothGiven = true;
     }},
    {"--flat", nullptr, 0, [](Options& o, const char*, char**) { o.flat = true; }},
    {"--textures", nullptr, 1, [](Options& o, const char*, char** v) { o.textures = v[0]; }},
    {"--colours", nullptr, 1,
     [](Options& o, const char* n, char** v) { o.colours = integer(n, v[0], 1, 65536); }},
    {"--split", nullptr, 1, [](Options& o, const char* n, char** v) { o.split = numberAbove(n, v[0], 0.0); }},
    {"--camera", nullptr, 1,
     [](Options& o, const char* n, char** v) { o.camera = integer(n, v[0], 0, 1 << 30); }},
    {"--view", nullptr, 1,
     [](Options& o, const char* n, char** v) {
         o.view = static_cast<View>(oneOf(n, v[0], VIEWS));
         o.viewGiven = true;
     }},
    {"--no-floor", nullptr, 0, [](Options& o, const char*, char**) { o.floor = false; }},
    {"--help", nullptr, 0,
     [](Options&, const char*, char**) {
         fputs(USAGE, stdout);
         exit(0);
     }},
    {"--version", nullptr, 0,
     [](Options&, const char*, char**) {
         puts("varlo-import " VARLO_VERSION);
         exit(0);
     }},
};

static const OptionRow* findOption(std::string_view word)
{
    for (const OptionRow& row : OPTIONS)
        if (word == row.name || (row.letter != nullptr && word == row.letter))
            return &row;
    return nullptr;
}

void readOptions(int argc, char** argv, Options& options)
{
    bool words = true; // until `--`
    for (int i = 1; i < argc; ++i) {
        if (words && strcmp(argv[i], "--") == 0) {
            words = false;
        } else if (words && argv[i][0] == '-' && argv[i][1] != '\0') {
            const OptionRow* row = findOption(argv[i]);
            if (row == nullptr)
                refuse(argv[i], "no such option");
            if (row->values > argc - 1 - i)
                refuse(argv[i], "a value is missing");
            row->take(options, argv[i], argv + i + 1);
            i += row->values;
        } else if (options.input != nullptr) {
            refuse(argv[i], "one model at a time");
        } else {
            options.input = argv[i];
        }
    }
    if (options.input == nullptr)
        refuse("MODEL", "a file is expected");
    if (options.camera >= 0 && options.viewGiven)
        refuse("--view", "not together with --camera");
}
