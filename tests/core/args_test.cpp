#include "core/args.h"

#include "support.h"

using ArgsTest = SceneTest;

/// Gives words, with blanks between them, to the parser.
static void parse(const std::string& words)
{
    std::string text = "varlo " + words;
    std::vector<char*> argv;
    for (char* word = strtok(text.data(), " "); word != nullptr; word = strtok(nullptr, " "))
        argv.push_back(word);
    parseArgs(static_cast<int>(argv.size()), argv.data());
}

TEST_F(ArgsTest, ValuesAndTheirLimits)
{
    const struct {
        const char* line;
        const int* target;
        int value;
        std::string output = "";
    } cases[] = {
        {"-i s -3ds t word -i u", &use3ds, 1},
        {"--3ds u -c -1", &iCameraIndex, 0},
        {"--aaadaptive 9 -aaa -7x -i u", &adapt_dist, -7},
        {"--thread 3 -i u", &numThreads, 2, " Invalid number of threads: defaulting to 2 threads\n"},
        {"-pqs 100 -i u", &iPQSize, 100, "\n Defaulting priority queue size to 100\n"},
        {"--pqsize 101 -i u", &iPQSize, 101},
        {"--resolution -w 4 -i u", &myDisplay.height, 4},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line);
        resetScene();
        EXPECT_EQ(printed([&c] { parse(c.line); }), c.output);
        EXPECT_EQ(*c.target, c.value);
        EXPECT_STREQ(inputFileName, "u");
    }
    const std::string output(255, 'o'), input(511, 'i');
    parse("-o " + output + " -3ds " + input);
    EXPECT_EQ(myDisplay.outputName + std::string(inputFileName), output + input);
    for (const std::string& words : {"-o x" + output, "-i x" + input}) {
        const Outcome outcome = inChild([&] { parse(words); });
        EXPECT_TRUE(outcome.status == 255 && outcome.out.empty() && !outcome.err.empty());
    }
}

TEST_F(ArgsTest, UsageIsTheFixedText)
{
    unsigned sum = 0;
    for (const char c : printed(showUsage))
        sum = 31 * sum + static_cast<unsigned char>(c);
    EXPECT_EQ(sum, 2427749271u) << printed(showUsage);
}

TEST_F(ArgsTest, BadCommandLinesPrintTheUsage)
{
    for (const char* words : {"", "s", "-i", "-i s -?", "-i s /?", "-i s -", "-i s -PPM", "-i s -w5",
                              "-i s --jitter=1", "-i s -r 3", "-i s -aaa abc"}) {
        SCOPED_TRACE(words);
        const Outcome outcome = inChild([=] { parse(words); });
        EXPECT_EQ(outcome.status, 255) << outcome.err;
        EXPECT_EQ(outcome.out, printed(showUsage));
    }
}
