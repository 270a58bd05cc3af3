#pragma once

#include "vec.h"

#include <string>

enum Axis { AXIS_AUTO, AXIS_X, AXIS_Y, AXIS_Z };
enum View { VIEW_CORNER, VIEW_FRONT, VIEW_BACK, VIEW_LEFT, VIEW_RIGHT, VIEW_TOP };

/// What the command line asks for.
struct Options {
    const char* input = nullptr;
    const char* output = nullptr; // null: standard output
    bool list = false;
    bool geometry = false;
    Axis up = AXIS_AUTO;
    double size = 10.0; // longest side of the model's box in the scene
    bool keepSize = false;
    bool flat = false;
    bool smoothGiven = false; // then the normals of the file do not count
    double smooth = 30.0;     // degrees
    int colours = 64;         // at most, for each material with a picture or with colours at its vertices
    double split = 0.0;       // longest edge of a face that carries a picture; 0: a hundredth of the size
    std::string textures;     // folder to look into for pictures
    int camera = -1;          // -1: the first one
    View view = VIEW_CORNER;
    bool viewGiven = false; // then the cameras of the file do not count
    bool floor = true;
    Vec at;   // where the foot of the model stands
    Vec turn; // degrees about x, then y, then z
};

/// Fills `options` from the command line. Faults, `--help` and `--version` are printed here, and end the
/// program with their status, which is 2 for a fault.
void readOptions(int argc, char** argv, Options& options);
