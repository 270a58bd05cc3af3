#include "core/trace.h"

#include "core/progress.h"
#include "support.h"

using TraceTest = SceneTest;

TEST_F(TraceTest, BandsCoverEveryRowOnce)
{
    const std::string warning = " Warning the height and the number of threads are incompatible.\n"
                                " The number of threads must be a multiplier of the height.\n";
    const struct {
        int height, threads;
        std::string ends, output;
    } cases[] = {
        {10, 4, "2 5 7 10", warning + " Running 4 threads\n"},
        {10, 2, "5 10", " Running 2 threads\n"},
        {3, 8, "0 0 1 1 1 2 2 3", warning + " Running 8 threads\n"},
        {2000000000, 2, "1000000000 2000000000", " Running 2 threads\n"},
        {10, 3, "5 10", " Invalid number of threads: defaulting to 2 threads\n"},
    };
    for (const auto& c : cases) {
        myDisplay.height = c.height;
        EXPECT_EQ(printed([&c] { initMTBounds(c.threads); }), c.output);
        std::istringstream ends(c.ends);
        for (int i = 0, first = 0, end = 0; ends >> end; ++i, first = end)
            EXPECT_TRUE(iBounds[i].first == first && iBounds[i].end == end) << c.output << end;
    }
}

TEST_F(TraceTest, ProgressBar)
{
    const size_t cases[][3] = {{200, 54, 10}, {109, 60, 11}, {25, 60, 13}, {9, 60, 9}, {1, 60, 1}};
    for (const auto& [height, dashes, marks] : cases) {
        myDisplay.height = static_cast<int>(height);
        const std::string bar = printed([] {
            showProgressInit();
            for (int row = myDisplay.height - 1; row >= 0; --row)
                showProgress(row);
        });
        EXPECT_EQ(bar, "\n 0%" + std::string(dashes, '-') + "100%\n " + std::string(6 * marks, '\xB1'));
    }
}
