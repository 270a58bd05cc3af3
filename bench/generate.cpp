// Writes the scenes of the measurements, in the spirit of the standard procedural databases: families of one
// kind of load each, with a size, in the languages of several programs, to compare them on equal work.
//
// generate FOLDER [FAMILY SIZE [EXTENSION]] writes every family in its usual size, or one, in one language.

#include "core/vector.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <random>
#include <string>

enum Language { VARLO, LIMIT, POVRAY, TACHYON, LANGUAGES };
static const char* const extensions[LANGUAGES] = {"vlo", "lim", "pov", "dat"};

static constinit FILE* scene = nullptr;
static constinit int language = VARLO;
static constinit int surfaces = 0;    // written so far: the textures T1, T2, ... of the peers
static constinit bool inMesh = false; // POV-Ray is at its best when neighbouring triangles share a mesh
static std::mt19937 generator;        // its sequence is fixed by the standard, the distributions are not

constexpr double PI = 3.141592653589793;
constexpr double SCALE = 100; // from the units of the families to those of the scene: 0.001 is nothing there

/// How each language writes a line. In front of the index of a value, `~` writes it as a point, `!` as a
/// direction, `$` as a colour, `%` as a length and `#` as a bare number. `@` stands for the number of the
/// surface, and `^` in front for a part of a mesh.
using Form = const char* const[LANGUAGES];
static constexpr Form VIEW = {
    R"(settings { output_type "ppm" output_name "out" resolution 512 512 background 0.1 0.3 0.5 }
camera { position <~0> look_at <0 0 0> fov 45 ratio 1 })",
    "v ~0",
    R"(#version 3.7;
global_settings { assumed_gamma 1 max_trace_level 6 }
background { rgb <0.1, 0.3, 0.5> }
camera { right -x up y angle 45 sky z location <~0> look_at 0 })",
    R"(BEGIN_SCENE RESOLUTION 512 512
CAMERA ZOOM 1.2071 ASPECTRATIO 1 ANTIALIASING 0 RAYDEPTH 6 CENTER ~0 VIEWDIR !1 UPDIR 0 0 1 END_CAMERA
BACKGROUND 0.1 0.3 0.5)"};
static constexpr Form LIGHT = {"light { position <~0> color 0.5 0.5 0.5 attenuation_type \"none\" }", "l ~0",
                               "light_source { <~0>, rgb 0.5 }",
                               "LIGHT CENTER ~0 RAD 0.001 COLOR 0.5 0.5 0.5"};
static constexpr Form SURFACE = {
    "surface { color $0 ambient 0.1 specular 0.3 roughness 30 diffuse #1 reflection #2 }", "m $0 #1 #2",
    "#declare T@ = texture { pigment { rgb <$0> } finish { ambient 0.1 phong 0.3 phong_size 30 diffuse #1 "
    "reflection #2 } }",
    "TEXDEF T@ AMBIENT 0.1 DIFFUSE #1 SPECULAR #2 OPACITY 1 PHONG PLASTIC 0.3 PHONG_SIZE 30 COLOR $0 "
    "TEXFUNC 0"};
static constexpr Form SPHERE = {"sphere { center <~0> radius %1 }", "s ~0 %1",
                                "sphere { <~0>, %1 texture { T@ } }", "SPHERE CENTER ~0 RAD %1 T@"};
static constexpr Form CYLINDER = {"cylinder { base <~0> cap <~1> radius %2 }", "c ~0 %2 ~1 %2",
                                  "cylinder { <~0>, <~1>, %2 open texture { T@ } }",
                                  "FCYLINDER BASE ~0 APEX ~1 RAD %2 T@"};
static constexpr Form CONE = {"cone { base <~0> base_radius %1 cap <~2> cap_radius %3 }", "c ~0 %1 ~2 %3",
                              "cone { <~0>, %1, <~2>, %3 open texture { T@ } }"};
static constexpr Form RING = {"ring { center <~0> normal <!1> external_radius %2 internal_radius %3 }",
                              "r ~0 !1 %2 %3", "disc { <~0>, <!1>, %2, %3 texture { T@ } }",
                              "RING CENTER ~0 NORMAL !1 INNER %3 OUTER %2 T@"};
static constexpr Form PLANE = {"plane { normal <!0> distance %1 }", "p !0 %1",
                               "plane { <!0>, %1 texture { T@ } }", "PLANE CENTER ~2 NORMAL !0 T@"};
static constexpr Form TRIANGLE = {"triangle { vertex <~0> vertex <~1> vertex <~2> }", "t ~0 ~1 ~2",
                                  "^triangle { <~0>, <~1>, <~2> }", "TRI V0 ~0 V1 ~1 V2 ~2 T@"};
static constexpr Form PATCH = {
    "patch { vertex <~0> normal <!1> vertex <~2> normal <!3> vertex <~4> normal <!5> }",
    "h ~0 !1 ~2 !3 ~4 !5", "^smooth_triangle { <~0>, <!1>, <~2>, <!3>, <~4>, <!5> }",
    "STRI V0 ~0 V1 ~4 V2 ~2 N0 !1 N1 !5 N2 !3 T@"};
static constexpr Form POLYGON = {"polygon { #0", "g #0", "polygon { #1"};
static constexpr Form CORNER = {"vertex <~0>", "~0", ", <~0>"};
static constexpr Form LAST = {"}", "", ", <~0> texture { T@ } }"};
static constexpr Form END = {"", "", "", "END_SCENE"};

static void put(const Form& form, std::initializer_list<Vec> values)
{
    const char* c = form[language];
    if (const bool part = *c == '^'; part != inMesh) {
        inMesh ? fprintf(scene, "texture { T%d } }\n", surfaces) : fputs("mesh {\n", scene);
        inMesh = part;
    }
    surfaces += &form == &SURFACE;
    for (c += inMesh; *c != 0; ++c) {
        if (*c == '@')
            fprintf(scene, "%d", surfaces);
        else if (strchr("~!$%#", *c) == nullptr || c[1] < '0' || c[1] > '9')
            putc(*c, scene);
        else {
            const bool scaled = *c == '~' || *c == '%', number = *c == '%' || *c == '#';
            // The pictures of Tachyon are left-handed: it gets the mirror image of the scene.
            const bool mirrored = language == TACHYON && (*c == '~' || *c == '!');
            const Vec value = (scaled ? SCALE : 1.0) * values.begin()[*++c - '0'];
            for (int i = 0; i < (number ? 1 : 3); ++i) {
                const double part = mirrored && i == 0 ? -value.x : coordinate(value, i);
                char text[32];
                *std::to_chars(text, text + 32, static_cast<float>(part)).ptr = 0;
                fprintf(scene, "%s%s", i == 0 ? "" : language == POVRAY ? ", " : " ", text);
            }
        }
    }
    putc('\n', scene);
}

static Vec only(double number)
{
    return {number, 0, 0};
}

/// The surface of what follows. What it mirrors is missing from what it scatters.
static void surface(Vec color, double mirror)
{
    put(SURFACE, {color, only(0.9 * (1.0 - mirror)), only(mirror)});
}

static void polygon(const Vec* corners, int count)
{
    put(POLYGON, {only(count), only(count + 1)});
    for (int i = 0; i < count; ++i)
        put(CORNER, {corners[i]});
    put(LAST, {corners[0]});
}

static void quad(Vec a, Vec b, Vec c, Vec d)
{
    put(TRIANGLE, {a, b, c});
    put(TRIANGLE, {a, c, d});
}

static double random(double low, double high)
{
    return low + (high - low) * (static_cast<double>(generator()) / 4294967296.0);
}

static Vec randomPoint(double low, double high)
{
    const double x = random(low, high), y = random(low, high);
    return {x, y, random(low, high)};
}

static Vec around(Vec u, Vec v, double angle)
{
    return std::cos(angle) * u + std::sin(angle) * v;
}

/// A unit vector that leans away from the unit vector `axis` by `lean`, to the side told by `angle`.
static Vec leaning(Vec axis, double lean, double angle)
{
    const Vec u = unit(cross(axis, std::abs(axis.x) < 0.6 ? Vec{1, 0, 0} : Vec{0, 1, 0}));
    return around(axis, around(u, cross(axis, u), angle), lean);
}

static void flake(int depth, Vec c = {}, double r = 1, Vec axis = {0, 0, 1})
{
    put(SPHERE, {c, only(r)});
    for (int i = 0; i < 9 && depth > 0; ++i) { // six around the middle, three above
        const Vec out = leaning(axis, i < 6 ? PI / 2 : PI / 6, i * PI / 3 * (i < 6 ? 1 : 2) + i / 6 * PI / 6);
        flake(depth - 1, c + (4 * r / 3) * out, r / 3, out);
    }
}

static void tetra(int depth, Vec c = {}, double r = 1)
{
    Vec p[4];
    for (int i = 0; i < 4; ++i)
        p[i] = c + r * Vec{i < 2 ? 1.0 : -1.0, i % 2 == 0 ? 1.0 : -1.0, i % 3 == 0 ? 1.0 : -1.0};
    for (int i = 0; i < 4; ++i)
        if (depth == 0)
            put(TRIANGLE, {p[i], p[(i + 1) % 4], p[(i + 2) % 4]});
        else
            tetra(depth - 1, 0.5 * (c + p[i]), r / 2);
}

/// Ridges of every size: each octave is turned, finer and lower.
static Vec hill(double x, double y)
{
    Vec p = {x, y, 0}, q = p;
    for (double scale = 1, share = 0.4; scale < 200; scale *= 1.9, share *= 0.5) {
        q = {0.8 * q.x + 0.6 * q.y + 1.3, 0.8 * q.y - 0.6 * q.x + 0.7, 0};
        p.z += share * (1 - std::abs(std::sin(scale * q.x) + std::sin(scale * q.y)));
    }
    return p;
}

static void mountain(int cells)
{
    const double step = 4.0 / cells;
    for (double x = -2; x < 2 - step / 2; x += step)
        for (double y = -2; y < 2 - step / 2; y += step)
            quad(hill(x, y), hill(x + step, y), hill(x + step, y + step), hill(x, y + step));
    surface({0.6, 0.7, 0.8}, 0.8);
    for (int i = 0; i < 4; ++i)
        put(SPHERE, {{0.9 * i - 1.35, i % 2 == 0 ? -1.0 : 0.3, 1.3}, only(0.36)});
}

static void rings(int rows)
{
    for (int row = 0; row < rows; ++row) {
        surface({1.0 - 0.6 * row / rows, 0.6, 0.4 + 0.6 * row / rows}, 0.2);
        for (int k = 0; k < 3 * (row + 1); ++k) { // three rings through each other at every place
            const Vec place = {2.0 * (k / 3) - row, 0.3 * (k / 3 % 2), (0.5 * rows - row) * 1.8};
            const Vec c = (1.0 / rows) * place;
            const Vec u = unit({1, k % 3 - 1.0, 0.3}), v = unit(cross(u, {k % 2 - 0.3, 0.4, 1}));
            for (int i = 0; i < 12; ++i) {
                const Vec from = c + (0.9 / rows) * around(u, v, i * PI / 6);
                const Vec to = c + (0.9 / rows) * around(u, v, (i + 1) * PI / 6);
                put(SPHERE, {from, only(0.09 / rows)});
                put(CYLINDER, {from, to, only(0.06 / rows)});
            }
        }
    }
}

static void lattice(int n)
{
    const double step = 2.0 / n;
    for (int i = 0; i < n * n * n; ++i) {
        const Vec index = {1.0 * (i / n / n), 1.0 * (i / n % n), 1.0 * (i % n)};
        const Vec p = step * index - Vec{1, 1, 1};
        if (i % n == 0)
            surface({0.4 + 0.6 * index.x / n, 0.7, 1 - 0.6 * index.x / n}, 0.2);
        put(SPHERE, {p, only(0.16 * step)});
        for (const Vec& along : {Vec{step, 0, 0}, Vec{0, step, 0}, Vec{0, 0, step}})
            put(CYLINDER, {p, p + along, only(0.06 * step)});
    }
}

static void gears(int n)
{
    constexpr int CORNERS = 4 * 24; // four to a tooth
    for (int i = 0; i < n * n * n; ++i) {
        const int x = i / n % n, y = i % n, z = i / n / n;
        Vec low[CORNERS], high[CORNERS];
        for (int k = 0; k < CORNERS; ++k) {
            const double r = k % 4 == 1 || k % 4 == 2 ? 0.54 : 0.47; // teeth between those of the neighbours
            const Vec p = r * around({1, 0, 0}, {0, 1, 0}, (2 * k + (x + y) % 2 * 4) * PI / CORNERS);
            low[k] = (2.0 / n) * (p + Vec{x - 0.5 * (n - 1), y - 0.5 * (n - 1), z - 0.5 * n});
            high[k] = low[k] + Vec{0, 0, 0.9 / n};
        }
        surface({0.4 + 0.6 * x / n, 0.8 - 0.4 * z / n, 0.9 - 0.6 * y / n}, 0.15);
        polygon(low, CORNERS);
        polygon(high, CORNERS);
        for (int k = 0; k < CORNERS; ++k) {
            const Vec side[] = {low[k], low[(k + 1) % CORNERS], high[(k + 1) % CORNERS], high[k]};
            polygon(side, 4);
        }
    }
}

static void tree(int depth, Vec from = {0, 0, -1}, Vec along = {0, 0, 1}, double r = 0.07)
{
    const Vec to = from + 14 * r * along;
    put(CONE, {from, only(r), to, only(0.62 * r)});
    put(SPHERE, {to, only(0.62 * r)});
    for (int i = 0; i < 3 && depth > 0; ++i)
        tree(depth - 1, to, leaning(along, 0.64, i * 2 * PI / 3 + depth), 0.62 * r);
}

/// A torus with dents.
static Vec blob(double a, double b)
{
    const double r = 0.5 + 0.06 * std::sin(7 * a) * std::sin(5 * b) + 0.02 * std::sin(23 * a + 11 * b);
    return (1.1 + r * std::cos(b)) * Vec{std::cos(a), std::sin(a), 0} + Vec{0, 0, r * std::sin(b)};
}

static void smooth(int cells)
{
    for (int i = 0; i < cells * cells; ++i) {
        Vec p[4], n[4];
        for (int k = 0; k < 4; ++k) {
            const double a = (i / cells + (k == 1 || k == 2)) % cells * 2 * PI / cells, d = 1e-4;
            const double b = (i + k / 2) % cells * 2 * PI / cells;
            p[k] = blob(a, b);
            n[k] = unit(cross(blob(a + d, b) - blob(a - d, b), blob(a, b + d) - blob(a, b - d)));
        }
        put(PATCH, {p[0], n[0], p[1], n[1], p[2], n[2]});
        put(PATCH, {p[0], n[0], p[2], n[2], p[3], n[3]});
    }
}

/// A torus knot of patches: a band that runs past itself many times.
static Vec knotAxis(double a)
{
    const double r = 0.9 + 0.4 * std::cos(7 * a);
    return {r * std::cos(5 * a), r * std::sin(5 * a), 0.4 * std::sin(7 * a)};
}

static void knot(int turns)
{
    constexpr int SIDES = 16;
    const auto point = [turns](int i, int k, Vec* normal) {
        const double a = i % turns * 2 * PI / turns;
        const Vec along = unit(knotAxis(a + 1e-4) - knotAxis(a - 1e-4)), side = unit(cross(along, {0, 0, 1}));
        *normal = around(side, cross(along, side), k % SIDES * 2 * PI / SIDES);
        return knotAxis(a) + 0.11 * *normal;
    };
    for (int i = 0; i < turns * SIDES; ++i) {
        const int row = i / SIDES, k = i % SIDES;
        Vec p[4], n[4];
        for (int corner = 0; corner < 4; ++corner)
            p[corner] = point(row + (corner == 1 || corner == 2), k + corner / 2, &n[corner]);
        put(PATCH, {p[0], n[0], p[1], n[1], p[2], n[2]});
        put(PATCH, {p[0], n[0], p[2], n[2], p[3], n[3]});
    }
}

/// Sea shells: balls along a spiral, each through dozens of its neighbours, so that bounds tell little.
static void shells(int count)
{
    for (int shell = 0; shell < 9; ++shell) {
        surface(randomPoint(0.2, 1), 0.2);
        const Vec place = {0.8 * (shell % 3 - 1), 0.8 * (shell / 3 - 1), -0.75},
                  lean = randomPoint(-0.3, 0.3);
        const double turn = random(0, 2 * PI);
        for (int i = 0; i < count; ++i) {
            const double part = 1 - 1.0 * i / count, r = 0.35 * part * part,
                         a = turn + 22 * i / (count * 0.9);
            const Vec up = Vec{0, 0, 1.6 * (1 - part)} + (1 - part) * lean;
            put(SPHERE, {place + up + r * Vec{std::cos(a), std::sin(a), 0}, only(0.55 * r)});
        }
    }
}

/// Balls alone, as many as are wanted: what the reading and the tree cost.
static void balls(int count)
{
    const double size = 0.5 / std::cbrt(count);
    for (int i = 0; i < count; ++i)
        put(SPHERE, {randomPoint(-1, 1), only(size)});
}

/// Balls and rings in a room. Nothing bounds its planes, so that all rays try them.
static void room(int count, double mirror)
{
    const double size = 1 / std::cbrt(count);
    for (const Vec& normal : {Vec{1, 0, 0}, Vec{-1, 0, 0}, Vec{0, 1, 0}, Vec{0, -1, 0}, Vec{0, 0, -1}})
        put(PLANE, {normal, only(-8), -8 * normal});
    for (int i = 0; i < count; ++i) {
        if (i % 100 == 0)
            surface(randomPoint(0.2, 1), mirror);
        const Vec p = randomPoint(-1.5, 1.5);
        if (i % 4 == 3)
            put(RING, {p, unit(randomPoint(-1, 1)), only(0.9 * size), only(0.45 * size)});
        else
            put(SPHERE, {p, only(random(0.2, 0.7) * size)});
    }
}

/// Objects of every kind through each other: bounds say little, and many objects have to be tried.
static void jumble(int count)
{
    const double size = 2.5 / std::cbrt(count);
    for (int i = 0; i < count / 7; ++i) {
        if (i % 15 == 0)
            surface(randomPoint(0.2, 1), i % 60 == 0 ? 0.5 : 0.1);
        Vec p[7];
        for (Vec& each : p)
            each = randomPoint(-1, 1);
        const Vec a = randomPoint(-size, size), b = randomPoint(-size, size), n = unit(a), m = unit(b);
        const Vec square[] = {p[0], p[0] + a, p[0] + a + b, p[0] + b};
        polygon(square, 4);
        put(PATCH, {p[1], n, p[1] + a, n + 0.3 * m, p[1] + b, n - 0.3 * m});
        put(SPHERE, {p[2], only(0.5 * size)});
        put(TRIANGLE, {p[3], p[3] + a, p[3] + b}); // apart from the patch, with which it makes no mesh
        put(CYLINDER, {p[4], p[4] + a + b, only(0.15 * size)});
        put(CONE, {p[5], only(0.3 * size), p[5] + a - b, only(0.05 * size)});
        put(RING, {p[6], n, only(0.6 * size), only(0.3 * size)});
    }
}

static const struct {
    const char* name;
    void (*write)(int size);
    int size;      // the usual one
    int languages; // the first of them; Tachyon has neither cones nor polygons
    Vec eye;       // it looks at the origin
    double floor;  // height of the ground
    Vec color;     // of the surface to begin with
    double mirror;
} families[] = {
    {"flake", [](int n) { flake(n); }, 4, 4, {2.9, -4.4, 3.2}, -1, {1, 0.85, 0.6}, 0.4},
    {"tetra", [](int n) { tetra(n); }, 5, 4, {1.4, -4.4, 1.8}, -1.2, {1, 0.5, 0.3}, 0.2},
    {"mountain", mountain, 160, 4, {0.2, -4.6, 2.9}, -0.4, {0.7, 0.6, 0.45}, 0},
    {"rings", rings, 12, 4, {-1.3, -2.9, 0.9}, -1, {}, 0},
    {"lattice", lattice, 12, 4, {2.1, -3.1, 1.7}, -1.2, {}, 0},
    {"gears", gears, 4, 3, {-1.4, -3.1, 2.5}, -1.3, {}, 0},
    {"tree", [](int n) { tree(n); }, 7, 3, {2.2, -3.3, 1.5}, -1, {0.7, 0.5, 0.3}, 0.1},
    {"smooth", smooth, 224, 4, {1.3, -3.6, 2.6}, -0.62, {0.4, 0.75, 0.6}, 0.25},
    {"knot", knot, 2000, 4, {1.3, -3.4, 2.2}, -0.7, {0.9, 0.6, 0.3}, 0.2},
    {"shells", shells, 1500, 4, {1.4, -4.2, 1.9}, -1.5, {}, 0},
    {"balls", balls, 10000, 4, {1.4, -4.2, 1.9}, -1.3, {0.9, 0.6, 0.3}, 0.1},
    {"mirrors", [](int n) { room(n, 0.7); }, 1000, 4, {1.4, -4.2, 1.9}, -1.5, {0.5, 0.6, 0.8}, 0.7},
    {"planes", [](int n) { room(n, 0.1); }, 2000, 4, {-1.4, -4.2, 1.9}, -1.5, {0.5, 0.6, 0.8}, 0.1},
    {"jumble", jumble, 2000, 3, {1.4, -4.2, 1.9}, -1.3, {}, 0},
};

int main(int argc, char** argv)
{
    for (const auto& family : families) {
        if (argc != 2 && (argc < 4 || strcmp(family.name, argv[2]) != 0))
            continue;
        for (language = 0; language < family.languages; ++language) {
            if (argc == 5 && strcmp(extensions[language], argv[4]) != 0)
                continue;
            const std::string name = std::string(argv[1]) + '/' + family.name + '.' + extensions[language];
            scene = fopen(name.c_str(), "w");
            if (scene == nullptr) {
                perror(name.c_str());
                return 1;
            }
            surfaces = 0;
            generator.seed(1987);
            put(VIEW, {family.eye, -family.eye});
            for (const Vec& lamp : {Vec{-5, -5, 7}, Vec{6, -4, 3}, Vec{1, 6, 7}})
                put(LIGHT, {lamp});
            surface({0.8, 0.75, 0.6}, 0.1);
            const double z = family.floor;
            quad({-5, -5, z}, {5, -5, z}, {5, 5, z}, {-5, 5, z});
            surface(family.color, family.mirror);
            family.write(argc >= 4 ? atoi(argv[3]) : family.size);
            put(END, {});
            fclose(scene);
        }
    }
}
