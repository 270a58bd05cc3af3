#include "core/records.h"

#include "core/data.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <sys/mman.h>
#include <utility>

// Blocks of a size that the system clears. After so many of them the scene is large: the tree visits records
// in an order of its own, so each visit has to look up the address of another page, and large pages are
// fewer.
static constexpr size_t BLOCK_SIZE = 1 << 18, LARGE_BLOCK_SIZE = 1 << 25, LARGE_PAGE_SIZE = 1 << 21;
static constexpr int MANY_BLOCKS = 64;

static constinit char* unused = nullptr; // the rest of the latest block
static constinit size_t left = 0;        // bytes of it
static constinit int blocks = 0;

/// A block in large pages, where the system has any; null without memory.
static char* newLargeBlock()
{
#ifdef MADV_HUGEPAGE
    void* memory = mmap(nullptr, LARGE_BLOCK_SIZE + LARGE_PAGE_SIZE, PROT_READ | PROT_WRITE,
                        MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        return nullptr;
    char* block = static_cast<char*>(memory) + (-reinterpret_cast<uintptr_t>(memory) & (LARGE_PAGE_SIZE - 1));
    madvise(block, LARGE_BLOCK_SIZE, MADV_HUGEPAGE); // no more than a wish
    return block;
#else
    return nullptr;
#endif
}

/// Begins another block of at least `size` bytes. False without memory; then nothing changed.
static bool beginBlock(size_t size)
{
    size_t blockSize = LARGE_BLOCK_SIZE;
    char* block = blocks >= MANY_BLOCKS && size <= blockSize ? newLargeBlock() : nullptr;
    if (block == nullptr) {
        blockSize = std::max(BLOCK_SIZE, size);
        block = static_cast<char*>(calloc(1, blockSize));
    }
    if (block == nullptr)
        return false;
    unused = block;
    left = blockSize;
    ++blocks;
    return true;
}

void* newRecord(size_t size)
{
    size = (size + alignof(Object) - 1) / alignof(Object) * alignof(Object);
    if (size > left && !beginBlock(size))
        return nullptr;
    left -= size;
    return std::exchange(unused, unused + size);
}

void resetRecords()
{
    unused = nullptr;
    left = 0;
    blocks = 0;
}
