#pragma once

#include "core/settings.h"
#include "core/surface.h"
#include "engine/light.h"
#include "engine/random.h"
#include "scene/colors.h"
#include "scene/current.h"
#include "scene/keywords.h"
#include "scene/lexer.h"
#include "scene/parser.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

struct SceneTest : testing::Test {
    SceneTest()
    {
        resetScene();
    }
};

/// Gives `object` a surface of its own.
inline void paint(Object* object, const SurfaceAttrib& skin)
{
    object->surface = new SurfaceAttrib(skin);
}

inline void expectNear(Vec actual, Vec expected)
{
    EXPECT_LE(lengthOf(actual - expected), 1e-12) << actual.x << " " << actual.y << " " << actual.z;
}

inline void expectColor(Color actual, Color expected)
{
    expectNear({actual.red, actual.green, actual.blue}, {expected.red, expected.green, expected.blue});
}

/// The values in a line, with a blank behind each.
template <class... Values>
std::string line(const Values&... values)
{
    std::ostringstream stream;
    ((stream << values << ' '), ...);
    return stream.str();
}

inline std::ostream& operator<<(std::ostream& out, const Vec& v)
{
    return out << v.x << ' ' << v.y << ' ' << v.z;
}
inline std::ostream& operator<<(std::ostream& out, const Color& c)
{
    return out << c.red << ' ' << c.green << ' ' << c.blue;
}
inline std::ostream& operator<<(std::ostream& out, const SurfaceAttrib& s)
{
    return out << line(s.color, s.ambient, s.diffuse, s.brilliance, s.specular, s.roughness, s.reflection,
                       s.reflectionType, s.reflectionSamples, s.reflectionRadius, s.refraction,
                       s.refractionIndex);
}
inline std::ostream& operator<<(std::ostream& out, const Light& l)
{
    return out << line(l.color, l.position, l.direction, l.lightType, l.shadowType, l.attenuation, l.samples,
                       l.radius, l.cosMinAngle, l.cosMaxAngle);
}

/// The lines of a table with their cells, which stand between bars; ~ stands for a line end in a cell.
inline std::vector<std::vector<std::string>> rowsOf(const std::string& table)
{
    std::vector<std::vector<std::string>> rows;
    std::istringstream lines(table);
    for (std::string line; std::getline(lines, line);) {
        std::replace(line.begin(), line.end(), '~', '\n');
        std::istringstream cells(line);
        rows.emplace_back();
        for (std::string cell; std::getline(cells, cell, '|');)
            rows.back().push_back(cell);
    }
    return rows;
}

/// What `body` prints on standard output.
inline std::string printed(const std::function<void()>& body)
{
    testing::internal::CaptureStdout();
    body();
    return testing::internal::GetCapturedStdout();
}

/// `text` as a stream. The tests leave it open.
inline FILE* streamOf(const std::string& text)
{
    return fmemopen(const_cast<char*>(text.data()), text.size(), "r");
}

/// How many random numbers of a share `body` draws.
inline int drawsOf(const std::function<void()>& body, size_t share = 0, size_t shares = 1)
{
    startRandom(share, shares);
    body();
    const double next = randomNumber();
    startRandom(share, shares);
    int draws = 0;
    while (randomNumber() != next)
        ++draws;
    return draws;
}

/// A new folder, which goes with its files.
struct Folder {
    std::string path = testing::TempDir() + "varlo-XXXXXX";
    Folder()
    {
        EXPECT_NE(mkdtemp(path.data()), nullptr);
    }
    ~Folder()
    {
        std::filesystem::remove_all(path);
    }
    std::string write(const std::string& name, const std::string& text) const
    {
        std::ofstream(path + "/" + name) << text;
        return path + "/" + name;
    }
    std::string read(const std::string& name) const
    {
        std::ifstream file(path + "/" + name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
};

/// How a process ended, and what it printed on both outputs.
struct Outcome {
    int status; // 1000 plus the signal if one ended it
    std::string out, err;
};

/// All that was written to a file in memory, which goes.
inline std::string drained(int file)
{
    std::string text(static_cast<size_t>(lseek(file, 0, SEEK_END)), '\0');
    EXPECT_EQ(pread(file, text.data(), text.size(), 0), static_cast<ssize_t>(text.size()));
    close(file);
    return text;
}

/// Runs `body` in a process of its own, which ends with status 0 if it returns.
inline Outcome inChild(const std::function<void()>& body)
{
    const int out = memfd_create("out", MFD_CLOEXEC), err = memfd_create("err", MFD_CLOEXEC);
    fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        dup2(out, STDOUT_FILENO);
        dup2(err, STDERR_FILENO);
        body();
        exit(0);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status), drained(out), drained(err)};
}
