#include "core/trace.h"

#include "support.h"

using TraceTest = SceneTest;

TEST_F(TraceTest, BandsCoverEveryRowOnce)
{
    const std::string warning = " Warning the height and the number of threads are incompatible.\n"
                                " The number of threads must be a multiplier of the height.\n";
    const struct {
        int height, threads;
        std::vector<int> ends;
        std::string output;
    } cases[] = {
        {10, 4, {2, 5, 7, 10}, warning + " Running 4 threads\n"},
        {10, 2, {5, 10}, " Running 2 threads\n"},
        {3, 8, {0, 0, 1, 1, 1, 2, 2, 3}, warning + " Running 8 threads\n"},
        {2000000000, 2, {1000000000, 2000000000}, " Running 2 threads\n"},
        {10, 3, {5, 10}, " Invalid number of threads: defaulting to 2 threads\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.threads);
        myDisplay.height = c.height;
        EXPECT_EQ(printed([&c] { initMTBounds(c.threads); }), c.output);
        for (size_t i = 0; i < c.ends.size(); ++i) {
            EXPECT_EQ(iBounds[i].first, i == 0 ? 0 : c.ends[i - 1]);
            EXPECT_EQ(iBounds[i].end, c.ends[i]);
        }
    }
}

TEST_F(TraceTest, ProgressBar)
{
    const struct {
        int height;
        size_t dashes, marks;
    } cases[] = {{10, 54, 10}, {200, 54, 10}, {109, 60, 11}, {25, 60, 13}, {9, 60, 9}, {1, 60, 1}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.height);
        myDisplay.height = c.height;
        EXPECT_EQ(printed(showProgressInit), "\n 0%" + std::string(c.dashes, '-') + "100%\n ");
        const std::string marks = printed([&c] {
            for (int row = c.height - 1; row >= 0; --row)
                showProgress(row);
        });
        EXPECT_EQ(marks, std::string(6 * c.marks, '\xB1'));
    }
}
