#include "picture/writer.h"

constexpr std::uint64_t HEADER_SIZE = 54;

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
    writeFields(fields);
}

constexpr auto openBMP = openWithHeader<writeBMPHeader>;
constexpr auto writeBMPLine = copyTurnedRow;

static void closeBMP()
{
    static constexpr unsigned char padding[3] = {};
    for (int y = myDisplay.height - 1; y >= 0; --y) {
        writeBytes(pictureRow(y), rowSize(myDisplay.width));
        writeBytes(padding, paddingSize(myDisplay.width));
    }
    closeFile();
}

constexpr Writer writerBMP = {".bmp", openBMP, writeBMPLine, closeBMP};
