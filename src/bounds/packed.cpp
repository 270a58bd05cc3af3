#include "bounds/packed.h"

#include <algorithm>
#include <cstdlib>

constinit PackedMember packedRoot = 0;
constinit void* packedMemory = nullptr;
constinit Folded* packedFolded = nullptr;
constinit bool packedEncloses = true;
constinit bool packedIsGrouped = false;
constinit double packedReach = 0.0;

float packedBound(double value)
{
    return static_cast<float>(std::clamp(value, -1e30, 1e30));
}

void clearNode(PackedNode* node)
{
    for (int row = 0; row < 6; ++row)
        std::fill_n(node->planes[row], LANES, row < 3 ? INFINITE : -INFINITE);
    std::fill_n(node->members, LANES, PackedMember{0});
}

void releasePackedTree()
{
    free(packedMemory);
    free(packedFolded);
    packedRoot = 0;
    packedMemory = nullptr;
    packedFolded = nullptr;
    packedIsGrouped = false;
}
