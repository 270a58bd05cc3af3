#include "engine/random.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

/// The first `count` numbers of `rand`, by another way than the program's: the sum over the last 34 words
/// that its manual tells, and the library itself where it is there to be asked.
static std::vector<double> sequence(size_t count)
{
    std::vector<uint32_t> words{1};
    while (words.size() < 31)
        words.push_back(static_cast<uint32_t>(16807ULL * words.back() % 2147483647));
    while (words.size() < 34)
        words.push_back(words[words.size() - 31]);
    while (words.size() < 344 + count)
        words.push_back(words[words.size() - 31] + words[words.size() - 3]);
    std::vector<double> draws;
    for (size_t i = 344; i < words.size(); ++i)
        draws.push_back((words[i] >> 1) / 2147483647.0);
    return draws;
}

TEST(Random, IsTheSequenceOfTheCLibrary)
{
    startRandom(0, 1);
    for (const int first : {1804289383, 846930886, 1681692777, 1714636915, 1957747793})
        EXPECT_EQ(randomNumber(), first / 2147483647.0);
#ifdef __GLIBC__
    startRandom(0, 1);
    srand(1);
    int differences = 0;
    for (int i = 0; i < 3000000; ++i)
        differences += randomNumber() != rand() / 2147483647.0;
    EXPECT_EQ(differences, 0);
#endif
}

TEST(Random, IsDealtInBlocks)
{
    const std::vector<double> all = sequence(8 * 4 * RANDOM_BLOCK);
    const std::pair<size_t, size_t> shares[] = {{0, 1}, {0, 2}, {1, 2}, {1, 3},
                                                {3, 4}, {4, 7}, {0, 8}, {7, 8}};
    for (const auto& [share, count] : shares) {
        SCOPED_TRACE(testing::Message() << share << " of " << count);
        std::vector<double> drawn(3 * RANDOM_BLOCK + 1);
        std::thread([&, first = share, bands = count] { // clang 14 captures no structured binding
            startRandom(first, bands);
            for (double& number : drawn)
                number = randomNumber();
        })
            .join();
        int differences = 0;
        for (size_t j = 0; j < drawn.size(); ++j)
            differences += drawn[j] != all[(j / 4096 * count + share) * 4096 + j % 4096];
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
