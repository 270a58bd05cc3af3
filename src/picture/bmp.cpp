#include "picture/bmp.h"

constexpr std::uint64_t HEADER_SIZE = 54;

static constinit FILE* fp = nullptr;

/// Zero bytes behind each row of the file, which make its length a multiple of 4.
static std::size_t paddingSize(int width)
{
    return (4 - rowSize(width) % 4) % 4;
}

static void writeBMPHeader(int width, int height)
{
    const std::uint64_t rows = static_cast<std::uint64_t>(height);
    const std::uint64_t pixelsSize = (rowSize(width) + paddingSize(width)) * rows;
    const Field fields[] = {
        {'B', 1},
        {'M', 1},
        {HEADER_SIZE + pixelsSize, 4},          // size of the file
        {0, 4},                                 // reserved
        {HEADER_SIZE, 4},                       // where the pixels start
        {40, 4},                                // size of the information header, from here on
        {static_cast<std::uint64_t>(width), 4}, // without the padding
        {rows, 4},                              // positive: the bottom row comes first
        {1, 2},                                 // colour planes
        {24, 2},                                // bits per pixel
        {0, 4},                                 // no compression
        {pixelsSize, 4},                        // with the padding
        {0, 8},                                 // resolution, across and down
        {0, 8},                                 // colours of a palette
    };
    writeFields(fp, fields);
}

static int openBMP(const char* name, int width, int height)
{
    fp = createFile(name);
    if (fp == nullptr)
        return -1;
    writeBMPHeader(width, height);
    return newPicture(width, height);
}

static int writeBMPLine(unsigned char* line, int y)
{
    swapRedBlue(line);
    copyRow(line, y);
    return myDisplay.width;
}

static void closeBMP()
{
    static constexpr unsigned char padding[3] = {};
    for (int y = myDisplay.height - 1; y >= 0; --y) {
        writeBytes(fp, pictureRow(y), rowSize(myDisplay.width));
        writeBytes(fp, padding, paddingSize(myDisplay.width));
    }
    closeFile(fp);
}

constexpr Writer writerBMP = {".bmp", openBMP, writeBMPLine, closeBMP};
