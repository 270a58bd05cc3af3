#include "harness.h"

#include "import3ds/scene3ds.h"

// The bytes of a 3DS model.

static constexpr std::string_view SETTINGS = "{ input_name \"a.3ds\" output_name \"a\" output_type \"png\" }";

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size);
int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size)
{
    const File files[] = {{"settings", SETTINGS}, {"a.3ds", textOf(data, size)}};
    runWith(files, [] {
        if (parse3ds("settings") == 0)
            shootRays();
    });
    return 0;
}
