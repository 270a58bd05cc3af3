#pragma once

/// Reads the settings file `fileName` and the 3DS model that it names into the scene: the camera, a point
/// light for each light, a patch for each face. The picture is named after the settings file unless that says
/// otherwise. Returns 0, or -1 with a message if there is no model to be had or no memory. A settings file
/// that cannot be opened or has a fault ends the process with status -1.
int parse3ds(const char* fileName);

/// The field of view in degrees of a lens with a focal length of `lens` millimetres, which is limited to 15
/// to 1000.
float computeFOV(float lens);
