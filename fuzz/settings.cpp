#include "harness.h"

#include "import3ds/scene3ds.h"

#include <string>

// The text of the settings for a 3DS model, which has a light, two cameras and a triangle.

template <class Number>
static std::string numbers(std::initializer_list<Number> values)
{
    return {reinterpret_cast<const char*>(values.begin()), values.size() * sizeof(Number)};
}

static std::string chunk(std::uint16_t id, const std::string& content)
{
    return numbers({id}) + numbers({static_cast<std::uint32_t>(6 + content.size())}) + content;
}

static std::string makeModel()
{
    const std::string name = {'x', '\0'};
    const std::string cameras = chunk(0x4700, numbers<float>({5, 5, 5, 0, 0, 0, 0, 50})) +
                                chunk(0x4700, numbers<float>({1, 2, 9, 0, 0, 0, 0, 15}));
    const std::string light =
        chunk(0x4600, numbers<float>({3, 3, 3}) + chunk(0x0010, numbers<float>({1, 1, 1})));
    const std::string mesh = chunk(
        0x4100, chunk(0x4110, numbers<std::uint16_t>({3}) + numbers<float>({0, 0, 0, 1, 0, 0, 0, 1, 0})) +
                    chunk(0x4120, numbers<std::uint16_t>({1, 0, 1, 2, 7})));
    return chunk(0x4D4D, chunk(0x3D3D, chunk(0x3D3E, "") + chunk(0x4000, name + cameras + light + mesh)));
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size);
int LLVMFuzzerTestOneInput(const std::uint8_t* data, size_t size)
{
    static const std::string model = makeModel();
    const File files[] = {{"settings", textOf(data, size)}, {"a.3ds", model}};
    runWith(files, [] {
        if (parse3ds("settings") == 0)
            shootRays();
    });
    return 0;
}
