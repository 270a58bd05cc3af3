#include "harness.h"

#include "core/args.h"
#include "core/settings.h"
#include "import3ds/scene3ds.h"
#include "scene/parser.h"

#include <string>
#include <vector>

// The arguments of the command line, one a line, for a run that finds a scene, and a model with its settings.

static constexpr std::string_view SCENE =
    "camera { position <0 -6 0> look_at <0 0 0> } settings { output_name \"a\" } sphere { radius 1 }";
static constexpr std::string_view SETTINGS = "{ input_name \"a.3ds\" output_name \"a\" output_type \"png\" }";
static constexpr std::string_view MODEL("MM\6\0\0\0", 6);

static std::vector<std::string> words;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size);
int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size)
{
    words = {"varlo", ""};
    for (const char c : textOf(data, size)) {
        if (c == '\n')
            words.emplace_back();
        else if (c != '\0') // an argument cannot hold one
            words.back() += c;
    }
    const File files[] = {{"a", SCENE}, {"s", SETTINGS}, {"a.3ds", MODEL}, {"length", textOf(data, size)}};
    runWith(files, [] {
        char* argv[64] = {};
        int argc = 0;
        for (std::string& word : words)
            if (argc < 63)
                argv[argc++] = word.data();
        showCredits();
        parseArgs(argc, argv);
        if ((use3ds ? parse3ds(inputFileName) : parseFile(inputFileName)) != 0)
            return;
        parseArgs(argc, argv);
        shootRays();
    });
    return 0;
}
