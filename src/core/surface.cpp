#include "core/surface.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

static constinit const SurfaceAttrib* latest = nullptr; // that an object was given

/// Whether all bits are the same: a zero has a sign, and something that is no number is like itself.
static bool isSame(const SurfaceAttrib& a, const SurfaceAttrib& b)
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(&a); // none of them is padding
    return std::equal(bytes, bytes + sizeof a, reinterpret_cast<const unsigned char*>(&b));
}

bool setSurfaceAttrib(Object* object, const SurfaceAttrib& wanted)
{
    if (latest == nullptr || !isSame(wanted, *latest)) {
        auto* record = static_cast<SurfaceAttrib*>(malloc(sizeof wanted));
        if (record == nullptr)
            return false;
        *record = wanted;
        latest = record;
    }
    object->surface = latest;
    return true;
}

void forgetSurface()
{
    latest = nullptr;
}

void printSurfaceAttrib(const SurfaceAttrib* surface)
{
    printf("Color: red = %g, green = %g, blue = %g\n", surface->color.red, surface->color.green,
           surface->color.blue);
    printf("Ambient: ambient = %g\nDiffuse: diffuse = %g\nBrilliance: brilliance = %g\n"
           "Specular: specular = %g\nRoughness: roughness = %g\nReflection: reflection = %g\n",
           surface->ambient, surface->diffuse, surface->brilliance, surface->specular, surface->roughness,
           surface->reflection);
}
