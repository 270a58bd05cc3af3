#pragma once

#include "primitives/primitive.h"

/// A flat triangle whose shading normal is interpolated between its corners.
struct Patch {
    Object head;
    Vec corner;     // corner 0
    Vec inverse[3]; // rows: weight of corner 1, weight of corner 2, unit face normal
    Vec normals[3]; // unit, on the side to which inverse row 2 points; last, since no test reads them
};

extern const Operations patchOperations;

/// Turns the three normals of `array`, in the order P0, N0, P1, N1, P2, N2, in place to the side of the face
/// to which (P1 - P0) x (P2 - P0) points. A normal square to the face is negated too.
void checkPatch(Vec* array);

/// Divides the cofactor of each entry of the 3 by 3 matrix `m` by the determinant. Both arrays hold rows and
/// must not overlap. The result is the transpose of the inverse; a singular matrix gives non-numbers or
/// infinities.
void invertMatrix(const Vec* m, Vec* out);

/// Makes a smooth-shaded triangle, seen from both sides, with a normal for each corner. `array` is as for
/// checkPatch, which turns its normals; it stays with the caller, and the normals need not be unit. A normal
/// of length 0 is replaced by that of the face. A patch of no area is allowed and never hit.
Object* makePatch(Vec* array);

/// The weights of corners 1 and 2 at the parameter `t` of `ray`.
static inline void patchWeights(const Patch& patch, const Ray& ray, double t, double* u, double* v)
{
    const Vec q = ray.origin + t * ray.direction - patch.corner;
    *u = dot(patch.inverse[0], q);
    *v = dot(patch.inverse[1], q);
}

/// The normal between those of the corners, not yet unit.
static inline Vec patchHitNormal(const Patch& patch, double u, double v)
{
    const double w = 1.0 - u - v;
    return w * patch.normals[0] + u * patch.normals[1] + v * patch.normals[2];
}

/// The same, unit.
static inline Vec patchNormal(const Hit& hit)
{
    return unit(hit.hitNormal);
}

/// The distance at which `ray` meets the plane of the patch, in `*t`. EPSILON itself is steep enough, and far
/// enough. False on a miss, and for non-numbers.
static inline bool patchPlaneReach(const Patch& patch, const Ray& ray, double* t)
{
    const Vec& normal = patch.inverse[2];
    const double den = dot(normal, ray.direction);
    if (!(den <= -EPSILON || den >= EPSILON))
        return false;
    *t = dot(patch.corner - ray.origin, normal) / den;
    return *t >= EPSILON;
}

/// The same for the patch itself, to which edges and corners belong, and the weights of corners 1 and 2
/// there, in `*u` and `*v`.
static inline bool patchReach(const Patch& patch, const Ray& ray, double* t, double* u, double* v)
{
    if (!patchPlaneReach(patch, ray, t))
        return false;
    patchWeights(patch, ray, *t, u, v);
    // One jump for the three: which of them fails is anybody's guess.
    return (static_cast<int>(*u >= 0.0) & static_cast<int>(*v >= 0.0) & static_cast<int>(*u + *v <= 1.0)) !=
           0;
}
