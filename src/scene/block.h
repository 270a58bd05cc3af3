#pragma once

#include "core/data.h"
#include "scene/keywords.h"

#include <cstdio>
#include <span>
#include <variant>

// One reader for all blocks of the language. A block is a table of its words: which word, how often, where
// its value goes, what it must satisfy. Its parser is that table, the block's own tests at the closing brace,
// and one call that uses the values.

/// A word that a string parameter may hold, and its value.
struct Choice {
    const char* word;
    int value;
};

/// Where the value of a parameter goes, a kind for each of its forms.
namespace target
{
/// One value. `accept` may refuse it, at once, and may also change it.
template <class T>
struct Value {
    T* place;
    bool (*accept)(T*);
};
struct Choices {
    int* place;
    std::span<const Choice> words;
};
struct Pair {
    int *first, *second;
};
/// Every `stride`-th place, for up to `capacity` vectors.
struct Points {
    Vec* places;
    int stride, capacity;
};
} // namespace target

/// A parameter of a block. Made by the functions below.
struct BlockWord {
    int code;              // keyword of the parameter
    bool required = false; // exactly once, tested by requireCounts
    std::variant<target::Value<double>, target::Value<int>, target::Value<Vec>, target::Value<Color>,
                 target::Value<char>, target::Choices, target::Pair, target::Points>
        target;
    const char* fault = nullptr; // message of a refused value
    int count = 0;               // how often the word stood
    int otherCode = code;        // a second keyword of the same parameter, with one count for both
};

/// The rows of a table.
namespace block
{

/// A parameter that may stand any number of times; the last one counts. `accept` may refuse the value, at
/// once, with `fault`, and may also change it. A string has TOKEN_SIZE characters.
template <class T>
BlockWord any(Keyword word, T* place, bool (*accept)(T*) = nullptr, const char* fault = nullptr)
{
    return {.code = word.code, .target = target::Value<T>{place, accept}, .fault = fault};
}

/// A parameter that has to stand exactly once.
template <class T>
BlockWord once(Keyword word, T* place, bool (*accept)(T*) = nullptr, const char* fault = nullptr)
{
    BlockWord made = any(word, place, accept, fault);
    made.required = true;
    return made;
}

/// A string parameter, any number of times, which has to be one of the words of `choices`.
inline BlockWord choice(Keyword word, int* place, std::span<const Choice> choices, const char* fault)
{
    return {.code = word.code, .target = target::Choices{place, choices}, .fault = fault};
}

/// Two integers behind one keyword, any number of times.
inline BlockWord pair(Keyword word, int* first, int* second)
{
    return {.code = word.code, .target = target::Pair{first, second}};
}

/// A vector that may stand up to `capacity` times and fills every `stride`-th place of `places`. One more is
/// the fault `tooMany`, before its value is read.
inline BlockWord points(Keyword word, Vec* places, int stride, int capacity, const char* tooMany)
{
    return {.code = word.code, .target = target::Points{places, stride, capacity}, .fault = tooMany};
}

/// The same parameter under a second keyword.
inline BlockWord also(Keyword other, BlockWord word)
{
    word.otherCode = other.code;
    return word;
}

} // namespace block

/// Tests for the tables.
template <class T>
bool isAboveZero(T* value)
{
    return *value > 0;
}

/// Reads the opening brace of a block.
void openBlock(FILE* stream);

/// Reads parameters up to the closing brace. Any other token is the fault `unknown`.
void readWords(FILE* stream, std::span<BlockWord> words, const char* unknown);

/// openBlock and readWords.
void readBlock(FILE* stream, std::span<BlockWord> words, const char* unknown);

/// How often a parameter stood.
int countOf(std::span<const BlockWord> words, Keyword word);

/// The fault `message` unless each required parameter stood exactly once.
void requireCounts(std::span<const BlockWord> words, const char* message);
