#include "engine/random.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

/// The numbers of the C library itself, which is the one with this sequence wherever the tests run.
static std::vector<double> sequence(size_t count)
{
    std::vector<double> draws(count);
    srand(1);
    for (double& draw : draws)
        draw = rand() / 2147483647.0;
    return draws;
}

TEST(Random, IsTheSequenceOfTheCLibraryDealtInBlocks)
{
    const size_t blocks = 700;
    const std::vector<double> all = sequence(blocks * 4096);
    const std::pair<size_t, size_t> shares[] = {{0, 1}, {0, 2}, {1, 2}, {1, 3},
                                                {3, 4}, {4, 7}, {0, 8}, {7, 8}};
    for (const auto& [share, count] : shares) {
        SCOPED_TRACE(testing::Message() << share << " of " << count);
        startRandom(share, count);
        int differences = 0;
        for (size_t block = share; block < blocks; block += count)
            for (size_t i = 0; i < 4096; ++i)
                differences += randomNumber() != all[block * 4096 + i];
        EXPECT_EQ(differences, 0);
    }
}

TEST(Random, BelongsToItsThread)
{
    startRandom(0, 1);
    std::thread([] {
        EXPECT_EQ(randomNumber(), 1804289383 / 2147483647.0); // a thread that says nothing has all numbers
        startRandom(3, 8);
    }).join();
    EXPECT_EQ(randomNumber(), 1804289383 / 2147483647.0);
}
