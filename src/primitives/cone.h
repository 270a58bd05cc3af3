#pragma once

#include "primitives/primitive.h"

/// The wall between two circles, open at both ends. A cylinder is a cone with a slope of 0.
struct Cone {
    Object head;
    Vec base;
    double baseRadius;
    double axisOffset; // -(axis . base)
    Vec cap;
    double capRadius;
    Vec frameU, frameV;      // with axis, a right-angled frame of unit vectors
    Vec axis;                // unit, from base to cap
    double slope;            // growth of the radius per unit of axis
    double axisMin, axisMax; // coordinates along axis, measured from the world origin
};

extern const Operations coneOperations;

/// Makes the wall between the circles around `base` and `cap`, square to the line between the two points,
/// which must differ; both ends are open. Equal radii make a cylinder.
Object* makeCone(Vec base, double baseRadius, Vec cap, double capRadius);

/// Whether the ray parameter `t` is far enough, and lies between the two ends; both ends belong to the wall.
static inline bool coneHolds(const Cone& cone, const Ray& ray, double t)
{
    if (!(t > EPSILON)) // the limit itself is too near, unlike anywhere else
        return false;
    const double z = dot(cone.axis, ray.origin + t * ray.direction);
    return cone.axisMin <= z && z <= cone.axisMax;
}

/// The distance at which `ray` meets the wall, from outside or inside, in `*t`. False on a miss, and for
/// non-numbers.
static inline bool coneReach(const Cone& cone, const Ray& ray, double* t)
{
    // The ray in the frame of the cone, whose third coordinate counts from the base along the axis.
    const Vec w = ray.origin - cone.base;
    const double uo = dot(cone.frameU, w);
    const double vo = dot(cone.frameV, w);
    const double ao = dot(cone.axis, w);
    const double ud = dot(cone.frameU, ray.direction);
    const double vd = dot(cone.frameV, ray.direction);
    const double ad = dot(cone.axis, ray.direction);

    // The double cone x x + y y = (r + k z) (r + k z), with the ray put in: a t t + b t + c = 0.
    const double k = cone.slope;
    const double r = cone.baseRadius;
    const double a = ud * ud + vd * vd - k * k * ad * ad;
    const double b = 2 * (ud * uo + vd * vo - k * k * ao * ad - r * k * ad);
    const double c = uo * uo + vo * vo - (k * ao + r) * (k * ao + r);
    if (a == 0.0) {
        // Parallel to the wall. If b is 0 too, t is infinite, the point made of non-numbers, and that misses.
        *t = -c / b;
        return coneHolds(cone, ray, *t);
    }
    const double disc = b * b - 4 * a * c;
    if (!(disc >= 0.0))
        return false;
    const double s = std::sqrt(disc);
    // The nearer point first; a can be negative on a cone.
    *t = (a > 0.0 ? -b - s : s - b) / (2 * a);
    if (coneHolds(cone, ray, *t))
        return true;
    *t = (a > 0.0 ? s - b : -b - s) / (2 * a);
    return coneHolds(cone, ray, *t);
}

/// Points away from the axis; on a cone it is tilted, to stand square on the wall.
static inline Vec coneNormal(const Cone& cone, Vec point)
{
    const double d = -(dot(cone.axis, point) + cone.axisOffset);
    const Vec inBasePlane = point + d * cone.axis;
    const Vec radial = unit(inBasePlane - cone.base);
    return unit(radial - cone.slope * cone.axis);
}
