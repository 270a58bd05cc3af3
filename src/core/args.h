#pragma once

/// Turns the arguments into settings. Returns only if they are good and name an input; else it prints the
/// usage text and ends the process with status -1. It runs twice, ahead of the scene and behind it, so that
/// the command line beats the scene.
void parseArgs(int argc, char* argv[]);

/// Prints the help text.
void showUsage();

/// Prints the banner.
void showCredits();
