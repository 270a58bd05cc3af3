#pragma once

#include <string_view>

struct MotCle {
    const char* texte;
    int code;
};

/// The words of the language in the order of their search. Words that mean the same parameter share a code,
/// and below 100 the codes are those of single characters and of tokens that are no keyword.
inline constexpr MotCle liste_motcle[] = {
    {"camera", 100},
    {"light", 109},
    {"position", 101},
    {"direction", 119},
    {"target", 120},
    {"look_at", 102},
    {"up", 103},
    {"fov", 104},
    {"ratio", 105},
    {"aperture", 106},
    {"focal_length", 107},
    {"focal_point", 121},
    {"samples", 108},
    {"camera_samples", 114},
    {"camera_index", 115},
    {"settings", 200},
    {"background", 201},
    {"display", 202},
    {"resolution", 202},
    {"output_type", 203},
    {"output_name", 204},
    {"input_name", 211},
    {"antialiasing", 206},
    {"jitter", 205},
    {"aa_jitter", 205},
    {"aa_type", 206},
    {"aa_distance", 207},
    {"haze_color", 208},
    {"haze_factor", 209},
    {"surface", 300},
    {"reflection", 301},
    {"refraction", 302},
    {"refraction_index", 303},
    {"color", 304},
    {"ambient", 305},
    {"brilliance", 306},
    {"roughness", 307},
    {"diffuse", 308},
    {"specular", 309},
    {"plane", 400},
    {"normal", 401},
    {"distance", 402},
    {"sphere", 500},
    {"center", 501},
    {"radius", 502},
    {"cone", 600},
    {"base", 601},
    {"cap", 602},
    {"base_radius", 603},
    {"cap_radius", 604},
    {"ring", 700},
    {"internal_radius", 701},
    {"external_radius", 702},
    {"disc", 704},
    {"polygon", 800},
    {"vertex", 801},
    {"cylinder", 900},
    {"triangle", 901},
    {"include", 4},
    {"declare", 5},
    {"jpeg_quality", 210},
    {"patch", 902},
    {"smooth_triangle", 903},
    {"projection_type", 110},
    {"attenuation_type", 111},
    {"shadow_type", 112},
    {"light_type", 116},
    {"min_angle", 117},
    {"max_angle", 118},
    {"light_samples", 113},
    {"reflection_type", 310},
    {"reflection_samples", 311},
    {"reflection_radius", 312},
    {"global_illumination", 212},
    {"distribution", 213},
    {"brightness", 214},
    {"hammersley", 215},
    {"halton", 216},
    {"modify", 1000},
    {"move", 1001},
    {"rotate", 1002},
    {"scale", 1003},
};

/// Rows of the table that the search reaches; the three behind them come out as plain words.
constexpr int NUM_FOUND_KEYWORDS = 79;

[[noreturn]] void isNoKeyword(); // never made: a name for the compiler's message

/// The code of a word that the search finds. Any other text does not compile.
struct Keyword {
    int code = 0;

    consteval Keyword(const char* texte)
    {
        for (int row = 0; code == 0; ++row) {
            if (row == NUM_FOUND_KEYWORDS)
                isNoKeyword();
            if (std::string_view(liste_motcle[row].texte) == texte)
                code = liste_motcle[row].code;
        }
    }
};
