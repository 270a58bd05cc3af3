#include "core/args.h"
#include "import3ds/scene3ds.h"
#include "support.h"

#include <map>
#include <regex>
#include <set>
#include <span>

// The manual against the program: words and defaults by what the parser does, options by their table, and
// messages by the constants of the binary.

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

/// The words between backticks.
static Names matches(const std::string& text)
{
    static const std::regex expression("`([^`]+)`");
    Names names;
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end; ++match)
        names.insert((*match)[1]);
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
        const auto read = isModel ? parse3ds : parseScene;
        const std::string head = isModel ? "{ " : name + (name == "polygon" ? " { 4 " : " { ");
        const std::string refusal =
            " Unkown parameter in " + (isModel ? "3ds settings" : name) + " structure\n";
        Names documented, taken;
        for (const auto& row : rows)
            documented.merge(matches(row[0]));
        for (const MotCle& keyword : std::span(liste_motcle, NUM_FOUND_KEYWORDS)) {
            const std::string path = folder.write("scene", head + keyword.texte);
            const Outcome outcome = inChild([&] { read(path.c_str()); });
            if (outcome.out.find("Unkown parameter") == std::string::npos)
                taken.insert(keyword.texte);
            else
                EXPECT_TRUE(outcome.out.ends_with(refusal)) << outcome.out;
        }
        EXPECT_EQ(documented, taken) << name;
    }
}

/// All that a parameter with a default can change.
static std::string state()
{
    const ViewPoint& v = myViewPoint;
    const Light light = myLightList != nullptr ? recordOf<Light>(myLightList) : Light{};
    return line(v.up, v.fovX, v.ratio, v.aperture, v.focalLength, v.samples, v.projection, myDisplay.width,
                myDisplay.height, iAntialias, adapt_dist, jitter, myBackGroundColor, myHaze.factor,
                myHaze.color, jpeg_quality > 0 ? jpeg_quality : 90, surface, light);
}

TEST_F(ManualTest, DefaultsAndWhatStandsOnceAreThoseOfTheBlocks)
{
    const Folder folder;
    const auto read = [&](const std::string& text) {
        resetScene();
        parseScene(folder.write("scene", text).c_str());
    };
    const auto parse = [&](const std::string& text) {
        printed([&] { read(text); });
        return state();
    };
    int defaults = 0, refusals = 0;
    for (const auto& [name, rows] : blocks()) {
        std::string required = name + " { ";
        Names once;
        for (const auto& row : rows) {
            const std::string number = std::to_string(once.size() + 1); // no two are the same
            const std::map<std::string, std::string> values = {{" vector ", "<1 2 " + number + "> "},
                                                               {" colour ", "1 1 1 "},
                                                               {" decimal ", number + " "},
                                                               {" string ", "\"png\" "}};
            if (row[4] == " once ")
                required += *once.insert(*matches(row[0]).begin() + " " + values.at(row[1])).first;
        }
        for (const auto& row : rows)
            for (const std::string& value : matches(row[3])) {
                const std::string given = required + *matches(row[0]).begin() + " " + value;
                EXPECT_EQ(parse(required + "}"), parse(given + " }")) << given;
                ++defaults;
            }
        for (const std::string& again : once)
            refusals += inChild([&] { read(required + again + "}"); }).status == 255;
    }
    EXPECT_EQ(line(defaults, refusals), "32 24 ");
}

TEST(Manual, OptionsAreThoseOfTheProgram)
{
    Names documented, taken;
    auto tables = tablesOf("docs/command-line.md");
    for (const auto& row : tables["Options"])
        documented.merge(matches(row[0]));
    for (const Option& option : options)
        taken.insert(std::begin(option.forms), std::end(option.forms));
    EXPECT_EQ(documented, taken);
}

/// Text of the manual or a format of the program: a line each, with ... for what is filled in.
static Names messagesOf(std::string text)
{
    const char* const steps[][2] = {{"\\b([NCWH]|NAME|WORD|PART)\\b|%[0-9.lz]*[a-z]", "..."},
                                    {": $", ": ...!"},
                                    {"[\t ]+", " "},
                                    {" ?\n ?|^ | $", "\n"}};
    for (const auto& [pattern, by] : steps)
        text = replaced(text, pattern, by);
    Names found;
    std::istringstream lines(text);
    for (std::string message; std::getline(lines, message);)
        if (!message.empty())
            found.insert(message);
    return found;
}

/// All messages of two words or more that stand in the constants of the program, which end in a zero each.
[[maybe_unused]] static Names messagesOfTheProgram()
{
    // But not what stands in the usage text and in the dump of a record, nor what the C++ library says.
    static const std::regex isMessage("(?!-|Usage|Example|Report|Send|Cone:|varlo pic!|basic_string|vector::)"
                                      "(?!(?!NULL).* = ).*[A-Za-z']{2}.* .*[A-Za-z.]{2}.*");
    const Folder folder;
    const std::string path = folder.path + "/constants";
    EXPECT_EQ(system(("objcopy -O binary --only-section=.rodata " VARLO_BINARY " " + path).c_str()), 0);
    std::istringstream constants(folder.read("constants"));
    Names found;
    const auto isText = [](unsigned char c) { return isprint(c) != 0 || isspace(c) != 0; };
    for (std::string text; std::getline(constants, text, '\0');) {
        // numbers may stand in front
        text.erase(text.begin(), std::find_if_not(text.rbegin(), text.rend(), isText).base());
        for (const std::string& message : messagesOf(text))
            if (std::regex_match(message, isMessage))
                found.insert(message);
    }
    return found;
}

TEST(Manual, MessagesAreThoseOfTheProgram)
{
    Names documented;
    const auto collect = [&](const auto& tables, size_t column) {
        for (const auto& [heading, rows] : tables)
            for (const auto& row : rows)
                for (const std::string& text : matches(row[column]))
                    if (text.find(' ') != std::string::npos)
                        documented.merge(messagesOf(text));
    };
    collect(tablesOf("docs/messages.md"), 0);
    const Names inOnePlace = documented;
    collect(blocks(), 6);
    EXPECT_EQ(documented, inOnePlace);
#ifdef VARLO_RELEASE // other builds hold more constants
    const Names printed = messagesOfTheProgram();
    // Bytes of a number that are letters too make a constant longer at its head.
    Names differing;
    for (const std::string& message : documented)
        if (std::ranges::none_of(printed, [&](const std::string& text) { return text.ends_with(message); }))
            differing.insert(message);
    for (const std::string& message : printed)
        if (std::ranges::none_of(documented, [&](const std::string& end) { return message.ends_with(end); }))
            differing.insert(message);
    // Faults of the program itself: a build without checks leaves out the one, and the other where the
    // compiler proves it impossible.
    Names missing = {"The walk and the heap disagree"};
#ifndef __clang__
    missing.insert("Priority queue is empty, dying...");
#endif
    EXPECT_EQ(differing, missing);
#endif
}
