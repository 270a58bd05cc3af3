#include "harness.h"

#include "import3ds/scene3ds.h"
#include "mutate.h"

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

extern "C" size_t LLVMFuzzerMutate(std::uint8_t* data, size_t size, size_t maxSize);

extern "C" size_t LLVMFuzzerCustomMutator(std::uint8_t* data, size_t size, size_t maxSize, unsigned int seed);
size_t LLVMFuzzerCustomMutator(std::uint8_t* data, size_t size, size_t maxSize, unsigned int seed)
{
    std::minstd_rand chance(seed);
    if (size < HEADER || chance() % 4 == 0)
        return LLVMFuzzerMutate(data, size, maxSize);
    Bytes bytes(data, data + size);
    mutateChunk(bytes, chance, LLVMFuzzerMutate);
    const size_t written = std::min(bytes.size(), maxSize);
    std::copy_n(bytes.begin(), written, data);
    return written;
}
