#pragma once

#include "core/data.h"

#include <cstdio>

// The scanner: one call reads one token from an open stream with one character of push-back. There is one
// scanner for the whole run, and its line count goes on over all the files that the run reads. Every fault
// ends the process through yyerror.

/// Tokens that are no keyword. Keywords have the codes of KeywordCode.
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

/// Words that mean the same parameter everywhere share a code.
enum KeywordCode {
    CODE_INCLUDE = 4,
    CODE_DECLARE = 5,
    CODE_CAMERA = 100,
    CODE_POSITION = 101,
    CODE_LOOK_AT = 102,
    CODE_UP = 103,
    CODE_FOV = 104,
    CODE_RATIO = 105,
    CODE_APERTURE = 106,
    CODE_FOCAL_LENGTH = 107,
    CODE_SAMPLES = 108,
    CODE_LIGHT = 109,
    CODE_PROJECTION_TYPE = 110,
    CODE_ATTENUATION_TYPE = 111,
    CODE_SHADOW_TYPE = 112,
    CODE_LIGHT_SAMPLES = 113,
    CODE_CAMERA_SAMPLES = 114,
    CODE_CAMERA_INDEX = 115,
    CODE_LIGHT_TYPE = 116,
    CODE_MIN_ANGLE = 117,
    CODE_MAX_ANGLE = 118,
    CODE_DIRECTION = 119,
    CODE_TARGET = 120,
    CODE_FOCAL_POINT = 121,
    CODE_SETTINGS = 200,
    CODE_BACKGROUND = 201,
    CODE_DISPLAY = 202,
    CODE_OUTPUT_TYPE = 203,
    CODE_OUTPUT_NAME = 204,
    CODE_JITTER = 205,
    CODE_ANTIALIASING = 206,
    CODE_AA_DISTANCE = 207,
    CODE_HAZE_COLOR = 208,
    CODE_HAZE_FACTOR = 209,
    CODE_JPEG_QUALITY = 210,
    CODE_INPUT_NAME = 211,
    CODE_GLOBAL_ILLUMINATION = 212,
    CODE_DISTRIBUTION = 213,
    CODE_BRIGHTNESS = 214,
    CODE_HAMMERSLEY = 215,
    CODE_HALTON = 216,
    CODE_SURFACE = 300,
    CODE_REFLECTION = 301,
    CODE_REFRACTION = 302,
    CODE_REFRACTION_INDEX = 303,
    CODE_COLOR = 304,
    CODE_AMBIENT = 305,
    CODE_BRILLIANCE = 306,
    CODE_ROUGHNESS = 307,
    CODE_DIFFUSE = 308,
    CODE_SPECULAR = 309,
    CODE_REFLECTION_TYPE = 310,
    CODE_REFLECTION_SAMPLES = 311,
    CODE_REFLECTION_RADIUS = 312,
    CODE_PLANE = 400,
    CODE_NORMAL = 401,
    CODE_DISTANCE = 402,
    CODE_SPHERE = 500,
    CODE_CENTER = 501,
    CODE_RADIUS = 502,
    CODE_CONE = 600,
    CODE_BASE = 601,
    CODE_CAP = 602,
    CODE_BASE_RADIUS = 603,
    CODE_CAP_RADIUS = 604,
    CODE_RING = 700,
    CODE_INTERNAL_RADIUS = 701,
    CODE_EXTERNAL_RADIUS = 702,
    CODE_DISC = 704,
    CODE_POLYGON = 800,
    CODE_VERTEX = 801,
    CODE_CYLINDER = 900,
    CODE_TRIANGLE = 901,
    CODE_PATCH = 902,
    CODE_SMOOTH_TRIANGLE = 903,
    CODE_MODIFY = 1000,
    CODE_MOVE = 1001,
    CODE_ROTATE = 1002,
    CODE_SCALE = 1003,
};

struct MotCle {
    const char* texte;
    int code;
};

constexpr int NUM_KEYWORDS = 82;
/// Rows of the table that the search reaches; the three behind them come out as plain words.
constexpr int NUM_FOUND_KEYWORDS = 79;
extern const MotCle liste_motcle[NUM_KEYWORDS];

/// A word, a number and a string value hold at most 255 characters.
constexpr int TOKEN_SIZE = 256;

/// The fault of every statement that finds no memory.
constexpr const char* NO_MEMORY = " memory allocation failed";

/// What the next number token is turned into.
enum NumberMode : unsigned char { MODE_DECIMAL = 2, MODE_INTEGER = 3 };

// The last token and the last value of each form; a caller copies what it wants to keep.
extern int mot_cle;               // code of the last token
extern unsigned char type_motcle; // MODE_DECIMAL reads into val_DBL, any other value into val_INT
extern char chaine[TOKEN_SIZE];   // text of the last word or number, else empty
extern char strTemp[TOKEN_SIZE];  // last string value
extern double val_DBL;
extern int val_INT;
extern Vec vect_tmp;
extern Color rvb_tmp;
extern int comptligne; // 1 plus the line ends read so far, in all files together

/// Reads one token and returns its code, also in mot_cle.
int Lire_MotCle(FILE* stream);

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
