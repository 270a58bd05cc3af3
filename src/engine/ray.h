#pragma once

#include "core/data.h"

// The camera and the rays that it sends: screenInit once, then initRay and shoot for each sample.

/// Computes the camera frame from myViewPoint, once, before any thread starts. Running it a second time would
/// round `up` again and move last bits.
void screenInit();

/// Gives a sampler its ray, with the eye as origin. One ray serves a whole band.
void startRay(Ray* ray);

/// Points `ray` through the picture position (x, y), in pixels, y downwards. Leaves the origin alone.
void initRay(double x, double y, Ray* ray);

/// The colour seen along `ray`: one ray, or the mean of myViewPoint.samples rays through the lens. `level` is
/// the sampler's depth counter.
void shoot(const Ray* ray, Color* color, int* level);

/// Follows one ray. Fills `color` with no component above 1.0 and returns the distance to the hit, NO_LIMIT
/// for a miss, or 0.0, with black, beyond the depth limit. Leaves `level` as it was.
double trace(const Ray* ray, Color* color, int* level);
