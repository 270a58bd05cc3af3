#include "picture/tga.h"

static constinit FILE* fp = nullptr;

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
    writeFields(fp, fields);
}

static int openTGA(const char* name, int width, int height)
{
    fp = createFile(name);
    if (fp == nullptr)
        return -1;
    writeTGAHeader(width, height);
    return newPicture(width, height);
}

static int writeTGALine(unsigned char* line, int y)
{
    swapRedBlue(line);
    copyRow(line, y);
    return myDisplay.width;
}

static void closeTGA()
{
    writeBytes(fp, image, rowSize(myDisplay.width) * static_cast<std::size_t>(myDisplay.height));
    closeFile(fp);
}

constexpr Writer writerTGA = {".tga", openTGA, writeTGALine, closeTGA};
