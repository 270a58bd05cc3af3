#pragma once

#include "import3ds/3ds.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

// Writes 3DS files. Every function returns bytes, to be put one behind the other.

template <class Number>
std::string numbers(std::initializer_list<Number> values)
{
    return {reinterpret_cast<const char*>(values.begin()), values.size() * sizeof(Number)};
}

constexpr auto shorts = numbers<std::uint16_t>;
constexpr auto floats = numbers<float>;

/// A string with its zero.
inline std::string text(const std::string& characters)
{
    return characters + '\0';
}

inline std::string chunk(std::uint16_t id, const std::string& content = "")
{
    return shorts({id}) + numbers({static_cast<std::uint32_t>(6 + content.size())}) + content;
}

inline std::string material(const std::string& name, const std::string& rgb = "abc",
                            const std::string& more = "")
{
    return chunk(0xAFFF, chunk(0xA000, text(name)) + chunk(0xA020, chunk(0x0011, rgb)) + more);
}

const auto version = [](std::uint16_t number) { return chunk(0x0002, shorts({number, 0})); };
const auto object = [](const std::string& content) { return chunk(0x4000, text("thing") + content); };
const auto wears = [](const std::string& name) { return chunk(0x4130, text(name) + shorts({1, 0})); };

inline const std::string CORNERS = chunk(0x4110, shorts({3}) + floats({0, 0, 0, 1, 0, 0, 0, 1, 0}));
inline const std::string CAMERA = chunk(0x4700, floats({1, 2, 3, 4, 5, 6, 7, 50}));

inline std::string file(const std::string& content)
{
    return chunk(0x4D4D, version(3) + chunk(0x3D3D, chunk(0x3D3E, shorts({3, 0})) + content));
}

/// One triangle; `more` stands in the chunk of the faces.
inline std::string mesh(const std::string& more = "")
{
    return chunk(0x4100, CORNERS + chunk(0x4120, shorts({1, 0, 1, 2, 7}) + more));
}

/// Reads models from a file that belongs to this process alone, in the folder that it works in meanwhile: the
/// scanner takes no path for a string.
struct ModelTest : testing::Test {
    const std::filesystem::path home = std::filesystem::current_path();
    const std::string name = "varlo_" + std::to_string(getpid()) + ".3ds";
    Model3DS model{};
    std::string said, warned; // by the last read, on standard output and standard error

    ModelTest()
    {
        std::filesystem::current_path(testing::TempDir());
    }

    ~ModelTest() override
    {
        freeModel(&model);
        remove(name.c_str());
        std::filesystem::current_path(home);
    }

    int readFile(const std::string& path)
    {
        freeModel(&model);
        return import3DS(&model, path.c_str(), 1);
    }

    int read(const std::string& bytes)
    {
        remove(name.c_str()); // some file systems write through when a file is replaced
        std::ofstream(name, std::ios::binary) << bytes;
        return readFile(name);
    }

    /// Calls `act` and keeps what it says.
    int listen(auto act)
    {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int result = act();
        said = testing::internal::GetCapturedStdout();
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
        std::string list = std::to_string(model.numObjects);
        for (const int count : {vertices, faces, model.numMaterials, model.numCameras, model.numLights})
            list += '/' + std::to_string(count);
        return list;
    }
};
