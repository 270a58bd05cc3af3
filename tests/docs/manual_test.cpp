#include "engine/light.h"
#include "import3ds/scene3ds.h"
#include "support.h"

#include <map>
#include <regex>
#include <set>
#include <span>

// The manual against the program: words and defaults by what the parser does, options and messages by the
// source.

using Names = std::set<std::string>;
using Rows = std::vector<std::vector<std::string>>;

static std::string contents(const std::filesystem::path& path)
{
    std::ifstream file(std::filesystem::path(VARLO_SOURCE_DIR) / path);
    return {std::istreambuf_iterator<char>(file), {}};
}

const auto replaced = [](const std::string& text, const char* pattern, const char* by) {
    return std::regex_replace(text, std::regex(pattern), by);
};

/// The first and the last group of each match.
static Names matches(const std::string& text, const char* pattern = "`([^`]+)`")
{
    const std::regex expression(pattern);
    Names names;
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match)
        names.insert({(*match)[1], (*match)[match->size() - 1]});
    return names;
}

/// The rows of all tables, as cells, by the heading in front of them; rows of `width` cells, or of any
/// number.
static std::map<std::string, Rows> tablesOf(const char* page, size_t width = 0)
{
    std::map<std::string, Rows> tables;
    std::istringstream lines(contents(page));
    std::string heading;
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("## "))
            heading = line.substr(3);
        const Rows rows = line.starts_with("| ") ? rowsOf(line.substr(2)) : Rows{};
        if (!rows.empty() && !matches(rows[0][0]).empty() && (width == 0 || rows[0].size() == width))
            tables[heading].push_back(rows[0]);
    }
    return tables;
}

/// The tables of parameters, a row each with word, value, unit, default, how often, effect and faults.
const auto blocks = [] { return tablesOf("docs/reference.md", 7); };

using ManualTest = SceneTest;

TEST_F(ManualTest, EachBlockTakesTheWordsOfItsTable)
{
    const Folder folder;
    EXPECT_EQ(blocks().size(), 14);
    for (const auto& [name, rows] : blocks()) {
        const bool isModel = name == "3DS settings";
        const std::string head = isModel ? "{ " : name + (name == "polygon" ? " { 4 " : " { ");
        Names documented, taken;
        for (const auto& row : rows)
            documented.merge(matches(row[0]));
        for (const MotCle& keyword : std::span(liste_motcle, NUM_FOUND_KEYWORDS)) {
            const std::string path = folder.write("scene", head + keyword.texte);
            const Outcome outcome =
                inChild([&] { isModel ? parse3ds(path.c_str()) : parseScene(path.c_str()); });
            if (outcome.out.find("Unkown parameter") == std::string::npos)
                taken.insert(keyword.texte);
        }
        EXPECT_EQ(documented, taken) << name;
    }
}

/// All that a parameter with a default can change.
static std::string state()
{
    const ViewPoint& v = myViewPoint;
    const SurfaceAttrib& s = surface;
    const Color &b = myBackGroundColor, &h = myHaze.color, &c = s.color;
    const Light l = myLightList != nullptr ? recordOf<Light>(myLightList) : Light{};
    return line(v.up.x, v.up.y, v.up.z, v.fovX, v.ratio, v.aperture, v.focalLength, v.samples, v.projection) +
           line(myDisplay.width, myDisplay.height, iAntialias, adapt_dist, jitter, b.red, b.green, b.blue) +
           line(myHaze.factor, h.red, h.green, h.blue, jpeg_quality > 0 ? jpeg_quality : 90, c.red, c.green) +
           line(c.blue, s.ambient, s.diffuse, s.brilliance, s.specular, s.roughness, s.reflection) +
           line(s.reflectionType, s.reflectionSamples, s.reflectionRadius, s.refraction, s.refractionIndex) +
           line(l.lightType, l.shadowType, l.attenuation, l.cosMinAngle, l.cosMaxAngle);
}

TEST_F(ManualTest, DefaultsAreThoseOfTheBlocks)
{
    const std::pair<std::string, std::string> required[] = {
        {"camera", "position <0 0 5> look_at <0 0 0> "},
        {"settings", "output_type \"png\" output_name \"a\" "},
        {"light", "position <0 0 5> color 1 1 1 target <0 0 0> "},
        {"surface", ""}};
    const Folder folder;
    auto tables = blocks();
    int defaults = 0;
    for (const auto& [name, words] : required)
        for (const auto& row : tables[name])
            for (const std::string& value : matches(row[3])) {
                const std::string given = *matches(row[0]).begin() + " " + value;
                const std::string head = name + " { " + words;
                std::string states[2];
                for (const int i : {0, 1}) {
                    const std::string path = folder.write("scene", head + (i == 1 ? given : "") + " }");
                    resetScene();
                    printed([&] { parseScene(path.c_str()); });
                    states[i] = state();
                }
                EXPECT_EQ(states[0], states[1]) << name << ": " << given;
                ++defaults;
            }
    EXPECT_EQ(defaults, 32);
}

TEST(Manual, OptionsAreThoseOfTheProgram)
{
    Names documented;
    auto tables = tablesOf("docs/command-line.md");
    for (const auto& row : tables["Options"])
        documented.merge(matches(row[0]));
    EXPECT_EQ(documented, matches(contents("src/core/args.cpp"), "forms = \\{\"([^\"]+)\", \"([^\"]+)\""));
}

/// The lines that a source prints, with ... for what is filled in.
static Names messagesOf(const std::string& source)
{
    const char* const steps[][2] = {{": $", ": %s!"},
                                    {"%[0-9.lz]*[a-z]", "..."},
                                    {"(\\\\t| )+", " "},
                                    {" ?\\\\n ?|^ | $", "\n"},
                                    {"\\\\(.)", "$1"}};
    // Words; but not the options of the usage text, nor its other lines and those of the report.
    static const std::regex isMessage("(?!-|Usage|Example|Report|Send|Cone:|varlo pic!|(?!NULL).* = )"
                                      ".*[A-Za-z']{2}.* .*[A-Za-z.]{2}.*");
    Names found;
    for (std::string text :
         matches(replaced(source, "//[^\n]*|\"\\s*\n\\s*\"", ""), "\"((?:[^\"\\\\\n]|\\\\.)*)\"")) {
        for (const auto& [pattern, by] : steps)
            text = replaced(text, pattern, by);
        std::istringstream lines(text);
        for (std::string message; std::getline(lines, message);)
            if (std::regex_match(message, isMessage))
                found.insert(message);
    }
    return found;
}

TEST(Manual, MessagesAreThoseOfTheProgram)
{
    Names printed, documented, ofBlocks;
    for (const auto& file : std::filesystem::recursive_directory_iterator(VARLO_SOURCE_DIR "/src"))
        if (file.is_regular_file())
            printed.merge(messagesOf(contents(file.path())));
    const auto collect = [](const auto& tables, size_t column, Names* names) {
        for (const auto& [heading, rows] : tables)
            for (const auto& row : rows)
                for (const std::string& message : matches(row[column]))
                    names->insert(replaced(message, "\\b([NCWH]|NAME|WORD|PART)\\b", "..."));
    };
    collect(tablesOf("docs/messages.md"), 0, &documented);
    collect(blocks(), 6, &ofBlocks);
    std::vector<std::string> differing;
    std::ranges::set_symmetric_difference(documented, printed, std::back_inserter(differing));
    EXPECT_EQ(differing, std::vector<std::string>{});
    for (const std::string& message : ofBlocks)
        EXPECT_TRUE(documented.contains(message) || message.find(' ') == std::string::npos) << message;
}
