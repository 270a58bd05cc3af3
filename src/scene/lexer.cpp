#include "scene/lexer.h"

#include "core/fatal.h"
#include "scene/colors.h"
#include "scene/keywords.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string_view>
#include <utility>

// Character classes of the scanner; a byte of 128 or above belongs to none.
enum : unsigned char { SPACE = 1, LETTER = 2, IN_WORD = 4, STARTS_NUMBER = 8, IN_NUMBER = 16 };

static constexpr auto classes = [] {
    std::array<unsigned char, 256> table{};
    const auto mark = [&table](std::string_view characters, int flags) {
        for (const char c : characters)
            table[static_cast<unsigned char>(c)] =
                static_cast<unsigned char>(table[static_cast<unsigned char>(c)] | flags);
    };
    mark(" \t\n\v\f\r", SPACE);
    mark("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ", LETTER | IN_WORD);
    mark("_.\\:", IN_WORD);
    mark("0123456789", IN_WORD | STARTS_NUMBER | IN_NUMBER);
    mark("+.-", STARTS_NUMBER | IN_NUMBER);
    mark("eE", IN_NUMBER);
    return table;
}();

// The codes of the characters that are tokens, here in the order of their codes; 0 for all others.
static constexpr auto marks = [] {
    std::array<unsigned char, 256> codes{};
    for (unsigned char code = TOKEN_OPEN; const char c : std::string_view("{}<>#\""))
        codes[static_cast<unsigned char>(c)] = code++;
    return codes;
}();

/// False for the end of file too.
static bool is(int c, int flags)
{
    return c >= 0 && (classes[static_cast<size_t>(c)] & flags) != 0;
}

/// The next character. A read that fails is not the end of the file: it ends the run.
static int get(FILE* stream)
{
    const int c = getc_unlocked(stream);
    if (c == EOF && ferror(stream) != 0)
        endForFile(sourceName, errno, -1);
    return c;
}

/// The next character; counts line ends.
static int next(FILE* stream)
{
    const int c = get(stream);
    if (c == '\n')
        ++comptligne;
    return c;
}

// The character that ended the last word or number, until it is read again. ungetc would do, but takes its
// time, and there is one of these for most tokens.
static constinit const FILE* heldOf = nullptr;
static constinit int held = EOF;

/// The first character of a token, or what stands in front of it.
static int resume(FILE* stream)
{
    if (heldOf != stream || held == EOF)
        return next(stream);
    if (held == '\n')
        ++comptligne;
    return std::exchange(held, EOF);
}

void yyerror(const char* message)
{
    printf("\n Parser Error - line: %d", comptligne);
    if (*message != '\0')
        printf(" - %s\n", message);
    else
        putchar('\n');
    exit(-1);
}

// The search runs over a hash table with a chain of rows for each value, made by the compiler, so that a word
// is compared with one or two rows and not with all of them.
constexpr int NUM_BUCKETS = 256;
struct KeywordIndex {
    std::int8_t first[NUM_BUCKETS];
    std::int8_t chain[NUM_FOUND_KEYWORDS];
};

static constexpr size_t bucketOf(const char* word)
{
    size_t hash = 0;
    for (; *word != '\0'; ++word)
        hash = hash * 31 + static_cast<unsigned char>(*word);
    return hash % NUM_BUCKETS;
}

static constexpr KeywordIndex keywords = [] {
    KeywordIndex index{};
    for (std::int8_t& row : index.first)
        row = -1;
    for (int row = NUM_FOUND_KEYWORDS - 1; row >= 0; --row) {
        std::int8_t& first = index.first[bucketOf(liste_motcle[row].texte)];
        index.chain[row] = first;
        first = static_cast<std::int8_t>(row);
    }
    return index;
}();

int Trouve_MotCle()
{
    for (int row = keywords.first[bucketOf(chaine)]; row >= 0; row = keywords.chain[row])
        if (strcmp(chaine, liste_motcle[row].texte) == 0)
            return mot_cle = liste_motcle[row].code;
    return 0;
}

void resetLexer()
{
    comptligne = 1;
    held = EOF;
}

/// Collects `c` and what follows it of the given class into chaine, shows each to `see`, holds the first
/// other character back and returns the end of the text.
template <class See>
static const char* collect(FILE* stream, int c, int flags, See see)
{
    char* end = chaine;
    do {
        if (end == chaine + TOKEN_SIZE - 1)
            yyerror(" token too long");
        *end++ = static_cast<char>(c);
        see(c);
        c = get(stream);
    } while (is(c, flags));
    heldOf = stream;
    held = c;
    *end = '\0';
    return end;
}

/// What strtod or strtol in base 10 makes of chaine: the longest leading part that is a number, else 0.
template <class Number, class Fallback>
static Number convert(const char* end, Fallback fallback)
{
    // from_chars knows no plus sign, and nothing may stand between a plus and the number.
    const char* first = chaine;
    if (*first == '+' && first[1] != '-')
        ++first;
    Number value{};
    // Some C++ libraries read no decimals with it; the C library gives the same, only more slowly.
    if constexpr (requires { std::from_chars(first, end, value); }) {
        if (std::from_chars(first, end, value).ec != std::errc::result_out_of_range)
            return value;
    }
    return fallback();
}

namespace
{
/// Most decimals are a few digits with a point, whose value is known as soon as they are read.
struct ShortDecimal {
    std::uint64_t digits = 0;
    int count = 0;  // of digits
    int whole = -1; // of them in front of the point, or -1 without one
    int minus = 0;  // 1 behind a minus in front of all
    bool isShort = true;

    void see(int c)
    {
        if (const int digit = c - '0'; digit >= 0 && digit <= 9) {
            digits = 10 * digits + static_cast<std::uint64_t>(digit);
            ++count;
        } else if (c == '.' && whole < 0) {
            whole = count;
        } else {
            isShort = isShort && c == '-' && count == 0 && whole < 0 && minus == 0;
            minus = 1;
        }
    }

    /// Up to 15 digits and their power of ten are whole numbers that a double holds, so that one division
    /// rounds as the exact conversion does (Clinger, How to read floating point numbers accurately, 1990).
    /// False for any other text.
    bool convert(double* value) const
    {
        static constexpr double powers[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                            1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
        if (!isShort || count == 0 || count >= static_cast<int>(std::size(powers)))
            return false;
        // Half of all coordinates are negative: a product does not have to guess which.
        *value = (1 - 2 * minus) * (static_cast<double>(digits) / powers[whole < 0 ? 0 : count - whole]);
        return true;
    }
};
} // namespace

/// Reads the number that begins with `c`.
static void readNumber(FILE* stream, int c)
{
    ShortDecimal number;
    const char* end = collect(stream, c, IN_NUMBER, [&number](int each) { number.see(each); });
    if (type_motcle == MODE_DECIMAL && number.convert(&val_DBL))
        return;
    if (type_motcle == MODE_DECIMAL)
        val_DBL = convert<double>(end, [] { return strtod(chaine, nullptr); });
    else // 64 bits also where `long` has 32: what is too large for an int keeps its low half everywhere
        val_INT = static_cast<int>(convert<std::int64_t>(end, [] { return strtoll(chaine, nullptr, 10); }));
}

/// Skips white space and comments and returns the first character behind them.
static int skipBlank(FILE* stream)
{
    for (;;) {
        int c = resume(stream);
        while (is(c, SPACE))
            c = next(stream);
        if (c == ';') {
            while (c != '\n' && c != EOF)
                c = next(stream);
        } else if (c == '[') {
            while (c != ']') {
                c = next(stream);
                if (c == EOF)
                    yyerror(" unterminated comment");
            }
        } else {
            return c;
        }
    }
}

int Lire_MotCle(FILE* stream)
{
    chaine[0] = '\0';
    const int c = skipBlank(stream);
    if (c == EOF)
        return mot_cle = TOKEN_EOF;
    if (marks[static_cast<size_t>(c)] != 0)
        return mot_cle = marks[static_cast<size_t>(c)];
    if (is(c, LETTER)) {
        collect(stream, c, IN_WORD, [](int) {});
        return mot_cle = Trouve_MotCle();
    }
    if (is(c, STARTS_NUMBER)) {
        readNumber(stream, c);
        return mot_cle = TOKEN_NUMBER;
    }
    printf("\n Syntaxic analyser stopped on character: '%c'", c);
    printf("\n Please review the script");
    yyerror("");
}

/// Reads a token that has to be of the kind `code`.
static void expect(FILE* stream, int code, const char* message)
{
    if (Lire_MotCle(stream) != code)
        yyerror(message);
}

void Lire_Chaine(FILE* stream)
{
    type_motcle = MODE_DECIMAL;
    expect(stream, TOKEN_QUOTE, " string expected");
    Lire_MotCle(stream);
    memcpy(strTemp, chaine, sizeof strTemp);
    expect(stream, TOKEN_QUOTE, " '\"' string delimiter expected");
}

void Lire_Decimal(FILE* stream)
{
    type_motcle = MODE_DECIMAL;
    expect(stream, TOKEN_NUMBER, " Decimal value expected");
}

void Lire_Entier(FILE* stream)
{
    type_motcle = MODE_INTEGER;
    expect(stream, TOKEN_NUMBER, " Integer value expected");
}

void Lire_Vecteur(FILE* stream)
{
    type_motcle = MODE_DECIMAL;
    expect(stream, TOKEN_LESS, " Opening backet '<' expected before x component");
    expect(stream, TOKEN_NUMBER, " x component expected");
    vect_tmp.x = val_DBL;
    expect(stream, TOKEN_NUMBER, " y component expected");
    vect_tmp.y = val_DBL;
    expect(stream, TOKEN_NUMBER, " z componente expected");
    vect_tmp.z = val_DBL;
    expect(stream, TOKEN_GREATER, " Closing bracket '>' expected after z component");
}

void Lire_RVB(FILE* stream)
{
    type_motcle = MODE_DECIMAL;
    if (Lire_MotCle(stream) == TOKEN_HASH) {
        Lire_MotCle(stream);
        const ColorEntry* entry = findColor(myColorList, chaine);
        if (entry == nullptr)
            yyerror(" Color declaration not found");
        rvb_tmp = entry->color;
        return;
    }
    if (mot_cle != TOKEN_NUMBER)
        yyerror(" Red component expected");
    rvb_tmp.red = val_DBL;
    expect(stream, TOKEN_NUMBER, " Green component expected");
    rvb_tmp.green = val_DBL;
    expect(stream, TOKEN_NUMBER, " Blue component expeced");
    rvb_tmp.blue = val_DBL;
}
