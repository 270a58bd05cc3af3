#include "scene/block.h"

#include "scene/lexer.h"

#include <algorithm>
#include <cstring>

/// Reads one value of each form. An overload a form, so that a table cannot name the wrong one.
static void readInto(FILE* stream, double* target)
{
    Lire_Decimal(stream);
    *target = val_DBL;
}

static void readInto(FILE* stream, int* target)
{
    Lire_Entier(stream);
    *target = val_INT;
}

static void readInto(FILE* stream, Vec* target)
{
    Lire_Vecteur(stream);
    *target = vect_tmp;
}

static void readInto(FILE* stream, Color* target)
{
    Lire_RVB(stream);
    *target = rvb_tmp;
}

static void readInto(FILE* stream, char* target)
{
    Lire_Chaine(stream);
    memcpy(target, strTemp, sizeof strTemp);
}

template <class T>
static void store(FILE* stream, const target::Value<T>& value, const BlockWord& word)
{
    readInto(stream, value.place);
    if (value.accept != nullptr && !value.accept(value.place))
        yyerror(word.fault);
}

static void store(FILE* stream, const target::Choices& choices, const BlockWord& word)
{
    Lire_Chaine(stream);
    const auto choice = std::find_if(choices.words.begin(), choices.words.end(),
                                     [](const Choice& each) { return strcmp(strTemp, each.word) == 0; });
    if (choice == choices.words.end())
        yyerror(word.fault);
    *choices.place = choice->value;
}

static void store(FILE* stream, const target::Pair& pair, const BlockWord&)
{
    readInto(stream, pair.first);
    readInto(stream, pair.second);
}

static void store(FILE* stream, const target::Points& points, const BlockWord& word)
{
    if (word.count == points.capacity)
        yyerror(word.fault);
    readInto(stream, points.places + static_cast<ptrdiff_t>(points.stride) * word.count);
}

void openBlock(FILE* stream)
{
    if (Lire_MotCle(stream) != TOKEN_OPEN)
        yyerror(" Opening bracket '{' expected");
}

template <class Words>
static auto findWord(Words words, int code)
{
    return std::find_if(words.begin(), words.end(), [code](const BlockWord& word) {
        return word.code == code || word.otherCode == code;
    });
}

void readWords(FILE* stream, std::span<BlockWord> words, const char* unknown)
{
    while (Lire_MotCle(stream) != TOKEN_CLOSE) {
        const auto word = findWord(words, mot_cle);
        if (word == words.end())
            yyerror(unknown);
        std::visit([&](const auto& target) { store(stream, target, *word); }, word->target);
        ++word->count;
    }
}

void readBlock(FILE* stream, std::span<BlockWord> words, const char* unknown)
{
    openBlock(stream);
    readWords(stream, words, unknown);
}

int countOf(std::span<const BlockWord> words, Keyword word)
{
    return findWord(words, word.code)->count;
}

void requireCounts(std::span<const BlockWord> words, const char* message)
{
    for (const BlockWord& word : words)
        if (word.required && word.count != 1)
            yyerror(message);
}
