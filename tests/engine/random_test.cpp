#include "engine/random.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <vector>

TEST(Random, IsTheSequenceOfTheCLibraryDealtInBlocks)
{
    const size_t blocks = 700;
    std::vector<double> all(blocks * 4096);
    srand(1);
    for (double& draw : all) // the library has this sequence wherever the tests run
        draw = rand() / 2147483647.0;
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
