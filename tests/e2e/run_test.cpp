#include "support.h"

#include <png.h>
#include <regex>
#include <sys/resource.h>

using Words = std::vector<std::string>;

static const std::string BANNER = "\n VARLO v0.1 beta 14 (linux-intel-glibc2-multithreaded)\n";

/// Runs the program in the folder, with at most 24 open files.
static Outcome run(const Folder& folder, Words words)
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
        execv(argv[0], argv.data());
    });
}

static std::string settings(const std::string& more)
{
    return "settings { output_name \"o\" output_type \"ppm\" " + more + " }\n";
}

static const std::string CAMERA = "camera { position <0 -6 1> look_at <0 0 0> }\n";
static const std::string SURFACE = "surface { color 1 0.5 0.25 ambient 0.3 diffuse 0.7 reflection 0.3 }\n";

static std::string spheres(int count)
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text += "sphere { radius 1.5 center <0 0 " + std::to_string(i) + "e-3> }\n";
    return text;
}

TEST(Run, TerminalShowsEveryStepInOrder)
{
    const Folder folder;
    folder.write("scene", SURFACE + "include \"part.inc\"" + settings("display 6 10 aa_type \"quick\"") +
                              spheres(2) + "plane { normal <0 0 1> distance -2 }");
    folder.write("part.inc", CAMERA + "declare \"red\" color 1 0 0");
    const Outcome outcome = run(folder, {"-i", "scene", "-t", "3", "-pqs", "100", "-w", "5", "-o", "p"});
    const std::string twice = " Invalid number of threads: defaulting to 2 threads\n\n"
                              " Defaulting priority queue size to 100\n";
    std::string counts = "\n\n";
    for (const char* count : {"sphere(s):\t\t2", "ring(s):\t\t0", "plane(s):\t\t1", "cone(s):\t\t0",
                              "cylinder(s):\t\t0", "disc(s):\t\t0", "polygon(s):\t\t0", "triangle(s):\t\t0",
                              "patch(es):\t\t0", "surface(s):\t\t1", "light(s):\t\t0"})
        counts += std::string(" Number of ") + count + "\n";
    EXPECT_EQ(std::regex_replace(outcome.out, std::regex("time: [0-9]+\\.[0-9]{2} "), "time: T "),
              BANNER + twice +
                  "\n Parsing scene\n Parsing part.inc Warning: scene doesn't contain any light." + counts +
                  twice + "\n Number of primitives:\t\t3\n\n" +
                  " Multi-threaded version of VARLO running.\n\n Running 2 threads\n Rendering to: p.ppm\n" +
                  " Resolution:   5 x 10\n\n 0%" + std::string(54, '-') + "100%\n " +
                  std::string(60, '\xB1') + "\n\n Rendering time: T second(s)\n");
    EXPECT_EQ(outcome.err, "");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(folder.read("p.ppm").substr(0, 12), "P6\n5 10\n255\n");
}

TEST(Run, BadStarts)
{
    const Folder folder;
    folder.write("self", "include \"self\"");
    folder.write("scene", CAMERA + SURFACE + settings("display 4 4"));
    folder.write("part.inc", "sphere {\n");
    folder.write("nocamera", SURFACE + settings(""));
    folder.write("nosettings", CAMERA + SURFACE);
    folder.write("nosurface", CAMERA + settings(""));
    folder.write("open", CAMERA + "include \"part.inc\" }");
    const struct {
        Words words;
        std::string end; // of standard output
        bool explains = false;
    } cases[] = {{{}, "project\n"},
                 {{"scene"}, "project\n"},
                 {{"-i", "none"}, BANNER + "\n Scene file: none could no be opened\n"},
                 {{"-i", "self"}, "\n Parsing self\n Scene file: self could no be opened\n"},
                 {{"-i", "nocamera"}, "\n Parsing nocamera Missing camera!"},
                 {{"-i", "nosettings"}, "\n Parsing nosettings Missing settings!"},
                 {{"-i", "nosurface"}, "\n Parsing nosurface Missing surface!"},
                 {{"-i", "open"}, " line: 3 -  Unkown parameter in sphere structure\n"},
                 {{"-i", "scene", "-w", "0"}, "light(s):\t\t0\n", true},
                 {{"-i", "scene", "-r", "9", "-1"}, "light(s):\t\t0\n", true}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.words.empty() ? "" : c.words.back());
        const Outcome outcome = run(folder, c.words);
        EXPECT_EQ(outcome.status, 255);
        EXPECT_TRUE(outcome.out.starts_with(BANNER) && outcome.out.ends_with(c.end)) << outcome.out;
        EXPECT_EQ(!outcome.err.empty(), c.explains) << outcome.err;
    }
    EXPECT_FALSE(std::filesystem::exists(folder.path + "/o.ppm"));
}

TEST(Run, SamePixelsInEveryLosslessFormat)
{
    using namespace std::string_literals;
    const Folder folder;
    // A plane fills the lower half of the picture.
    folder.write("scene", "camera { position <0 -6 0> look_at <0 0 0> }" + settings("background 1 0.5 0") +
                              "surface { color 0 0.25 1 ambient 0.5 } plane { normal <0 0 1> distance -1 }");
    const std::string sky = "\xff\x7f\0"s, ground = "\0\x1f\x7f"s;
    const std::string pixels = sky + sky + sky + ground + ground + ground;
    std::string swapped = pixels;
    for (size_t i = 0; i < swapped.size(); i += 3)
        std::swap(swapped[i], swapped[i + 2]);
    for (const char* format : {"-ppm", "-tga", "-bmp", "-png", "--tiff"})
        EXPECT_EQ(run(folder, {"-i", "scene", "-r", "3", "2", format}).status, 0);
    EXPECT_EQ(folder.read("o.ppm"), "P6\n3 2\n255\n" + pixels);
    EXPECT_EQ(folder.read("o.tga"), "\0\0\2\0\0\0\0\0\0\0\0\0\3\0\2\0\x18\x20"s + swapped);
    EXPECT_EQ(folder.read("o.bmp"), "BM\x4e\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\3\0\0\0\2\0\0\0\1\0\x18\0"s +
                                        "\0\0\0\0\x18\0\0\0"s + std::string(16, '\0') + swapped.substr(9) +
                                        "\0\0\0"s + swapped.substr(0, 9) + "\0\0\0"s);
    EXPECT_EQ(folder.read("o.tif").substr(8, 18), pixels);
    png_image reader{};
    reader.version = PNG_IMAGE_VERSION;
    ASSERT_NE(png_image_begin_read_from_file(&reader, (folder.path + "/o.png").c_str()), 0);
    std::string read(PNG_IMAGE_SIZE(reader), ' ');
    ASSERT_NE(png_image_finish_read(&reader, nullptr, read.data(), 0, nullptr), 0);
    EXPECT_EQ(read, pixels);
}

TEST(Run, ThreadsDoNotChangeThePicture)
{
    const Folder folder;
    folder.write("scene",
                 CAMERA + SURFACE + settings("haze_factor 0.02") + spheres(3) +
                     "light { position <5 -9 7> color 1 1 1 attenuation_type \"none\" }"
                     "plane { normal <0 0 1> distance -1 } cone { base <2 0 0> cap <2 0 2> base_radius "
                     "1 cap_radius 0 } patch { vertex <-3 0 -1> vertex <-1 0 -1> vertex <-2 0 2> normal "
                     "<0 -1 0> normal <0 -1 1> normal <1 -1 0> }");
    const Words samplers[] = {{"-aan"}, {"-aaq"}, {"-aaa", "8"}};
    for (const Words& sampler : samplers) {
        SCOPED_TRACE(sampler[0]);
        std::string first;
        for (const char* threads : {"2", "4", "8"}) {
            Words words = {"-i", "scene", "-r", "31", "13", "-t", threads};
            words.insert(words.end(), sampler.begin(), sampler.end());
            EXPECT_EQ(run(folder, words).status, 0);
            first = first.empty() ? folder.read("o.ppm") : first;
            EXPECT_TRUE(folder.read("o.ppm") == first);
        }
    }
}

TEST(Run, OutputThatFails)
{
    const Folder folder;
    folder.write("scene", CAMERA + SURFACE + settings("display 9 9"));
    for (const std::string format : {"tga", "bmp", "ppm", "png", "jpg", "tif"}) {
        SCOPED_TRACE(format);
        const std::string file = "o." + format;
        std::filesystem::create_symlink("/dev/full", folder.path + "/" + file);
        const Outcome full = run(folder, {"-i", "scene", "-" + format});
        EXPECT_EQ(full.status, 1);
        EXPECT_EQ(std::count(full.err.begin(), full.err.end(), '\n'), 1) << full.err;
        const Outcome missing = run(folder, {"-i", "scene", "-" + format, "-o", "none/o"});
        EXPECT_EQ(missing.status, 1);
        EXPECT_EQ(missing.err, "none/" + file + ": No such file or directory\n");
        EXPECT_TRUE(missing.out.ends_with(" Rendering to: none/" + file + "\n Resolution:   9 x 9\n"));
    }
}

TEST(Run, FullQueueIsReportedOnce)
{
    const Folder folder;
    // The rays pass through a corner of every sphere's bounds, and meet none.
    std::string text =
        "camera { position <-50 -300 95> look_at <-50 0 95> fov 2 }" + SURFACE + settings("display 16 16");
    for (int i = 0; i < 400; ++i)
        text += "sphere { radius 100 center <" + std::to_string(i / 10.0) + " " +
                std::to_string(i * 37 % 101 / 1000.0) + " 0> }\n";
    folder.write("scene", text);
    const Outcome full = run(folder, {"-i", "scene", "-t", "8", "-pqs", "100"});
    EXPECT_EQ(full.status, 1);
    EXPECT_EQ(full.err, "\n\n VARLO is out of space...\n"
                        " Please use the -pqs or --pqsize switch to increase the priority queue size\n");
    for (const char* size : {"1000", "1000000"})
        EXPECT_EQ(run(folder, {"-i", "scene", "-pqs", size}).status, 0);
}
