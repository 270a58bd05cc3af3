#pragma once

#include "primitives/cone.h"
#include "primitives/patch.h"
#include "primitives/plane.h"
#include "primitives/polygon.h"
#include "primitives/ring.h"
#include "primitives/sphere.h"
#include "primitives/triangle.h"

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <random>
#include <vector>

/// Numbers that are the same in every run.
struct Random {
    std::minstd_rand engine;

    int below(int end)
    {
        return static_cast<int>(engine() % static_cast<unsigned>(end));
    }
    double in(double low, double high)
    {
        return low + (high - low) * (below(1 << 30) + 0.5) / (1 << 30);
    }
    Vec point(double size)
    {
        const double x = in(-size, size), y = in(-size, size);
        return {x, y, in(-size, size)};
    }
};

/// Vertices that a record can take over.
inline Vec* onHeap(std::initializer_list<Vec> points)
{
    auto* copy = static_cast<Vec*>(malloc(points.size() * sizeof(Vec)));
    std::copy(points.begin(), points.end(), copy);
    return copy;
}

/// Adds a parallelogram.
inline void addFace(Vec corner, Vec side, Vec otherSide)
{
    makePolygon(onHeap({corner, corner + side, corner + side + otherSide, corner + otherSide}), 4);
}

/// Adds an object of any kind but a plane.
inline void addAny(Random& random, Vec center, double size)
{
    const Vec a = center + random.point(size), b = center + random.point(size);
    const Vec c = center + random.point(size);
    const double r = random.in(0.2, 0.5) * size, s = random.below(2) * random.in(0, 0.5) * size;
    Vec corners[] = {a, random.point(1), b, random.point(1), c, random.point(1)};
    const int kind = random.below(6);
    if (kind == 0)
        makeSphere(center, r);
    else if (kind == 1)
        makeRing(center, a - b, std::min(r, s), std::max(r, s));
    else if (kind == 2)
        makeTriangle(onHeap({a, b, c}));
    else if (kind == 3)
        addFace(a, b - a, c - a);
    else if (kind == 4)
        makeCone(a, r, b, random.below(2) == 0 ? s : r);
    else
        makePatch(corners);
}

/// Adds six polygons square to the axes. Boxes stand beside and inside each other, with faces in common.
inline void addBox(Random& random)
{
    const Vec low = {1.0 * random.below(5), 1.0 * random.below(5), 1.0 * random.below(5)};
    const Vec sides[] = {{1.0 + random.below(3), 0, 0}, {0, 1.0 + random.below(3), 0}, {0, 0, 1}};
    for (int i = 0; i < 3; ++i) {
        addFace(low, sides[i], sides[(i + 1) % 3]);
        addFace(low + sides[(i + 2) % 3], sides[i], sides[(i + 1) % 3]);
    }
}

/// Adds six patches around a common corner. Each shares an edge with the next one.
inline void addFan(Random& random)
{
    const Vec center = random.point(5);
    Vec rim[6];
    for (int i = 0; i < 6; ++i)
        rim[i] = center + Vec{std::cos(i * PI / 3), std::sin(i * PI / 3), random.in(-0.3, 0.3)};
    for (int i = 0; i < 6; ++i) {
        Vec corners[] = {center, {0, 0, 1}, rim[i], random.point(1), rim[(i + 1) % 6], random.point(1)};
        makePatch(corners);
    }
}

/// A way to fill a scene. Each call adds one object or a small group.
struct SceneKind {
    const char* name;
    void (*add)(Random& random);
    bool isEnclosed = true; // no hit lies outside the bounds of its object
};

inline constexpr SceneKind SCENE_KINDS[] = {
    {"spread small objects", [](Random& random) { addAny(random, random.point(6), 0.8); }},
    {"overlapping big objects", [](Random& random) { addAny(random, random.point(2), 4.0); }},
    {"fans of patches", addFan},
    {"boxes", addBox},
    {"planes among spheres",
     [](Random& random) {
         makeSphere(random.point(5), random.in(0.2, 1));
         if (random.below(6) == 0)
             makePlane(random.point(1), random.in(1, 6));
     }},
    {"every object twice",
     [](Random& random) {
         Random again = random;
         addAny(again, again.point(3), 2.0);
         addAny(random, random.point(3), 2.0);
     }},
    {"bent polygons", // seen where a corner off the plane is projected to, which may be outside the bounds
     [](Random& random) {
         makePolygon(onHeap({random.point(3), random.point(3), random.point(3), random.point(3)}), 4);
     },
     false},
    {"concentric spheres and tubes",
     [](Random& random) {
         makeSphere({0, 0, 0}, 0.25 * (1 + random.below(16)));
         if (random.below(4) == 0)
             makeCone({0, 0, -4}, 0.25 * (1 + random.below(16)), {0, 0, 4}, 1);
     }},
};

/// Adds at least `count` objects to the empty myObjectList, not yet built into a tree, and returns them.
inline std::vector<const Object*> addObjects(const SceneKind& kind, int count, Random& random)
{
    while (nPrims < count)
        kind.add(random);
    std::vector<const Object*> objects;
    for (const Object* object = myObjectList; object != nullptr; object = object->next)
        objects.push_back(object);
    return objects;
}

/// A ray through the neighbourhood of those scenes. Now and then it runs along an axis.
inline Ray randomRay(Random& random)
{
    const Vec origin = random.point(8);
    if (random.below(8) == 0)
        return {origin, (random.below(2) == 0 ? 1.0 : -1.0) * Slab[random.below(3)]};
    return {origin, unit(random.below(4) == 0 ? random.point(1) : random.point(3) - origin)};
}
