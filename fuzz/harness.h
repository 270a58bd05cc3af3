#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

// What the fuzzers share. The program reads one scene and ends, and a fault in the scene ends it by `exit`; a
// fuzzer goes through millions of inputs in one process. So the linker puts functions of the harness in place
// of those that end the process, open files and take memory.

struct File {
    std::string_view name, text;
};

/// Runs `body` on a fresh scene until it returns, or until it would end the process. It finds the given files
/// and no others. Its memory and the files it left open are given back.
void runWith(std::span<const File> files, void (*body)());

/// Builds the tree of bounds over the scene that was read, sends some rays into it, and compares what the two
/// walks through the tree find: a difference is a finding.
void shootRays();

inline std::string_view textOf(const std::uint8_t* data, size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}
