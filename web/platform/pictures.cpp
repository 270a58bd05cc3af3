#include "picture/writer.h"

#include <cerrno>
#include <cstdlib>
#include <emscripten.h>

// The formats whose libraries this platform lacks. PNG is the one of the page: its rows go to the page as
// they come, which shows them and makes the file. The other two refuse.

// 4 * width * height bytes, red, green, blue, alpha, row 0 is the top; a row that is not there yet is
// transparent. The page reads it while the threads write it, and perhaps after they end: it goes with the
// memory of the whole run.
static constinit unsigned char* shown = nullptr;

static int openPage(const char*, int width, int height)
{
    shown = static_cast<unsigned char*>(calloc(static_cast<size_t>(width) * static_cast<size_t>(height), 4));
    if (shown == nullptr)
        return -1;
    EM_ASM({ Module['picture']($0, $1, $2); }, shown, width, height);
    return 0;
}

static void writePageLine(const unsigned char* line, int y)
{
    const auto width = static_cast<size_t>(myDisplay.width);
    unsigned char* row = shown + 4 * width * static_cast<size_t>(y);
    for (size_t column = 0; column < width; ++column) {
        row[4 * column] = line[3 * column];
        row[4 * column + 1] = line[3 * column + 1];
        row[4 * column + 2] = line[3 * column + 2];
        row[4 * column + 3] = 255;
    }
#if !defined(__EMSCRIPTEN_PTHREADS__)
    // Nobody else sees this memory. Threads that share it had better leave the page alone.
    EM_ASM({ Module['row']($0, $1); }, row, y);
#endif
}

static void closePage()
{
}

static int refuse(const char*, int, int)
{
    errno = ENOSYS;
    return -1;
}

constexpr Writer writerPNG = {".png", openPage, writePageLine, closePage};
constexpr Writer writerJPG = {".jpg", refuse, nullptr, nullptr};
constexpr Writer writerTIFF = {".tif", refuse, nullptr, nullptr};
