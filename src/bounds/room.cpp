#include "bounds/room.h"

#include "bounds/bound.h"
#include "core/settings.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

// How full can the queue get? When the heap takes out an entry of key K, every node that it has opened begins
// before K, and what waits in the queue begins at K or behind. So if a member of an opened node waits, that
// node reaches over K: the point of the ray at K lies within its bounds. Each of these nodes has left the
// queue and put its members in, and nothing else waits; so at any moment the queue holds at most 1 and,
// summed over nodes around one point, their members less one. Only those members count that a ray can still
// come to, which depends on the octant of its direction.
//
// The greatest sum over all points is bounded by cutting space in half again and again, as long as the sum
// over what touches a piece, for the worst octant, is too large. A node that is small beside the piece counts
// with all that is below it: that is its primitives less one; a larger one is opened. The search ends without
// an answer where the sum in the middle of a piece is too large, or when it has done its share of work: the
// scenes that it is for take some eight parts for each primitive.
//
// The keys are rounded, so the bounds are taken a little wider: by a few roundings of their own coordinates
// and of those of the origin, which is why that must not lie too far away.

// Some roundings of a double.
static constexpr double ROUNDING = 1e-15;
// How many times as far as the scene reaches a ray may start.
static constexpr double REACH = 16.0;
static constexpr int MOST_DEPTH = 200, MOST_PARTS = 1 << 16;
static constexpr long PARTS_FOR_ALL = 1 << 16, PARTS_FOR_PRIMITIVE = 12;

namespace
{
/// A node that touches a piece: one that is opened counts alone, another one with all that is below it.
struct Part {
    const Object* node;
    bool isOpen;
};

struct Piece {
    double low[3], high[3];
};

struct Search {
    double widening; // of bounds, whatever their coordinates
    long left;       // parts that it may still handle
    Part parts[MOST_PARTS];
};

/// A number for each octant of directions, of which bit i is set for those that go down axis i.
using Octants = int __attribute__((vector_size(32)));
} // namespace

static bool reachesUp(const Object* node, int axis, double from, const Search& search)
{
    const double high = node->boundsMax[axis];
    return high + (std::abs(high) * ROUNDING + search.widening) >= from;
}

static bool reachesDown(const Object* node, int axis, double from, const Search& search)
{
    const double low = node->boundsMin[axis];
    return low - (std::abs(low) * ROUNDING + search.widening) <= from;
}

static bool touches(const Object* node, const Piece& piece, const Search& search)
{
    for (int axis = 0; axis < 3; ++axis)
        if (!reachesUp(node, axis, piece.low[axis], search) ||
            !reachesDown(node, axis, piece.high[axis], search))
            return false;
    return true;
}

static double longestSide(const double low[3], const double high[3])
{
    return std::max({high[0] - low[0], high[1] - low[1], high[2] - low[2]});
}

/// Adds what an open node puts into the queue for a ray that is in `piece`: the members that it can still
/// come to, less the node.
static void addGain(const Object* node, const Piece& piece, const Search& search, Octants* held)
{
    static constexpr int UP[3] = {0x55, 0x33, 0x0F}, ALL = 0xFF;
    static constexpr Octants BITS = {1, 2, 4, 8, 16, 32, 64, 128};
    Octants gain = Octants{} - 1;
    for (const Object* member = childrenOf(node).first; member != nullptr; member = member->next) {
        int octants = ALL;
        for (int axis = 0; axis < 3; ++axis)
            octants &= (reachesUp(member, axis, piece.low[axis], search) ? UP[axis] : 0) |
                       (reachesDown(member, axis, piece.high[axis], search) ? ALL - UP[axis] : 0);
        gain -= (BITS & octants) != 0; // a comparison gives -1 for true
    }
    *held += gain > 0 ? gain : Octants{};
}

/// The most that the queue holds while a ray is in `piece`, which the `count` parts touch. If not `isWhole`,
/// only those that are open and touch it count.
static int mostHeld(const Piece& piece, const Part* parts, int count, bool isWhole, const Search& search)
{
    Octants held = Octants{} + 1;
    for (int i = 0; i < count; ++i) {
        const auto [node, isOpen] = parts[i];
        if (isOpen && (isWhole || touches(node, piece, search)))
            addGain(node, piece, search, &held);
        else if (!isOpen && isWhole)
            held += childrenOf(node).primitives - 1;
    }
    int most = 0;
    for (int octant = 0; octant < 8; ++octant)
        most = std::max(most, held[octant]);
    return most;
}

/// Adds `node` to the parts if it touches `piece`; if it is larger, opened and with its members behind it.
/// False if there are too many.
static bool addPart(const Object* node, const Piece& piece, double length, Search* search, int* count)
{
    if (!touches(node, piece, *search))
        return true;
    if (*count == MOST_PARTS)
        return false;
    const bool isOpen = longestSide(node->boundsMin, node->boundsMax) > length;
    search->parts[(*count)++] = {.node = node, .isOpen = isOpen};
    if (isOpen)
        for (const Object* member = childrenOf(node).first; member != nullptr; member = member->next)
            if (member->type == BOUNDING_NODE && !addPart(member, piece, length, search, count))
                return false;
    return true;
}

/// Whether the queue has room wherever in `piece` a ray is; the parts from `first` to `end` touch it.
static bool hasRoom(const Piece& piece, int first, int end, int depth, Search* search)
{
    int held = 1; // for any direction, of which an octant seldom has less than half
    for (int i = first; i < end && held / 2 < iPQSize; ++i) {
        const ChildList& children = childrenOf(search->parts[i].node);
        held += (search->parts[i].isOpen ? children.count : children.primitives) - 1;
    }
    const Part* parts = search->parts + first;
    if (held < iPQSize ||
        (held / 2 < iPQSize && mostHeld(piece, parts, end - first, true, *search) < iPQSize))
        return true;
    Piece middle;
    int axis = 0; // the longest
    for (int i = 0; i < 3; ++i) {
        middle.low[i] = middle.high[i] = (piece.low[i] + piece.high[i]) * 0.5;
        if (piece.high[i] - piece.low[i] > piece.high[axis] - piece.low[axis])
            axis = i;
    }
    search->left -= end - first;
    if (depth == MOST_DEPTH || search->left < 0 ||
        mostHeld(middle, parts, end - first, false, *search) >= iPQSize)
        return false;
    for (const bool isUpper : {false, true}) {
        Piece half = piece;
        (isUpper ? half.low : half.high)[axis] = middle.low[axis];
        const double length = longestSide(half.low, half.high);
        int halfEnd = end;
        for (int i = first; i < end; ++i) {
            const Part part = search->parts[i];
            if (!part.isOpen) {
                if (!addPart(part.node, half, length, search, &halfEnd))
                    return false;
            } else if (touches(part.node, half, *search)) {
                if (halfEnd == MOST_PARTS)
                    return false;
                search->parts[halfEnd++] = part;
            }
        }
        if (!hasRoom(half, end, halfEnd, depth + 1, search))
            return false;
    }
    return true;
}

double originsWithRoom()
{
    const Object* root = myObjectList;
    Piece all;
    double extent = 0.0;
    for (int axis = 0; axis < 3; ++axis) {
        all.low[axis] = root->boundsMin[axis];
        all.high[axis] = root->boundsMax[axis];
        extent = std::max({extent, std::abs(all.low[axis]), std::abs(all.high[axis]),
                           std::abs(coordinate(myViewPoint.position, axis))});
    }
    const double farthest = REACH * extent;
    if (!std::isfinite(farthest)) // such a piece has no middle
        return 0.0;
    auto* search = static_cast<Search*>(malloc(sizeof(Search)));
    if (search == nullptr)
        return 0.0;
    search->widening = farthest * ROUNDING;
    search->left = PARTS_FOR_ALL + PARTS_FOR_PRIMITIVE * childrenOf(root).primitives;
    int count = 0;
    const bool fits = addPart(root, all, longestSide(all.low, all.high), search, &count) &&
                      hasRoom(all, 0, count, 0, search);
    free(search);
    return fits ? farthest : 0.0;
}
