#include "picture/ppm.h"

#include <cstdio>

static constinit FILE* fp = nullptr;

static void writePPMHeader(int width, int height)
{
    char header[64];
    const int length = snprintf(header, sizeof header, "P6\n%d %d\n%d\n", width, height, 255);
    writeBytes(fp, header, static_cast<std::size_t>(length));
}

static int openPPM(const char* name, int width, int height)
{
    fp = createFile(name);
    if (fp == nullptr)
        return -1;
    writePPMHeader(width, height);
    return newPicture(width, height);
}

static int writePPMLine(unsigned char* line, int y)
{
    return copyRow(line, y);
}

static void closePPM()
{
    writeBytes(fp, image, rowSize(myDisplay.width) * static_cast<std::size_t>(myDisplay.height));
    closeFile(fp);
}

constexpr Writer writerPPM = {".ppm", openPPM, writePPMLine, closePPM};
