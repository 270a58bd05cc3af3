#pragma once

#include "bounds/packed.h"

// A sieve holds up to eight primitives as floats, side by side, so that one test finds those that a ray may
// hit. It errs to one side only: what the exact test of a primitive finds always passes. So most records are
// never read. Sieves stand in a grouped tree at the ends, where else a node would hold primitives.

enum SieveKind { NO_SIEVE, FACE_SIEVE, BALL_SIEVE, PLANE_SIEVE };

/// Triangles and patches: a corner, and the edges from there to the two others. In a lane that is not in use
/// the corner is no number.
struct alignas(64) FaceSieve {
    float corner[3][LANES], edge1[3][LANES], edge2[3][LANES];
    PackedMember members[LANES];
    float longest;   // of the edges
    float size;      // how far from the middle of the world a corner lies at most, and longest
    float border;    // how far beside its edges a face may be hit
    unsigned used;   // lanes with a face, a bit each
    unsigned always; // those of which floats cannot tell
};

/// Spheres. In a lane that is not in use the centre is no number.
struct alignas(64) BallSieve {
    float center[3][LANES], radius[LANES];
    PackedMember members[LANES];
    float size;    // how far from the middle of the world a centre lies at most, and its radius
    unsigned used; // lanes with a sphere, a bit each
};

/// Planes: the points p with normal . p = distance. In a lane that is not in use the normal is 0, and so no
/// ray travels along it.
struct alignas(64) PlaneSieve {
    float normal[3][LANES], distance[LANES];
    PackedMember members[LANES];
    float size;    // how far from the middle of the world a plane lies at most
    unsigned used; // lanes with a plane, a bit each
};

/// The kind of sieve for a type of primitive.
static inline SieveKind sieveFor(int type)
{
    return type == TRIANGLE || type == PATCH ? FACE_SIEVE
           : type == SPHERE                  ? BALL_SIEVE
           : type == PLANE                   ? PLANE_SIEVE
                                             : NO_SIEVE;
}

static inline PackedMember memberOf(const void* sieve, SieveKind kind)
{
    return reinterpret_cast<PackedMember>(sieve) | NODE_TAG | static_cast<PackedMember>(kind) << FOLDED_SHIFT;
}

/// What a node or sieve of a grouped tree is.
static inline SieveKind sieveOf(PackedMember member)
{
    return static_cast<SieveKind>(foldedNodesOf(member));
}

static inline const FaceSieve& faceSieveOf(PackedMember member)
{
    return *reinterpret_cast<const FaceSieve*>(nodeOf(member));
}

static inline const BallSieve& ballSieveOf(PackedMember member)
{
    return *reinterpret_cast<const BallSieve*>(nodeOf(member));
}

static inline const PlaneSieve& planeSieveOf(PackedMember member)
{
    return *reinterpret_cast<const PlaneSieve*>(nodeOf(member));
}

/// Fills a sieve with `count` primitives of its kind, 1 to LANES.
void fillSieve(FaceSieve* sieve, const Object* const* faces, int count);
void fillSieve(BallSieve* sieve, const Object* const* balls, int count);
void fillSieve(PlaneSieve* sieve, const Object* const* planes, int count);
