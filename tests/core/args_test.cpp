#include "core/args.h"

#include "support.h"

using ArgsTest = SceneTest;

/// Gives words, with blanks between them, to the parser.
static void parse(const std::string& line)
{
    std::vector<std::string> words{"varlo"};
    std::istringstream stream(line);
    for (std::string word; stream >> word;)
        words.push_back(word);
    std::vector<char*> argv;
    for (std::string& word : words)
        argv.push_back(word.data());
    parseArgs(static_cast<int>(argv.size()), argv.data());
}

TEST_F(ArgsTest, EachOptionStoresItsValue)
{
    const struct {
        const char* line;
        const int* target;
        int value;
        const char* output = "";
    } cases[] = {
        {"-i s -3ds t -i u", &use3ds, 1},
        {"--input s --camera 2", &iCameraIndex, 3},
        {"--3ds s -c -1", &iCameraIndex, 0},
        {"-aaa -7x -i s", &adapt_dist, -7},
        {"--aaadaptive 9 -i s", &iAntialias, AA_ADAPTIVE},
        {"-aaq -aan -i s", &iAntialias, AA_NONE},
        {"--aanone --aaquick -i s", &iAntialias, AA_QUICK},
        {"-t 8 -i s", &numThreads, 8},
        {"--thread 3 -i s", &numThreads, 2, " Invalid number of threads: defaulting to 2 threads\n"},
        {"-pqs 100 -i s", &iPQSize, 100, "\n Defaulting priority queue size to 100\n"},
        {"--pqsize 101 -i s", &iPQSize, 101},
        {"-j -i s", &jitter, 1},
        {"-r 3 4 -i s", &myDisplay.width, 3},
        {"--resolution -w 4 -i s", &myDisplay.height, 4},
        {"word -w 5 -i s", &myDisplay.width, 5},
        {"-h 6 --width 7 -i s", &myDisplay.height, 6},
        {"--ppm -tga -i s", &iImageType, TGA},
        {"-ppm --bmp -i s", &iImageType, BMP},
        {"--ppm -i s", &iImageType, PPM},
        {"--tiff -i s", &iImageType, TIF},
        {"-jpg -i s", &iImageType, JPEG},
        {"--png -i s", &iImageType, PNG},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.line);
        resetScene();
        EXPECT_EQ(printed([&c] { parse(c.line); }), c.output);
        EXPECT_EQ(*c.target, c.value);
        EXPECT_STREQ(inputFileName, c.target == &use3ds ? "u" : "s");
    }
}

TEST_F(ArgsTest, NamesAndTheirLimits)
{
    parse("-i -o -o -i");
    EXPECT_STREQ(inputFileName, "-o");
    EXPECT_STREQ(myDisplay.outputName, "-i");
    const std::string output(255, 'o'), input(511, 'i');
    parse("-o " + output + " -3ds " + input);
    EXPECT_EQ(myDisplay.outputName, output);
    EXPECT_EQ(inputFileName, input);
    for (const std::string& line : {"-o x" + output, "-i x" + input}) {
        const Outcome outcome = inChild([&line] { parse(line); });
        EXPECT_TRUE(outcome.status == 255 && outcome.out.empty() && !outcome.err.empty());
    }
}

TEST_F(ArgsTest, BadCommandLinesPrintTheUsage)
{
    const std::string usage = printed(showUsage);
    for (const char* line : {"", "s", "-i", "-i s -?", "-i s /?", "-i s -", "-i s -PPM", "-i s -w5",
                             "-i s --jitter=1", "-i s -r 3", "-i s -aaa abc"}) {
        SCOPED_TRACE(line);
        const Outcome outcome = inChild([line] { parse(line); });
        EXPECT_EQ(outcome.status, 255) << outcome.err;
        EXPECT_EQ(outcome.out, usage);
    }
}
