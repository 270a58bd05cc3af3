#include "picture/writer.h"

#include <csetjmp>
#include <cstdlib>
#include <png.h>

static constinit png_structp png_ptr = nullptr;
static constinit png_infop info_ptr = nullptr;

// libpng reports an error by printing it and jumping to the latest setjmp. No local variable is in use
// across a jump: what it would hold then is undefined.

static void writePNGHeader(int width, int height)
{
    png_set_IHDR(png_ptr, info_ptr, static_cast<png_uint_32>(width), static_cast<png_uint_32>(height), 8,
                 PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    png_write_info(png_ptr, info_ptr);
    png_set_packing(png_ptr);
}

static int openPNG(const char* name, int width, int height)
{
    if (!createFile(name))
        return -1;
    png_ptr = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    info_ptr = png_create_info_struct(png_ptr); // of nothing: null too
    if (info_ptr == nullptr)
        return -1;
    if (setjmp(png_jmpbuf(png_ptr)) != 0)
        return -1;
    png_init_io(png_ptr, outfile);
    writePNGHeader(width, height);
    return newPicture(width, height);
}

constexpr auto writePNGLine = copyRow;

static void writePNGPixels()
{
    for (int y = 0; y < myDisplay.height; ++y) {
        png_bytep rows[] = {pictureRow(y)};
        png_write_rows(png_ptr, rows, 1);
    }
    png_write_end(png_ptr, info_ptr);
}

static void closePNG()
{
    if (setjmp(png_jmpbuf(png_ptr)) != 0) // the one of openPNG ended with that function
        exit(EXIT_FAILURE);
    writePNGPixels();
    png_destroy_write_struct(&png_ptr, &info_ptr);
    closeFile();
}

constexpr Writer writerPNG = {".png", openPNG, writePNGLine, closePNG};
