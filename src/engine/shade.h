#pragma once

#include "core/data.h"

/// The colour of one hit, not limited: ambient light, what each light adds, reflection, refraction, and the
/// haze over the sum. `normal` faces the ray. It recurses through `trace`, with `level` raised by one.
void shade(const Object* object, const Ray* ray, Vec normal, Vec point, Color* color, int* level,
           const Hit* hit);

/// The direction of a ray that goes on behind a surface between indices `n1` and `n2`. Returns 1, or 0 at
/// total reflection, where the result is a direction all the same.
int refractionDirection(double n1, double n2, Vec incoming, Vec normal, Vec* result);
