#pragma once

#include "vec.h"

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

/// What a program left behind.
struct Outcome {
    int status;
    std::string out, err;
};

struct Patch {
    size_t surface; // its place among the surfaces
    std::vector<Vec> corners, normals;
};

/// The parts of a scene, as they stand in it.
struct Scene {
    std::vector<std::string> surfaces, lights;
    std::string camera;
    std::vector<Patch> patches;
};

/// The numbers in angle brackets behind `word`, each time that it stands in `text`.
inline std::vector<Vec> vectors(const std::string& text, const std::string& word)
{
    std::vector<Vec> found;
    for (size_t at = 0; (at = text.find(word + " <", at)) != std::string::npos; ++at) {
        Vec v;
        if (sscanf(text.c_str() + at + word.size(), " <%lf %lf %lf>", &v.x, &v.y, &v.z) == 3)
            found.push_back(v);
    }
    return found;
}

/// The numbers behind `word`, or zeros.
inline Vec numbers(const std::string& text, const std::string& word)
{
    Vec v;
    const size_t at = text.find(" " + word + " ");
    if (at != std::string::npos)
        sscanf(text.c_str() + at + word.size() + 1, "%lf %lf %lf", &v.x, &v.y, &v.z);
    return v;
}

inline Scene parseScene(const std::string& text)
{
    Scene scene;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        const std::string word = line.substr(0, line.find(' '));
        if (word == "surface")
            scene.surfaces.push_back(line);
        else if (word == "light")
            scene.lights.push_back(line);
        else if (word == "camera")
            scene.camera = line;
        else if (word == "patch" || word == "triangle")
            scene.patches.push_back(
                {scene.surfaces.size() - 1, vectors(line, "vertex"), vectors(line, "normal")});
    }
    return scene;
}

/// A new folder with models in it, in which the programs run.
struct ImportTest : testing::Test {
    std::filesystem::path folder;

    void SetUp() override
    {
        char name[] = "/tmp/varlo-import-XXXXXX";
        ASSERT_NE(mkdtemp(name), nullptr);
        folder = name;
    }

    void TearDown() override
    {
        std::filesystem::remove_all(folder);
    }

    void write(const std::string& name, const std::string& text) const
    {
        std::ofstream(folder / name, std::ios::binary) << text;
    }

    std::string read(const std::string& name) const
    {
        std::ostringstream text;
        text << std::ifstream(folder / name, std::ios::binary).rdbuf();
        return text.str();
    }

    /// Runs a command of the shell.
    Outcome run(const std::string& command) const
    {
        const int status =
            system(("cd " + folder.string() + " && { " + command + "; } >out.txt 2>err.txt").c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, read("out.txt"), read("err.txt")};
    }

    Outcome import(const std::string& arguments) const
    {
        return run(VARLO_IMPORT " " + arguments);
    }

    /// The scene of a run that has to succeed.
    Scene scene(const std::string& arguments) const
    {
        const Outcome outcome = import(arguments);
        EXPECT_EQ(outcome.status, 0) << arguments << "\n" << outcome.err;
        return parseScene(outcome.out);
    }

    /// The rendered picture, 3 bytes a pixel.
    std::string picture(const std::string& arguments, int width, int height) const
    {
        const Outcome outcome =
            run(VARLO_IMPORT " " + arguments + " -o s.vlo && " VARLO_BINARY " -i s.vlo -o s -ppm -r " +
                std::to_string(width) + " " + std::to_string(height));
        EXPECT_EQ(outcome.status, 0) << outcome.out << outcome.err;
        const std::string ppm = read("s.ppm");
        const size_t size = static_cast<size_t>(3 * width * height);
        return ppm.size() > size ? ppm.substr(ppm.size() - size) : std::string(size, '\0');
    }
};

/// The text of a cube from 0 to 1: corner 4x + 2y + z + 1 is at <x y z>. `head` stands ahead of its faces.
inline std::string cube(const std::string& head)
{
    std::ostringstream text;
    for (int i = 0; i < 8; ++i)
        text << "v " << (i >> 2) << " " << (i >> 1 & 1) << " " << (i & 1) << "\n";
    text << head;
    for (const char* face : {"2 6 8 4", "6 5 7 8", "5 1 3 7", "1 2 4 3", "4 8 7 3", "1 5 6 2"})
        text << "f " << face << "\n";
    return text.str();
}
