#pragma once

#include "import3ds/3ds.h"
#include "support.h"

// Writes 3DS files. Every function returns bytes, to be put one behind the other.

template <class Number>
std::string numbers(std::initializer_list<Number> values)
{
    return {reinterpret_cast<const char*>(values.begin()), values.size() * sizeof(Number)};
}

constexpr auto shorts = numbers<std::uint16_t>;
constexpr auto floats = numbers<float>;

inline std::string chunk(std::uint16_t id, const std::string& content = "")
{
    return shorts({id}) + numbers({static_cast<std::uint32_t>(6 + content.size())}) + content;
}
inline std::string material(const std::string& name, const std::string& rgb = "abc",
                            const std::string& more = "")
{
    return chunk(0xAFFF, chunk(0xA000, name + '\0') + chunk(0xA020, chunk(0x0011, rgb)) + more);
}

const auto object = [](const std::string& content) { return chunk(0x4000, "thing" + ('\0' + content)); };
const auto wears = [](const std::string& name) { return chunk(0x4130, name + '\0' + shorts({1, 0})); };

inline const std::string CORNERS = chunk(0x4110, shorts({3}) + floats({0, 0, 0, 1, 0, 0, 0, 1, 0}));
inline const std::string CAMERA = chunk(0x4700, floats({1, 2, 3, 4, 5, 6, 7, 50}));
inline const std::string SPOT = chunk(0x4610, floats({1, 2, 3, 4, 5}));
inline const std::string LAMP =
    chunk(0x4600, floats({1, 2, 3}) + chunk(0x0010, floats({.1f, .5f, 1})) + SPOT);
inline const std::string OFF_LAMP = chunk(0x4600, floats({1, 2, 3}) + chunk(0x4620, "x"));

inline std::string file(const std::string& content, std::uint16_t version = 3)
{
    const std::string ahead = chunk(0x0002, shorts({version, 0}));
    return chunk(0x4D4D, ahead + chunk(0x3D3D, chunk(0x3D3E, shorts({3, 0})) + content));
}

/// One triangle; `more` stands in the chunk of the faces.
inline std::string mesh(const std::string& more = "")
{
    return chunk(0x4100, CORNERS + chunk(0x4120, shorts({1, 0, 1, 2, 7}) + more));
}

/// Works in a folder of its own: the scanner takes no path for a string.
struct ModelTest : SceneTest {
    const Folder folder;
    Model3DS model{};
    std::string said, warned; // by the last call of listen, on standard output and standard error

    ModelTest()
    {
        std::filesystem::current_path(folder.path);
    }
    ~ModelTest() override
    {
        freeModel(&model);
        std::filesystem::current_path("/");
    }
    int read(const std::string& bytes, const std::string& name = "model.3ds")
    {
        freeModel(&model);
        if (name == "model.3ds")
            folder.write(name, bytes);
        return import3DS(&model, name.c_str(), 1);
    }

    /// Calls `act` and keeps what it says.
    int listen(auto act)
    {
        int result = 0;
        testing::internal::CaptureStderr();
        said = printed([&] { result = act(); });
        warned = testing::internal::GetCapturedStderr();
        return result;
    }

    /// Objects, vertices, faces, materials, cameras, lights.
    std::string counts() const
    {
        int vertices = 0, faces = 0;
        for (int i = 0; i < model.numObjects; ++i) {
            vertices += model.objects[i].numVertices;
            faces += model.objects[i].numFaces;
        }
        return line(model.numObjects, vertices, faces, model.numMaterials, model.numCameras, model.numLights);
    }
};
