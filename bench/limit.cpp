// limit SCENE PICTURE WIDTH draws a scene of bench/generate as varlo does, as fast as the tools of the trade
// allow: the traversal of Embree over a tree by surface area, in floats, one ray at a call, two threads. It
// is no product: it has one camera, one kind of lamp, no anti-aliasing, and trusts its input. What varlo
// takes beyond its time is what doubles, the given tree and the given order cost.
//
// I. Wald et al., "Embree: A Kernel Framework for Efficient CPU Ray Tracing", ACM Transactions on Graphics
// 33, 2014.

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <embree3/rtcore.h>
#include <limits>
#include <string>
#include <thread>
#include <vector>
#include <xmmintrin.h>

namespace
{
struct Vec {
    float x, y, z;
};

struct Material {
    Vec color;
    float diffuse, mirror;
};

struct Ball {
    Vec center;
    float radius;
};

/// The wall between two circles: their radii are `radius` and `radius` + `slope` * `length`.
struct Tube {
    Vec base, axis;
    float length, radius, slope;
};

struct Disc {
    Vec center, normal;
    float outer, inner;
};

/// The points p with normal . p = distance. Planes are in no tree: each ray tries them all.
struct Plane {
    Vec normal;
    float distance;
    unsigned material;
};

struct Triangle {
    unsigned corner[3];
};
} // namespace

static constexpr float EPSILON = 0.02F; // the scenes are 100 times larger than they need to be
static constexpr float AMBIENT = 0.1F, SPECULAR = 0.3F, ROUGHNESS = 30, LAMP = 0.5F;
static constexpr Vec BACKGROUND = {0.1F, 0.3F, 0.5F};
static constexpr int MAX_LEVEL = 5;
enum Kind { BALLS, TUBES, DISCS, FLAT, SMOOTH, KINDS };

// The scene: written by `readScene`, then only read.
static Vec eye;
static std::vector<Vec> lamps;
static std::vector<Material> materials;
static std::vector<unsigned> materialOf[KINDS]; // an index for each primitive
static std::vector<Ball> balls;
static std::vector<Tube> tubes;
static std::vector<Disc> discs;
static std::vector<Plane> planes;
static std::vector<Vec> corners, smoothCorners, smoothNormals;
static std::vector<Triangle> flat, smooth;
static RTCScene scene;

static Vec operator+(Vec a, Vec b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

static Vec operator-(Vec a, Vec b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

static Vec operator*(float s, Vec a)
{
    return {s * a.x, s * a.y, s * a.z};
}

static float dot(Vec a, Vec b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

static Vec cross(Vec a, Vec b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

static Vec unit(Vec a)
{
    return (1 / std::sqrt(dot(a, a))) * a;
}

// ---- reading: a letter for each statement, then numbers ----

static const char* cursor; // in the text of the scene, which ends in a 0

static float number()
{
    while (*cursor == ' ' || *cursor == '\n')
        ++cursor;
    float value = 0;
    cursor = std::from_chars(cursor, cursor + 32, value).ptr;
    return value;
}

static Vec point()
{
    const float x = number(), y = number();
    return {x, y, number()};
}

static void addTube()
{
    const Vec base = point();
    const float radius = number();
    const Vec along = point() - base;
    const float length = std::sqrt(dot(along, along));
    tubes.push_back({base, unit(along), length, radius, (number() - radius) / length});
}

/// A polygon becomes a fan around its middle, from which all polygons of these scenes can be seen whole.
static unsigned addPolygon()
{
    const auto count = static_cast<unsigned>(number());
    const auto first = static_cast<unsigned>(corners.size());
    Vec middle = {};
    for (unsigned i = 0; i < count; ++i) {
        corners.push_back(point());
        middle = middle + corners.back();
        flat.push_back({{first + count, first + i, first + (i + 1) % count}});
    }
    corners.push_back((1 / static_cast<float>(count)) * middle);
    return count;
}

static void addCorners(std::vector<Triangle>* triangles, std::vector<Vec>* points, std::vector<Vec>* normals)
{
    const auto first = static_cast<unsigned>(points->size());
    triangles->push_back({{first, first + 1, first + 2}});
    for (int i = 0; i < 3; ++i) {
        points->push_back(point());
        if (normals != nullptr)
            normals->push_back(unit(point()));
    }
}

static void readScene(const char* name)
{
    FILE* file = fopen(name, "rb");
    if (file == nullptr) {
        perror(name);
        exit(1);
    }
    fseek(file, 0, SEEK_END);
    std::string text(static_cast<size_t>(ftell(file)) + 32, 0); // `number` looks 32 bytes ahead
    rewind(file);
    text.resize(fread(text.data(), 1, text.size(), file) + 32);
    fclose(file);
    for (cursor = text.c_str(); *cursor != 0;) {
        const auto add = [](Kind kind) {
            materialOf[kind].push_back(static_cast<unsigned>(materials.size() - 1));
        };
        switch (*cursor++) {
        case 'v':
            eye = point();
            break;
        case 'l':
            lamps.push_back(point());
            break;
        case 'm': {
            const Vec color = point();
            const float diffuse = number();
            materials.push_back({color, diffuse, number()});
            break;
        }
        case 's': {
            const Vec center = point();
            balls.push_back({center, number()});
            add(BALLS);
            break;
        }
        case 'c':
            addTube();
            add(TUBES);
            break;
        case 'r': {
            const Vec center = point(), normal = point();
            const float outer = number();
            discs.push_back({center, normal, outer, number()});
            add(DISCS);
            break;
        }
        case 'p': {
            const Vec normal = point();
            planes.push_back({normal, number(), static_cast<unsigned>(materials.size() - 1)});
            break;
        }
        case 't':
            addCorners(&flat, &corners, nullptr);
            add(FLAT);
            break;
        case 'h':
            addCorners(&smooth, &smoothCorners, &smoothNormals);
            add(SMOOTH);
            break;
        case 'g':
            for (unsigned i = addPolygon(); i > 0; --i)
                add(FLAT);
            break;
        default:; // the end of a line
        }
    }
}

// ---- the three kinds that Embree asks for ----

static void boundBy(Vec low, Vec high, RTCBounds* bounds)
{
    bounds->lower_x = low.x, bounds->lower_y = low.y, bounds->lower_z = low.z;
    bounds->upper_x = high.x, bounds->upper_y = high.y, bounds->upper_z = high.z;
}

static Vec origin(const RTCRay& ray)
{
    return {ray.org_x, ray.org_y, ray.org_z};
}

static Vec direction(const RTCRay& ray)
{
    return {ray.dir_x, ray.dir_y, ray.dir_z};
}

/// How far a circle around `axis` reaches along each coordinate, for a radius of 1.
static Vec spread(Vec axis)
{
    const auto side = [](float c) { return std::sqrt(std::max(0.0F, 1 - c * c)); };
    return {side(axis.x), side(axis.y), side(axis.z)};
}

static Vec lesser(Vec a, Vec b)
{
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::min(a.z, b.z)};
}

static Vec greater(Vec a, Vec b)
{
    return {std::max(a.x, b.x), std::max(a.y, b.y), std::max(a.z, b.z)};
}

static void bounds(const Ball& ball, RTCBounds* box)
{
    const Vec r = {ball.radius, ball.radius, ball.radius};
    boundBy(ball.center - r, ball.center + r, box);
}

static void bounds(const Tube& tube, RTCBounds* box)
{
    const Vec cap = tube.base + tube.length * tube.axis, side = spread(tube.axis);
    const Vec low = tube.radius * side, high = (tube.radius + tube.slope * tube.length) * side;
    boundBy(lesser(tube.base - low, cap - high), greater(tube.base + low, cap + high), box);
}

static void bounds(const Disc& disc, RTCBounds* box)
{
    const Vec r = disc.outer * spread(disc.normal);
    boundBy(disc.center - r, disc.center + r, box);
}

/// By the point of the ray that is nearest to the centre, since floats do not hold the difference of the
/// large numbers far away. E. Haines et al., "Precision Improvements for Ray/Sphere Intersection", Ray
/// Tracing Gems, 2019.
static bool meet(const Ball& ball, const RTCRay& ray, float* t, Vec* normal)
{
    const Vec o = origin(ray) - ball.center, d = direction(ray);
    const float middle = -dot(o, d);
    const Vec nearest = o + middle * d;
    const float squared = ball.radius * ball.radius - dot(nearest, nearest);
    if (!(squared >= 0))
        return false;
    const float half = std::sqrt(squared);
    *t = middle - half > ray.tnear ? middle - half : middle + half;
    *normal = nearest + (*t - middle) * d;
    return *t > ray.tnear && *t < ray.tfar;
}

static bool meet(const Tube& tube, const RTCRay& ray, float* t, Vec* normal)
{
    const Vec d = direction(ray);
    const float middle = -dot(origin(ray) - tube.base, d); // as for a ball
    const Vec o = origin(ray) - tube.base + middle * d;
    const float height = dot(o, tube.axis), rise = dot(d, tube.axis);
    const Vec across = o - height * tube.axis, move = d - rise * tube.axis;
    const float radius = tube.radius + tube.slope * height, growth = tube.slope * rise;
    const float a = dot(move, move) - growth * growth, b = dot(across, move) - radius * growth;
    const float squared = b * b - a * (dot(across, across) - radius * radius);
    if (!(squared >= 0))
        return false;
    const float half = std::sqrt(squared), one = (-b - half) / a, two = (-b + half) / a;
    for (const float each : {std::min(one, two), std::max(one, two)}) {
        *t = middle + each;
        const float h = height + each * rise;
        if (*t > ray.tnear && *t < ray.tfar && h >= 0 && h <= tube.length) {
            *normal = unit(across + each * move) - tube.slope * tube.axis;
            return true;
        }
    }
    return false;
}

static bool meet(const Disc& disc, const RTCRay& ray, float* t, Vec* normal)
{
    const Vec o = origin(ray) - disc.center, d = direction(ray);
    *t = -dot(o, disc.normal) / dot(d, disc.normal);
    if (!(*t > ray.tnear && *t < ray.tfar))
        return false;
    const Vec p = o + *t * d;
    const float squared = dot(p, p);
    *normal = disc.normal;
    return squared <= disc.outer * disc.outer && squared >= disc.inner * disc.inner;
}

template <class Shape>
static void boundsFunction(const RTCBoundsFunctionArguments* arguments)
{
    bounds(static_cast<const Shape*>(arguments->geometryUserPtr)[arguments->primID], arguments->bounds_o);
}

template <class Shape>
static void intersectFunction(const RTCIntersectFunctionNArguments* arguments)
{
    auto* rayHit = reinterpret_cast<RTCRayHit*>(arguments->rayhit);
    float t;
    Vec normal;
    if (arguments->valid[0] == 0 ||
        !meet(static_cast<const Shape*>(arguments->geometryUserPtr)[arguments->primID], rayHit->ray, &t,
              &normal))
        return;
    rayHit->ray.tfar = t;
    rayHit->hit.Ng_x = normal.x, rayHit->hit.Ng_y = normal.y, rayHit->hit.Ng_z = normal.z;
    rayHit->hit.geomID = arguments->geomID;
    rayHit->hit.primID = arguments->primID;
}

template <class Shape>
static void occludedFunction(const RTCOccludedFunctionNArguments* arguments)
{
    auto* ray = reinterpret_cast<RTCRay*>(arguments->ray);
    float t;
    Vec normal;
    if (arguments->valid[0] != 0 &&
        meet(static_cast<const Shape*>(arguments->geometryUserPtr)[arguments->primID], *ray, &t, &normal))
        ray->tfar = -std::numeric_limits<float>::infinity();
}

static void attach(RTCGeometry geometry, Kind kind)
{
    rtcCommitGeometry(geometry);
    rtcAttachGeometryByID(scene, geometry, kind);
    rtcReleaseGeometry(geometry);
}

template <class Shape>
static void attachShapes(RTCDevice device, Kind kind, std::vector<Shape>* shapes)
{
    if (shapes->empty())
        return;
    RTCGeometry geometry = rtcNewGeometry(device, RTC_GEOMETRY_TYPE_USER);
    rtcSetGeometryUserPrimitiveCount(geometry, static_cast<unsigned>(shapes->size()));
    rtcSetGeometryUserData(geometry, shapes->data());
    rtcSetGeometryBoundsFunction(
        geometry, [](const RTCBoundsFunctionArguments* arguments) { boundsFunction<Shape>(arguments); },
        nullptr);
    rtcSetGeometryIntersectFunction(geometry, intersectFunction<Shape>);
    rtcSetGeometryOccludedFunction(geometry, occludedFunction<Shape>);
    attach(geometry, kind);
}

static void attachTriangles(RTCDevice device, Kind kind, std::vector<Vec>* points,
                            std::vector<Triangle>* triangles)
{
    if (triangles->empty())
        return;
    points->push_back({}); // Embree reads 16 bytes of the last one
    RTCGeometry geometry = rtcNewGeometry(device, RTC_GEOMETRY_TYPE_TRIANGLE);
    rtcSetSharedGeometryBuffer(geometry, RTC_BUFFER_TYPE_VERTEX, 0, RTC_FORMAT_FLOAT3, points->data(), 0,
                               sizeof(Vec), points->size() - 1);
    rtcSetSharedGeometryBuffer(geometry, RTC_BUFFER_TYPE_INDEX, 0, RTC_FORMAT_UINT3, triangles->data(), 0,
                               sizeof(Triangle), triangles->size());
    attach(geometry, kind);
}

static void buildTree()
{
    RTCDevice device = rtcNewDevice("threads=2");
    scene = rtcNewScene(device);
    attachShapes(device, BALLS, &balls);
    attachShapes(device, TUBES, &tubes);
    attachShapes(device, DISCS, &discs);
    attachTriangles(device, FLAT, &corners, &flat);
    attachTriangles(device, SMOOTH, &smoothCorners, &smooth);
    rtcCommitScene(scene);
}

// ---- drawing ----

static RTCRay makeRay(Vec from, Vec along, float limit)
{
    RTCRay ray = {};
    ray.org_x = from.x, ray.org_y = from.y, ray.org_z = from.z;
    ray.dir_x = along.x, ray.dir_y = along.y, ray.dir_z = along.z;
    ray.tnear = EPSILON;
    ray.tfar = limit;
    ray.mask = ~0U;
    return ray;
}

/// The nearest plane that the ray meets, or null; shortens the ray.
static const Plane* meetPlanes(RTCRay* ray)
{
    const Plane* nearest = nullptr;
    for (const Plane& plane : planes) {
        const float t =
            (plane.distance - dot(plane.normal, origin(*ray))) / dot(plane.normal, direction(*ray));
        if (t > ray->tnear && t < ray->tfar) {
            ray->tfar = t;
            nearest = &plane;
        }
    }
    return nearest;
}

static bool isBlocked(Vec from, Vec along, float limit)
{
    RTCRay ray = makeRay(from, along, limit);
    if (meetPlanes(&ray) != nullptr)
        return true;
    RTCIntersectContext context;
    rtcInitIntersectContext(&context);
    rtcOccluded1(scene, &context, &ray);
    return ray.tfar < 0;
}

/// The normal that Embree gives, but for smooth triangles that between their corners.
static Vec normalOf(const RTCHit& hit)
{
    if (hit.geomID != SMOOTH)
        return {hit.Ng_x, hit.Ng_y, hit.Ng_z};
    const unsigned* corner = smooth[hit.primID].corner;
    return (1 - hit.u - hit.v) * smoothNormals[corner[0]] + hit.u * smoothNormals[corner[1]] +
           hit.v * smoothNormals[corner[2]];
}

static Vec trace(Vec from, Vec along, int level)
{
    if (level > MAX_LEVEL)
        return {};
    RTCRayHit found = {.ray = makeRay(from, along, std::numeric_limits<float>::infinity()), .hit = {}};
    const Plane* plane = meetPlanes(&found.ray);
    found.hit.geomID = RTC_INVALID_GEOMETRY_ID;
    RTCIntersectContext context;
    rtcInitIntersectContext(&context);
    rtcIntersect1(scene, &context, &found);
    const bool isInTree = found.hit.geomID != RTC_INVALID_GEOMETRY_ID;
    if (!isInTree && plane == nullptr)
        return BACKGROUND;

    const Material& material =
        materials[isInTree ? materialOf[found.hit.geomID][found.hit.primID] : plane->material];
    const Vec at = from + found.ray.tfar * along;
    Vec normal = unit(isInTree ? normalOf(found.hit) : plane->normal);
    if (dot(normal, along) > 0)
        normal = -1 * normal;
    const Vec mirror = along - 2 * dot(along, normal) * normal;
    Vec color = AMBIENT * material.color;
    for (const Vec& lamp : lamps) {
        const Vec toLamp = lamp - at;
        const float distance = std::sqrt(dot(toLamp, toLamp));
        const Vec towards = (1 / distance) * toLamp;
        const float cosine = dot(towards, normal), highlight = dot(towards, mirror);
        const bool isDiffuse = cosine > 0 && material.diffuse > 0;
        if ((!isDiffuse && !(highlight > 0)) || isBlocked(at, towards, distance))
            continue;
        if (isDiffuse)
            color = color + LAMP * cosine * material.diffuse * material.color;
        if (highlight > 0) {
            const float shine = LAMP * SPECULAR * std::pow(highlight, ROUGHNESS);
            color = color + Vec{shine, shine, shine};
        }
    }
    if (material.mirror > 0)
        color = color + material.mirror * trace(at, mirror, level + 1);
    return lesser(color, {1, 1, 1});
}

static void drawRows(int first, int end, int width, unsigned char* picture)
{
    _mm_setcsr(_mm_getcsr() | 0x8040); // what Embree asks for: numbers too small to matter count as 0
    const Vec forward = unit(-1 * eye), right = unit(cross(forward, {0, 0, 1})), up = cross(right, forward);
    const float size = std::tan(0.39269908F), step = 2 * size / static_cast<float>(width);
    for (int row = first; row < end; ++row)
        for (int column = 0; column < width; ++column) {
            const float u = (static_cast<float>(column) + 0.5F) * step - size;
            const float v = size - (static_cast<float>(row) + 0.5F) * step;
            const Vec color = trace(eye, unit(forward + u * right + v * up), 0);
            unsigned char* pixel = picture + 3 * (static_cast<size_t>(row) * static_cast<size_t>(width) +
                                                  static_cast<size_t>(column));
            pixel[0] = static_cast<unsigned char>(255 * color.x);
            pixel[1] = static_cast<unsigned char>(255 * color.y);
            pixel[2] = static_cast<unsigned char>(255 * color.z);
        }
}

int main(int argc, char** argv)
{
    if (argc != 4) {
        fputs("Usage: limit SCENE PICTURE WIDTH\n", stderr);
        return 2;
    }
    readScene(argv[1]);
    buildTree();
    const int width = atoi(argv[3]);
    std::vector<unsigned char> picture(3 * static_cast<size_t>(width) * static_cast<size_t>(width));
    std::thread other(drawRows, 0, width / 2, width, picture.data());
    drawRows(width / 2, width, width, picture.data());
    other.join();
    FILE* file = fopen(argv[2], "wb");
    if (file == nullptr) {
        perror(argv[2]);
        return 1;
    }
    fprintf(file, "P6\n%d %d\n255\n", width, width);
    fwrite(picture.data(), 1, picture.size(), file);
    return fclose(file) == 0 ? 0 : 1;
}
