#pragma once

#include <span>

/// An option in its two forms, and the one operation, or the two for two numbers, that takes its value.
struct Option {
    const char* forms[2];
    void (*name)(const char* value) = nullptr;
    void (*number)(int value) = nullptr;
    void (*second)(int value) = nullptr; // a second number
    void (*flag)() = nullptr;
    bool isInput = false;
};

extern const std::span<const Option> options;

/// Turns the arguments into settings. Returns only if they are good and name an input; else it prints the
/// usage text and ends the process with status -1. It runs twice, ahead of the scene and behind it, so that
/// the command line beats the scene.
void parseArgs(int argc, char* argv[]);

/// Prints the help text.
void showUsage();

/// Prints the banner.
void showCredits();
