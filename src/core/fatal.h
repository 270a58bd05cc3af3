#pragma once

#include <cstdio>

/// The end of a run that finds no memory for a queue or for the tree.
constexpr const char* OUT_OF_MEMORY = "\n\n VARLO is out of memory...\n";

/// Prints the message and ends the process with status 1. Safe to call from any number of threads: the first
/// caller is heard, the others wait for the end.
[[noreturn]] void fatal(const char* message, FILE* stream = stderr);

/// Prints the name of a file with the system's words for `reason`, an `errno`, on standard error, behind what
/// was said before, and ends the process.
[[noreturn]] void endForFile(const char* fileName, int reason, int status);
