#include "picture/ppm.h"

#include "core/settings.h"
#include "picture/writer.h"

#include <cstdlib>

static constinit FILE* fp = nullptr;
static constinit unsigned char* image = nullptr;

int openPPM(const char* name, int width, int height)
{
    fp = createFile(name);
    if (fp == nullptr)
        return -1;
    writePPMHeader(width, height);
    image = newPicture(width, height);
    return image != nullptr ? 0 : -1;
}

void writePPMHeader(int width, int height)
{
    char header[64];
    const int length = snprintf(header, sizeof header, "P6\n%d %d\n%d\n", width, height, 255);
    writeBytes(fp, header, static_cast<std::size_t>(length));
}

int writePPMLine(unsigned char* line, int y)
{
    copyRow(image, line, y);
    return 0;
}

void closePPM()
{
    for (int y = 0; y < myDisplay.height; ++y)
        writeBytes(fp, pictureRow(image, y), rowSize(myDisplay.width));
    free(image);
    closeFile(fp);
}
