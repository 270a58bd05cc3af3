#pragma once

#include "scene/lexer.h"

#include <span>

// One reader for all blocks of the language. A block is a table of its words: which word, how often, where
// its value goes, what it must satisfy. Its parser is that table, the block's own tests at the closing brace,
// and one call that uses the values.

/// A word that a string parameter may hold, and its value.
struct Choice {
    const char* word;
    int value;
};

/// A parameter of a block. Made by the functions below.
struct BlockWord {
    int code;                                    // keyword of the parameter
    bool required;                               // exactly once, tested by requireCounts
    void (*read)(FILE* stream, BlockWord& word); // reads the value behind the keyword and stores it
    void* target = nullptr;
    int* second = nullptr;             // of a pair of integers
    void (*accept)() = nullptr;        // a bool (*)(T*) for the T of target: false is the fault below
    const char* fault = nullptr;       // message of a refused value
    std::span<const Choice> choices{}; // words of a string parameter
    int stride = 1, capacity = 0;      // of the points of a list
    int count = 0;                     // how often the word stood
    int otherCode = code;              // a second keyword of the same parameter, with one count for both
};

/// Reads one value of its form into `*target` and lets `accept` look at it.
template <class T>
void readValue(FILE* stream, BlockWord& word);

/// A parameter that has to stand exactly once. `accept` may refuse the value, at once, with `fault`, and may
/// also change it.
template <class T>
BlockWord once(int code, T* target, bool (*accept)(T*) = nullptr, const char* fault = nullptr)
{
    return {.code = code,
            .required = true,
            .read = readValue<T>,
            .target = target,
            .accept = reinterpret_cast<void (*)()>(accept),
            .fault = fault};
}

/// A parameter that may stand any number of times; the last one counts.
template <class T>
BlockWord any(int code, T* target, bool (*accept)(T*) = nullptr, const char* fault = nullptr)
{
    BlockWord word = once(code, target, accept, fault);
    word.required = false;
    return word;
}

/// A string parameter, any number of times, which has to be one of the words of `choices`.
BlockWord choice(int code, int* target, std::span<const Choice> choices, const char* fault);

/// A string parameter, any number of times, copied to `target`, which has TOKEN_SIZE characters.
BlockWord name(int code, char* target, bool (*accept)(char*) = nullptr, const char* fault = nullptr);

/// A vector that may stand up to `capacity` times and fills every `stride`-th place of `target`. One more is
/// the fault `tooMany`, before its value is read.
BlockWord points(int code, Vec* target, int stride, int capacity, const char* tooMany);

/// Two integers behind one keyword, any number of times.
BlockWord pair(int code, int* first, int* second);

/// The same parameter under a second keyword.
BlockWord also(int otherCode, BlockWord word);

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
int countOf(std::span<const BlockWord> words, int code);

/// The fault `message` unless each required parameter stood exactly once.
void requireCounts(std::span<const BlockWord> words, const char* message);
