#pragma once

#include "primitives/cone.h"
#include "primitives/patch.h"
#include "primitives/plane.h"
#include "primitives/polygon.h"
#include "primitives/ring.h"
#include "primitives/sphere.h"
#include "primitives/triangle.h"

// The choice among the kinds of primitive. A new kind has its rows here, in the switch, and in the source, in
// the table, in the switch of the normals, and where its hits tell more than a distance.

/// Tests a primitive: 1 and a filled hit, or 0; the hit is then not to be read.
int ObjectIntersect(const Object* self, const Ray* ray, Hit* hit);

/// The unit normal at the point of that hit, turned to no special side.
Vec ObjectNormal(const Object* self, Vec point, const Hit* hit);

/// Fills the hit of a ray that is known to meet the primitive at `distance`.
void fillHit(const Object* self, const Ray* ray, double distance, Hit* hit);

/// Prints the data of a primitive.
void ObjectPrint(const Object* self);

/// Calls ObjectPrint on each record and returns their number. For debugging.
int printList(const Object* head);

/// The distance at which `ray` meets the primitive `object` of this type, in `*t`. False on a miss, and for
/// non-numbers. The walk has it in its loops: a call would store and load again what it holds in registers.
[[gnu::always_inline]] static inline bool reach(const Object* object, int type, const Ray& ray, double* t)
{
    double u, v;
    switch (type) {
    case SPHERE:
        return sphereReach(recordOf<Sphere>(object), ray, t);
    case PLANE:
        return planeReach(recordOf<Plane>(object), ray, t);
    case RING:
        return ringReach(recordOf<Ring>(object), ray, t);
    case TRIANGLE:
        return triangleReach(recordOf<Triangle>(object), ray, t);
    case POLYGON:
        return polygonReach(recordOf<Polygon>(object), ray, t);
    case CONE:
        return coneReach(recordOf<Cone>(object), ray, t);
    default:
        return patchReach(recordOf<Patch>(object), ray, t, &u, &v);
    }
}

/// The same for a triangle or patch if the ray is known to pass well within its edges: the plane alone tells.
static inline bool reachWithin(const Object* object, int type, const Ray& ray, double* t)
{
    if (type == PATCH)
        return patchPlaneReach(recordOf<Patch>(object), ray, t);
    const auto& triangle = recordOf<Triangle>(object);
    return faceReach(triangle.normal, triangle.offset, ray, t);
}
