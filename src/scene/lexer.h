#pragma once

#include "core/data.h"

#include <cstdio>

// The scanner: one call reads one token from an open stream with one character of push-back. There is one
// scanner for the whole run, and its line count goes on over all the files that the run reads. Every fault
// ends the process through yyerror.

/// Tokens that are no keyword. A keyword has the code of its row in liste_motcle.
enum TokenCode {
    TOKEN_EOF = -1,
    TOKEN_WORD = 0, // a word that is no keyword
    TOKEN_NUMBER = 1,
    TOKEN_OPEN = 10,
    TOKEN_CLOSE = 11,
    TOKEN_LESS = 12,
    TOKEN_GREATER = 13,
    TOKEN_HASH = 14,
    TOKEN_QUOTE = 15,
};

/// A word, a number and a string value hold at most 255 characters.
constexpr int TOKEN_SIZE = 256;

/// The fault of every statement that finds no memory.
constexpr const char* NO_MEMORY = " memory allocation failed";

/// What the next number token is turned into.
enum NumberMode : unsigned char { MODE_DECIMAL = 2, MODE_INTEGER = 3 };

// The last token and the last value of each form; a caller copies what it wants to keep.
inline constinit int mot_cle = 0;               // code of the last token
inline constinit unsigned char type_motcle = 0; // MODE_DECIMAL reads into val_DBL, any other into val_INT
inline constinit char chaine[TOKEN_SIZE] = "";  // text of the last word or number, else empty
inline constinit char strTemp[TOKEN_SIZE] = ""; // last string value
inline constinit double val_DBL = 0.0;
inline constinit int val_INT = 0;
inline constinit Vec vect_tmp{};
inline constinit Color rvb_tmp{};
inline constinit int comptligne = 1; // 1 plus the line ends read so far, in all files together

/// Name of the file that is being read, for the end of a run that cannot read on.
inline constinit const char* sourceName = "";

/// Reads one token and returns its code, also in mot_cle.
int Lire_MotCle(FILE* stream);

/// Starts at line 1, whatever was read before.
void resetLexer();

/// Searches liste_motcle for `chaine`. Returns the code, also in mot_cle, or 0.
int Trouve_MotCle();

/// Reads a quote, one token of any kind and a quote: strTemp.
void Lire_Chaine(FILE* stream);

/// Reads a number: val_DBL.
void Lire_Decimal(FILE* stream);

/// Reads a number: val_INT, without what follows the digits.
void Lire_Entier(FILE* stream);

/// Reads <, three numbers and >: vect_tmp.
void Lire_Vecteur(FILE* stream);

/// Reads three numbers, or # and a declared name: rvb_tmp, of any range.
void Lire_RVB(FILE* stream);

/// Prints the fault line with its place and ends the process with status -1.
[[noreturn]] void yyerror(const char* message);
