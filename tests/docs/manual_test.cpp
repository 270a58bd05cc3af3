#include "import3ds/settings3ds.h"
#include "support.h"

#include <map>
#include <regex>
#include <set>
#include <span>

// The manual against the program: words and defaults by what the parser does, options and messages by the
// source, scenes by their files.

using Names = std::set<std::string>;
using Rows = std::vector<std::vector<std::string>>;

static std::string contents(const std::filesystem::path& path)
{
    std::ifstream file(std::filesystem::path(VARLO_SOURCE_DIR) / path);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The first and the last group of each match.
static Names matches(const std::string& text, const char* pattern)
{
    const std::regex expression(pattern);
    Names names;
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match)
        names.insert({(*match)[1], (*match)[match->size() - 1]});
    return names;
}

static Names quoted(const std::string& text)
{
    return matches(text, "`([^`]+)`");
}

/// The rows of all tables, as cells, by the heading in front of them.
static std::map<std::string, Rows> tablesOf(const char* page)
{
    std::map<std::string, Rows> tables;
    std::istringstream lines(contents(page));
    std::string heading;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("## "))
            heading = line.substr(3);
        if (line.starts_with("| "))
            tables[heading].push_back(rowsOf(line.c_str() + 2)[0]);
    }
    return tables;
}

/// The tables of parameters, a row each with word, value, unit, default, how often, effect and faults.
static std::map<std::string, Rows> blocks()
{
    std::map<std::string, Rows> tables = tablesOf("docs/reference.md");
    for (auto& [block, rows] : tables)
        std::erase_if(rows, [](const auto& row) { return row.size() != 7 || quoted(row[0]).empty(); });
    std::erase_if(tables, [](const auto& table) { return table.second.empty(); });
    return tables;
}

struct ManualTest : SceneTest {
    Folder folder;
    void parse(const std::string& text)
    {
        parseScene(folder.write("scene", text).c_str());
    }
};

TEST_F(ManualTest, EachBlockTakesTheWordsOfItsTable)
{
    const auto parse3DSSettings = [this](const std::string& text) {
        char name[INPUT_NAME_SIZE];
        int numbers[4];
        double radius;
        FILE* stream = fopen(folder.write("settings", text).c_str(), "r");
        yy_3DSSettings(stream, name, &numbers[0], &numbers[1], &numbers[2], &radius, &numbers[3]);
        fclose(stream);
    };
    EXPECT_EQ(blocks().size(), 14);
    for (const auto& [name, rows] : blocks()) {
        const bool isModel = name == "3DS settings";
        const std::string head = isModel ? "{ " : name + (name == "polygon" ? " { 4 " : " { ");
        Names documented, taken;
        for (const auto& row : rows)
            documented.merge(quoted(row[0]));
        for (const MotCle& keyword : std::span(liste_motcle, NUM_FOUND_KEYWORDS)) {
            const Outcome outcome =
                inChild([&, text = head + keyword.texte] { isModel ? parse3DSSettings(text) : parse(text); });
            if (outcome.out.find("Unkown parameter") == std::string::npos)
                taken.insert(keyword.texte);
        }
        EXPECT_EQ(documented, taken) << name;
    }
}

/// All that a parameter with a default can change.
static std::vector<double> state()
{
    const ViewPoint& v = myViewPoint;
    const SurfaceAttrib& s = surface;
    const Color &b = myBackGroundColor, &h = myHaze.color;
    const Light l = myLightList != nullptr ? myLightList->light : Light{};
    const int quality = jpeg_quality > 0 ? jpeg_quality : 90;
    std::istringstream values(
        line(v.up.x, v.up.y, v.up.z, v.fovX, v.ratio, v.aperture, v.focalLength, v.samples, v.projection,
             myDisplay.width, myDisplay.height, iAntialias, adapt_dist, jitter, b.red, b.green, b.blue,
             myHaze.factor, h.red, h.green, h.blue, quality, s.color.red, s.color.green, s.color.blue) +
        line(s.ambient, s.diffuse, s.brilliance, s.specular, s.roughness, s.reflection, s.reflectionType,
             s.reflectionSamples, s.reflectionRadius, s.refraction, s.refractionIndex, l.lightType,
             l.shadowType, l.attenuation, l.cosMinAngle, l.cosMaxAngle));
    return {std::istream_iterator<double>(values), {}};
}

TEST_F(ManualTest, DefaultsAreThoseOfTheBlocks)
{
    const char* const required[][2] = {{"camera", "position <0 0 5> look_at <0 0 0>"},
                                       {"settings", "output_type \"png\" output_name \"a\""},
                                       {"light", "position <0 0 5> color 1 1 1 target <0 0 0>"},
                                       {"surface", ""}};
    auto tables = blocks();
    int defaults = 0;
    for (const auto& [block, words] : required) {
        for (const auto& row : tables[block]) {
            if (quoted(row[3]).empty())
                continue;
            const std::string given = *quoted(row[0]).begin() + " " + *quoted(row[3]).begin();
            std::vector<double> states[2];
            for (const int i : {0, 1}) {
                const std::string text =
                    std::string(block) + " { " + words + " " + (i == 1 ? given : "") + " }";
                resetScene();
                printed([&] { parse(text); });
                states[i] = state();
            }
            EXPECT_EQ(states[0], states[1]) << block << ": " << given;
            ++defaults;
        }
    }
    EXPECT_EQ(defaults, 32);
}

TEST(Manual, OptionsAreThoseOfTheProgram)
{
    const auto tables = tablesOf("docs/command-line.md");
    Names documented;
    for (const auto& row : tables.at("Options"))
        documented.merge(quoted(row[0]));
    EXPECT_EQ(documented, matches(contents("src/core/args.cpp"), "forms = \\{\"([^\"]+)\", \"([^\"]+)\""));
}

/// The lines that a source prints, with ... for what is filled in.
static Names messagesOf(std::string source)
{
    const auto replace = [](std::string* text, const char* pattern, const char* by) {
        *text = std::regex_replace(*text, std::regex(pattern), by);
    };
    replace(&source, "//[^\n]*|\"\\s*\n\\s*\"", "");
    Names found;
    for (std::string text : matches(source, "\"((?:[^\"\\\\\n]|\\\\.)*)\"")) {
        replace(&text, ": $", ": %s!");
        replace(&text, "%[0-9.lz]*[a-z]", "...");
        replace(&text, "(\\\\t| )+", " ");
        replace(&text, "\\\\n", "\n");
        replace(&text, "\\\\(.)", "$1");
        std::istringstream lines(text);
        for (std::string message; std::getline(lines, message);) {
            replace(&message, "^ +| +$", "");
            // Words; but not the options of the usage text.
            static const std::regex isMessage("(?!-).*[A-Za-z']{2}.* .*[A-Za-z.]{2}.*");
            if (std::regex_match(message, isMessage))
                found.insert(message);
        }
    }
    return found;
}

TEST(Manual, MessagesAreThoseOfTheProgram)
{
    Names printed, documented;
    for (const auto& file : std::filesystem::recursive_directory_iterator(VARLO_SOURCE_DIR "/src"))
        if (file.is_regular_file())
            printed.merge(messagesOf(contents(file.path())));
    std::erase_if(printed, [](const std::string& message) {
        return std::regex_match(message,
                                std::regex("(Usage|Example|Report|Send|Cone:).*|(?!NULL).* = .*|varlo pic!"));
    });
    const auto filledIn = [](const std::string& text) {
        return std::regex_replace(text, std::regex("\\b([NCWH]|NAME|WORD|PART)\\b"), "...");
    };
    for (const auto& [heading, rows] : tablesOf("docs/messages.md"))
        for (const auto& row : rows)
            for (const std::string& message : quoted(row[0]))
                documented.insert(filledIn(message));
    std::vector<std::string> differing;
    std::ranges::set_symmetric_difference(documented, printed, std::back_inserter(differing));
    EXPECT_EQ(differing, std::vector<std::string>{});

    for (const auto& [block, rows] : blocks())
        for (const auto& row : rows)
            for (const std::string& message : quoted(row[6]))
                EXPECT_TRUE(documented.contains(filledIn(message)) || message.find(' ') == std::string::npos)
                    << message;
}

TEST(Manual, ScenesThatItShowsAreFiles)
{
    std::string scenes;
    for (const auto& file : std::filesystem::directory_iterator(VARLO_SOURCE_DIR "/docs/scenes"))
        scenes += contents(file.path());
    for (const char* page : {"README.md", "docs/first-picture.md", "docs/tutorial.md", "docs/reference.md",
                             "docs/models.md", "docs/limits.md"})
        for (const std::string& shown : matches(contents(page), "```(?:vlo|set)\n([^`]*)```"))
            EXPECT_NE(scenes.find(shown), std::string::npos) << page << ":\n" << shown;
}
