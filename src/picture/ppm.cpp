#include "picture/writer.h"

static void writePPMHeader(int width, int height)
{
    char header[64];
    const int length = snprintf(header, sizeof header, "P6\n%d %d\n%d\n", width, height, 255);
    writeBytes(header, static_cast<std::size_t>(length));
}

constexpr Writer writerPPM = {".ppm", openWithHeader<writePPMHeader>, copyRow, closeWithPicture};
