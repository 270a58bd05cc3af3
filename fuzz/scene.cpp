#include "harness.h"

#include "scene/parser.h"

// The text of a scene, which may include two other files, and itself.

static constexpr std::string_view COLOURS = "declare \"red\" color 1 0 0\n";
static constexpr std::string_view BALL =
    "include \"a.inc\" surface { color #red ambient 0.1 reflection 0.5 }\n"
    "sphere { center <0 0 1> radius 1 } ;";

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size);
int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size)
{
    const File files[] = {{"scene", textOf(data, size)}, {"a.inc", COLOURS}, {"b.inc", BALL}};
    runWith(files, [] {
        if (parseFile("scene") == 0)
            shootRays();
    });
    return 0;
}
