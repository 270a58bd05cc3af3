#include "picture/writer.h"

static void writePPMHeader(int width, int height)
{
    char header[64];
    const int length = snprintf(header, sizeof header, "P6\n%d %d\n%d\n", width, height, 255);
    writeBytes(header, static_cast<std::size_t>(length));
}

constexpr auto openPPM = openWithHeader<writePPMHeader>;
constexpr auto writePPMLine = copyRow;
constexpr auto closePPM = closeWithPicture;

constexpr Writer writerPPM = {".ppm", openPPM, writePPMLine, closePPM};
