#include "support.h"

#include <iterator>
#include <regex>
#include <sys/resource.h>
#include <sys/stat.h>

using Words = std::vector<std::string>;

static const std::string BANNER = "\n VARLO v0.1 beta 14 (linux-intel-glibc2-multithreaded)\n";
static const std::string CAMERA = "camera { position <0 -6 0> look_at <0 0 0> }\n";
static const std::string SURFACE = "surface { color 0 0.25 1 ambient 0.5 reflection 0.3 }\n";

/// The program in a folder of its own.
struct Run : testing::Test {
    const Folder folder;

    /// Runs it with at most 24 open files, in a process that `prepare` can change.
    Outcome run(
        Words words, const std::function<void()>& prepare = [] {}) const
    {
        words.insert(words.begin(), VARLO_BINARY);
        std::vector<char*> argv;
        for (std::string& word : words)
            argv.push_back(word.data());
        argv.push_back(nullptr);
        return inChild([&] {
            const char* options = getenv("ASAN_OPTIONS");
            // The program leaves what the lists do not reach to the end of its process.
            setenv("ASAN_OPTIONS", (std::string(options ? options : "") + ":detect_leaks=0").c_str(), 1);
            const rlimit files = {24, 24};
            setrlimit(RLIMIT_NOFILE, &files);
            std::filesystem::current_path(folder.path);
            prepare();
            execv(argv[0], argv.data());
        });
    }

    static std::string settings(const std::string& more)
    {
        return "settings { output_name \"o\" output_type \"ppm\" " + more + " }\n";
    }
};

TEST_F(Run, TerminalShowsEveryStepInOrder)
{
    using namespace std::string_literals;
    // A plane fills the lower half of the picture. The sphere stands behind the camera.
    folder.write("scene", SURFACE + "include \"part.inc\"" + settings("display 6 10 background 1 0.5 0") +
                              "sphere { radius 1 center <0 -9 0> } plane { normal <0 0 1> distance -1 }");
    folder.write("part.inc", CAMERA + "declare \"red\" color 1 0 0");
    const Outcome outcome = run({"-i", "scene", "-t", "3", "-pqs", "100", "-w", "2", "-o", "p"});
    const std::string twice = " Invalid number of threads: defaulting to 2 threads\n\n"
                              " Defaulting priority queue size to 100\n";
    EXPECT_EQ(
        std::regex_replace(outcome.out, std::regex("time: [0-9]+\\.[0-9]{2} "), "time: T "),
        BANNER + twice + "\n Parsing scene\n Parsing part.inc Warning: scene doesn't contain any light.\n\n" +
            R"( Number of sphere(s):		1
 Number of ring(s):		0
 Number of plane(s):		1
 Number of cone(s):		0
 Number of cylinder(s):		0
 Number of disc(s):		0
 Number of polygon(s):		0
 Number of triangle(s):		0
 Number of patch(es):		0
 Number of surface(s):		1
 Number of light(s):		0
)" + twice + "\n Number of primitives:\t\t2\n\n Multi-threaded version of VARLO running.\n\n" +
            " Running 2 threads\n Rendering to: p.ppm\n Resolution:   2 x 10\n\n 0%" + std::string(54, '-') +
            "100%\n " + std::string(60, '\xB1') + "\n\n Rendering time: T second(s)\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
    const std::string picture = folder.read("p.ppm");
    EXPECT_EQ(picture.substr(0, 18), "P6\n2 10\n255\n\xff\x7f\0\xff\x7f\0"s);
    EXPECT_EQ(picture.substr(66), "\x4c\x46\x7f\x4c\x46\x7f"s);
}

TEST_F(Run, EndsWithAStatusAndAReason)
{
    const auto write = [&](const std::string& name, const std::string& text) { folder.write(name, text); };
    write("scene", CAMERA + SURFACE + settings(""));
    write("self", "include \"self\"");
    write("part.inc", "sphere {\n");
    write("nocamera", SURFACE + settings(""));
    write("nosettings", CAMERA + SURFACE);
    write("nosurface", CAMERA + settings(""));
    write("open", CAMERA + "include \"part.inc\" }");
    write("folder", CAMERA + SURFACE + settings("") + "include \"d.3ds\"");
    write("nothing", CAMERA + SURFACE + settings("") + "include \"broken\" sphere");
    write("model", "{ input_name \"d.3ds\" }");
    std::filesystem::create_directory(folder.path + "/d.3ds");
    std::filesystem::create_symlink("/proc/self/mem", folder.path + "/broken"); // its first byte is no memory
    ASSERT_EQ(mkfifo((folder.path + "/pipe.tif").c_str(), 0600), 0);
    const std::string size = "Maximum supported image dimension is 65500 pixels\no.jpg: Invalid argument\n";
    const struct {
        int status;
        std::string words, outEnd, errors = "";
    } cases[] = {
        {255, "", "project\n"},
        {255, "scene", "project\n"},
        {255, "-i none", BANNER + "\n Scene file: none could no be opened\n"},
        {255, "-i self", "\n Parsing self\n Scene file: self could no be opened\n"},
        {255, "-i nocamera", "\n Parsing nocamera Missing camera!"},
        {255, "-i nosettings", "\n Parsing nosettings Missing settings!"},
        {255, "-i nosurface", "\n Parsing nosurface Missing surface!"},
        {255, "-i open", " line: 3 -  Unkown parameter in sphere structure\n"},
        {255, "-i scene -w 0", "light(s):\t\t0\n", " A picture of 0 x 240 pixels cannot be rendered\n"},
        {255, "-i scene -r 9 -1", "light(s):\t\t0\n", " A picture of 9 x -1 pixels cannot be rendered\n"},
        {255, "-i d.3ds", "\n Parsing d.3ds", "d.3ds: Is a directory\n"},
        {255, "-i folder", "\n Parsing d.3ds", "d.3ds: Is a directory\n"},
        {255, "-i nothing", "\n Parsing broken", "broken: Input/output error\n"},
        {255, "-3ds d.3ds", BANNER, "d.3ds: Is a directory\n"},
        {255, "-3ds model", BANNER, "d.3ds: Is a directory\n"},
        // what a format cannot hold ends before the render
        {1, "-i scene -tif -r 40000 40000", "  40000 x 40000\n", "o.tif: File too large\n"},
        {1, "-i scene -tif -o pipe", "  320 x 240\n", "pipe.tif: Illegal seek\n"},
        {1, "-i scene -jpg -r 65501 1", "  65501 x 1\n", size},
        {1, "-i scene -jpg -r 1 65501", "  1 x 65501\n", size},
        {1, "-i scene -png -r 1000001 1", "  1000001 x 1\n",
         "libpng warning: Image width exceeds user limit in IHDR\n"
         "libpng error: Invalid IHDR data\no.png: Invalid argument\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.words);
        std::istringstream words(c.words);
        const Outcome outcome = run({std::istream_iterator<std::string>(words), {}});
        EXPECT_EQ(outcome.status, c.status);
        EXPECT_TRUE(outcome.out.starts_with(BANNER)) << outcome.out;
        EXPECT_TRUE(outcome.out.ends_with(c.outEnd)) << outcome.out;
        EXPECT_EQ(outcome.err, c.errors);
    }
    EXPECT_FALSE(std::filesystem::exists(folder.path + "/o.ppm"));
}

TEST_F(Run, OutputThatFails)
{
    folder.write("scene", CAMERA + SURFACE + settings("display 60 60"));
    for (const std::string format : {"tga", "bmp", "ppm", "png", "jpg", "tif"}) {
        SCOPED_TRACE(format);
        std::filesystem::create_symlink("/dev/full", folder.path + "/o." + format);
        const Outcome full = run({"-i", "scene", "-" + format});
        EXPECT_EQ(full.status, 1);
        EXPECT_EQ(std::count(full.err.begin(), full.err.end(), '\n'), 1) << full.err;
        const Outcome missing = run({"-i", "scene", "-" + format, "-o", "none/o"});
        EXPECT_EQ(missing.status, 1);
        EXPECT_EQ(missing.err, "none/o." + format + ": No such file or directory\n");
        EXPECT_TRUE(missing.out.ends_with(" Rendering to: none/o." + format + "\n Resolution:   60 x 60\n"));
    }
}

TEST_F(Run, PictureIsWholeWhenStandardStreamsAreClosed)
{
    folder.write("scene", CAMERA + SURFACE + settings("display 9 9"));
    EXPECT_EQ(run({"-i", "scene", "-o", "open"}).status, 0);
    for (const std::vector<int>& closed : {std::vector{1}, {0, 1}, {1, 2}, {0, 1, 2}}) {
        const Outcome outcome = run({"-i", "scene"}, [&] { std::ranges::for_each(closed, close); });
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(folder.read("o.ppm"), folder.read("open.ppm")) << closed.size();
    }
}

TEST_F(Run, TiffOnAFullDiskSaysSo)
{
    folder.write("scene", CAMERA + SURFACE + settings("display 9 9"));
    // 8 bytes of header, 9 rows of 27 bytes, then the directory; only a lost row is no failure.
    // What is said of it ends at the same limit, here after some whole lines.
    const std::tuple<rlim_t, int, int> cases[] = {{4, 1, 0}, {100, 0, 2}, {251, 1, 1}, {300, 1, 1}};
    for (const auto& [size, status, lines] : cases) {
        const Outcome outcome = run({"-i", "scene", "-tif", "-o", std::to_string(size)}, [&, limit = size] {
            const rlimit bytes = {limit, limit};
            setrlimit(RLIMIT_FSIZE, &bytes);
            signal(SIGXFSZ, SIG_IGN);
        });
        EXPECT_EQ(outcome.status, status) << size;
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), lines) << outcome.err;
    }
}
