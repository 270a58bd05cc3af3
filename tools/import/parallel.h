#pragma once

#include <cstddef>
#include <functional>

constexpr size_t BLOCK = 512; // faces that a thread takes at a time

/// The blocks in which so many faces are taken.
constexpr size_t blocksOf(size_t faces)
{
    return (faces + BLOCK - 1) / BLOCK;
}

/// Calls `work` once with the number of each block below `count`, on several threads, as many as there are
/// processors; each thread takes the first block that is left. Comes back when all is done. Threads that
/// cannot be had are done without.
void forBlocks(size_t count, const std::function<void(size_t block)>& work);
