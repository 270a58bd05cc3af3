#include "scene/block.h"

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
void readValue(FILE* stream, BlockWord& word)
{
    T* target = static_cast<T*>(word.target);
    readInto(stream, target);
    const auto accept = reinterpret_cast<bool (*)(T*)>(word.accept);
    if (accept != nullptr && !accept(target))
        yyerror(word.fault);
}

template void readValue<double>(FILE* stream, BlockWord& word);
template void readValue<int>(FILE* stream, BlockWord& word);
template void readValue<Vec>(FILE* stream, BlockWord& word);
template void readValue<Color>(FILE* stream, BlockWord& word);
template void readValue<char>(FILE* stream, BlockWord& word);

static void readChoice(FILE* stream, BlockWord& word)
{
    Lire_Chaine(stream);
    for (const Choice& choice : word.choices) {
        if (strcmp(strTemp, choice.word) == 0) {
            *static_cast<int*>(word.target) = choice.value;
            return;
        }
    }
    yyerror(word.fault);
}

static void readPair(FILE* stream, BlockWord& word)
{
    readInto(stream, static_cast<int*>(word.target));
    readInto(stream, word.second);
}

static void readPoint(FILE* stream, BlockWord& word)
{
    if (word.count == word.capacity)
        yyerror(word.fault);
    readInto(stream, static_cast<Vec*>(word.target) + static_cast<ptrdiff_t>(word.stride) * word.count);
}

BlockWord choice(int code, int* target, std::span<const Choice> choices, const char* fault)
{
    return {.code = code,
            .required = false,
            .read = readChoice,
            .target = target,
            .fault = fault,
            .choices = choices};
}

BlockWord name(int code, char* target, bool (*accept)(char*), const char* fault)
{
    return any(code, target, accept, fault);
}

BlockWord points(int code, Vec* target, int stride, int capacity, const char* tooMany)
{
    return {.code = code,
            .required = false,
            .read = readPoint,
            .target = target,
            .fault = tooMany,
            .stride = stride,
            .capacity = capacity};
}

BlockWord pair(int code, int* first, int* second)
{
    return {.code = code, .required = false, .read = readPair, .target = first, .second = second};
}

BlockWord also(int otherCode, BlockWord word)
{
    word.otherCode = otherCode;
    return word;
}

void openBlock(FILE* stream)
{
    if (Lire_MotCle(stream) != TOKEN_OPEN)
        yyerror(" Opening bracket '{' expected");
}

template <class Words>
static auto findWord(Words words, int code)
{
    auto word = words.begin();
    while (word != words.end() && word->code != code && word->otherCode != code)
        ++word;
    return word;
}

void readWords(FILE* stream, std::span<BlockWord> words, const char* unknown)
{
    while (Lire_MotCle(stream) != TOKEN_CLOSE) {
        const auto word = findWord(words, mot_cle);
        if (word == words.end())
            yyerror(unknown);
        word->read(stream, *word);
        ++word->count;
    }
}

void readBlock(FILE* stream, std::span<BlockWord> words, const char* unknown)
{
    openBlock(stream);
    readWords(stream, words, unknown);
}

int countOf(std::span<const BlockWord> words, int code)
{
    return findWord(words, code)->count;
}

void requireCounts(std::span<const BlockWord> words, const char* message)
{
    for (const BlockWord& word : words)
        if (word.required && word.count != 1)
            yyerror(message);
}
