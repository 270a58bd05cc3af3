#pragma once

#include <cstddef>

// The random numbers of a render: those of `rand` in the GNU C library from its default seed, written down
// here so that every machine has them. Each thread draws from its own share of the sequence, so that a
// picture does not depend on which thread happens to draw first.

/// So many draws in a row go to one share, the next as many to the next share, and so on in turn.
constexpr size_t RANDOM_BLOCK = 4096;

/// Puts the calling thread before the first draw of share number `share`, from 0, of `shares`. A thread that
/// never calls it draws the whole sequence.
void startRandom(size_t share, size_t shares);

/// The next random number of the calling thread's share, from 0 to 1.
double randomNumber();
