#include "support.h"

using CommandTest = ImportTest;

TEST_F(CommandTest, faults)
{
    write("cube.obj", cube(""));
    write("noise.obj", std::string(500, '\1'));
    write("empty.obj", "");
    write("points.obj", "v 0 0 0\nv 1 0 0\np 1 2\n");
    write("noise.xyz", "what is this");
    std::filesystem::create_directory(folder / "sub");
    const struct {
        const char* arguments;
        int status;
        const char* says;
    } cases[] = {
        {"", 2, "MODEL: a file is expected"},
        {"--nonsense cube.obj", 2, "--nonsense: no such option"},
        {"cube.obj cube.obj", 2, "one model at a time"},
        {"cube.obj --size", 2, "--size: a value is missing"},
        {"--at 1 2 cube.obj", 2, "--at: a number is expected"},
        {"--at 1 2", 2, "--at: a value is missing"},
        {"--size 0 cube.obj", 2, "--size: the number is too small"},
        {"--size inf cube.obj", 2, "--size: a number is expected"},
        {"--smooth 181 cube.obj", 2, "--smooth: the angle lies from 0 to 180"},
        {"--colours 0 cube.obj", 2, "--colours: no integer, or out of range"},
        {"--up w cube.obj", 2, "--up: no such choice"},
        {"--view back --camera 0 cube.obj", 2, "not together"},
        {"nothing.obj", 1, "varlo-import: nothing.obj: No such file or directory\n"},
        {"sub", 1, "varlo-import: sub: Is a directory\n"},
        {"empty.obj", 1, "varlo-import: empty.obj: "},
        {"noise.obj", 1, "varlo-import: noise.obj: "},
        {"noise.xyz", 1, "No suitable reader found"},
        {"points.obj", 1, "it has no faces to show"},
        {"-o sub cube.obj", 1, "varlo-import: sub: Is a directory\n"},
        {"-o nowhere/x.vlo cube.obj", 1, "varlo-import: nowhere/x.vlo: No such file or directory\n"},
        {"cube.obj >/dev/full", 1, "varlo-import: standard output: No space left on device\n"},
        {"-o /dev/full cube.obj", 1, "varlo-import: /dev/full: No space left on device\n"},
        {"--help", 0, ""},
        {"--version", 0, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.arguments);
        const Outcome outcome = import(c.arguments);
        EXPECT_EQ(outcome.status, c.status);
        EXPECT_NE(outcome.err.find(c.says), std::string::npos) << outcome.err;
        EXPECT_EQ(outcome.out.empty(),
                  c.status != 0 || std::string(c.arguments).find("full") != std::string::npos);
        EXPECT_EQ(outcome.err.find("Usage: varlo-import") != std::string::npos, c.status == 2);
    }
}

TEST_F(CommandTest, theFileIsWholeOrNotThere)
{
    write("cube.obj", cube(""));
    EXPECT_EQ(import("points.obj -o new.vlo").status, 1);
    EXPECT_FALSE(std::filesystem::exists(folder / "new.vlo"));
    write("old.vlo", "mine");
    // A limit on the size of files stands for a full disk.
    EXPECT_EQ(
        run("trap '' XFSZ; ulimit -f 1; " VARLO_IMPORT " --smooth 91 --geometry -o old.vlo cube.obj").status,
        1);
    EXPECT_EQ(read("old.vlo"), "mine");
    EXPECT_EQ(import("-o old.vlo cube.obj").status, 0);
    EXPECT_EQ(read("old.vlo"), import("cube.obj").out);
    size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        files += entry.path().string().find("old.vlo") != std::string::npos;
    EXPECT_EQ(files, 1u);
}

TEST_F(CommandTest, namesAndWords)
{
    write("3-\xc3\xbc b.obj", cube("mtllib m.mtl\nusemtl a\tb\n"));
    write("m.mtl", "newmtl a\tb\nKd 0.1 0.2 0.3\n");
    const Outcome outcome = import("'3-\xc3\xbc b.obj'");
    EXPECT_NE(outcome.out.find("output_name \"model_3____b\""), std::string::npos)
        << outcome.out.substr(0, 600);
    for (const char* line : {"; varlo-import ", "; model 3-\xc3\xbc b.obj\n", "; triangles 12\n",
                             "; extent 10 x 10 x 10\n", "; scale 10, up was y\n"})
        EXPECT_NE(outcome.out.find(line), std::string::npos) << line;
    write("s.vlo", outcome.out);
    EXPECT_EQ(run(VARLO_BINARY " -i s.vlo -r 8 6").status, 0);
    EXPECT_TRUE(std::filesystem::exists(folder / "model_3____b.png"));

    const std::string geometry = import("--geometry '3-\xc3\xbc b.obj'").out;
    for (const char* word : {"camera", "light", "settings", "plane"})
        EXPECT_EQ(geometry.find(word), std::string::npos) << word;
    EXPECT_EQ(import("--no-floor '3-\xc3\xbc b.obj'").out.find("plane"), std::string::npos);

    const std::string list = import("--list '3-\xc3\xbc b.obj'").out;
    for (const char* line :
         {"triangles 12\n", "extent 1 1 1\n", "cameras 0\n", "lights 0\n", ", color 0.1 0.2 0.3\n"})
        EXPECT_NE(list.find(line), std::string::npos) << list;
}
