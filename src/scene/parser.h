#pragma once

/// Gives every global that a scene or the command line changes its start value. Records stay where they are,
/// but for the named colours.
void resetScene();

/// Reads a scene into the globals and prints its counts. Returns 0, or -1 with a message if a camera, the
/// settings or a surface is missing. A fault in the text ends the process.
int parseFile(const char* fileName);

/// Reads one scene file, and those that it includes, to its end. Returns 0. A file that cannot be opened or
/// read ends the process with status -1.
int parseScene(const char* fileName);
