#include "engine/random.h"

#include <array>
#include <cstdint>

// An additive generator, the method of Mitchell and Moore (Knuth, The Art of Computer Programming, volume 2,
// section 3.2.2): each word is the sum of those 31 and 3 places before it, modulo 2^32, and gives its upper
// 31 bits as a draw.
constexpr size_t LONG_LAG = 31, SHORT_LAG = 3;
using Words = std::array<uint32_t, LONG_LAG>;

// The step as a polynomial is x^31 = x^28 + 1. So the word n places ahead is a sum over 31 words in a row,
// and its weights are the coefficients of x^n, reduced by that equation. (The method of Haramoto, Matsumoto,
// Nishimura, Panneton and L'Ecuyer, Efficient Jump Ahead for F2-Linear Random Number Generators, 2008, with
// words in place of bits.)

static constexpr Words product(const Words& a, const Words& b)
{
    std::array<uint32_t, 2 * LONG_LAG - 1> wide{};
    for (size_t i = 0; i < LONG_LAG; ++i)
        for (size_t k = 0; k < LONG_LAG; ++k)
            wide[i + k] += a[i] * b[k];
    for (size_t i = wide.size() - 1; i >= LONG_LAG; --i) {
        wide[i - LONG_LAG] += wide[i];
        wide[i - SHORT_LAG] += wide[i];
    }
    Words result{};
    for (size_t i = 0; i < LONG_LAG; ++i)
        result[i] = wide[i];
    return result;
}

/// The weights of a jump over `places` words.
static constexpr Words jump(size_t places)
{
    Words result{1}, square{0, 1};
    for (; places != 0; places >>= 1) {
        if ((places & 1) != 0)
            result = product(result, square);
        square = product(square, square);
    }
    return result;
}

namespace
{
/// A thread's place in the sequence.
struct Place {
    Words words;                // the last 31 of the sequence, as a ring
    size_t oldest = 0;          // in the ring
    size_t left = RANDOM_BLOCK; // draws until the block ends
    Words acrossOthers;         // the jump from the end of one block of this share to the next
};
} // namespace

static constexpr void leap(Place& place, const Words& weights)
{
    std::array<uint32_t, 2 * LONG_LAG - 1> row{};
    for (size_t i = 0; i < LONG_LAG; ++i)
        row[i] = place.words[(place.oldest + i) % LONG_LAG];
    for (size_t i = LONG_LAG; i < row.size(); ++i)
        row[i] = row[i - LONG_LAG] + row[i - SHORT_LAG];
    for (size_t i = 0; i < LONG_LAG; ++i) {
        place.words[i] = 0;
        for (size_t k = 0; k < LONG_LAG; ++k)
            place.words[i] += weights[k] * row[i + k];
    }
    place.oldest = 0;
}

static constexpr Place startOf(size_t share, size_t shares)
{
    Place place{.words = {}, .acrossOthers = jump((shares - 1) * RANDOM_BLOCK)};
    // The library fills its ring from the seed 1 with the minimal standard generator (Park and Miller, 1988),
    // begins with the oldest word at place 3, and throws the first ten rounds away.
    constexpr size_t FIRST = 3, DISCARDED = 10 * LONG_LAG;
    uint64_t seed = 1;
    for (uint32_t& word : place.words) {
        word = static_cast<uint32_t>(seed);
        seed = 16807 * seed % 2147483647;
    }
    place.oldest = FIRST;
    leap(place, jump(DISCARDED + share * RANDOM_BLOCK));
    return place;
}

static constinit thread_local Place place = startOf(0, 1);

void startRandom(size_t share, size_t shares)
{
    place = startOf(share, shares);
}

double randomNumber()
{
    if (place.left == 0) {
        leap(place, place.acrossOthers);
        place.left = RANDOM_BLOCK;
    }
    --place.left;
    const size_t at = place.oldest;
    place.oldest = at == LONG_LAG - 1 ? 0 : at + 1;
    place.words[at] += place.words[at >= SHORT_LAG ? at - SHORT_LAG : at + LONG_LAG - SHORT_LAG];
    return (place.words[at] >> 1) / 2147483647.0;
}
