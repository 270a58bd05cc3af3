#include "core/records.h"

#include "core/data.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

static constexpr size_t BLOCK_SIZE = 1 << 18; // large enough for pages that the system has cleared

static constinit char* unused = nullptr; // the rest of the latest block
static constinit size_t left = 0;        // bytes of it

void* newRecord(size_t size)
{
    size = (size + alignof(Object) - 1) / alignof(Object) * alignof(Object);
    if (size > left) {
        const size_t blockSize = std::max(BLOCK_SIZE, size);
        auto* block = static_cast<char*>(calloc(1, blockSize));
        if (block == nullptr)
            return nullptr;
        unused = block;
        left = blockSize;
    }
    left -= size;
    return std::exchange(unused, unused + size);
}
