#include "picture/writer.h"

static void writeTGAHeader(int width, int height)
{
    const Field fields[] = {
        {0, 2},                                  // no identification text, no colour map
        {2, 1},                                  // uncompressed true colour
        {0, 5},                                  // description of the colour map
        {0, 4},                                  // origin
        {static_cast<std::uint64_t>(width), 2},  // the low 16 bits: the format has no room for more
        {static_cast<std::uint64_t>(height), 2}, // likewise
        {24, 1},                                 // bits per pixel
        {0x20, 1},                               // the top row comes first
    };
    writeFields(fields);
}

constexpr auto openTGA = openWithHeader<writeTGAHeader>;
constexpr auto writeTGALine = copyTurnedRow;
constexpr auto closeTGA = closeWithPicture;

constexpr Writer writerTGA = {".tga", openTGA, writeTGALine, closeTGA};
