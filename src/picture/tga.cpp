#include "picture/tga.h"

#include "core/settings.h"
#include "picture/writer.h"

#include <cstdlib>

static constinit FILE* fp = nullptr;
static constinit unsigned char* image = nullptr; // blue, green, red

int openTGA(const char* name, int width, int height)
{
    fp = createFile(name);
    if (fp == nullptr)
        return -1;
    writeTGAHeader(width, height);
    image = newPicture(width, height);
    return image != nullptr ? 0 : -1;
}

void writeTGAHeader(int width, int height)
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

int writeTGALine(unsigned char* line, int y)
{
    swapRedBlue(line);
    copyRow(image, line, y);
    return myDisplay.width;
}

void closeTGA()
{
    for (int y = 0; y < myDisplay.height; ++y)
        writeBytes(fp, pictureRow(image, y), rowSize(myDisplay.width));
    free(image);
    closeFile(fp);
}
