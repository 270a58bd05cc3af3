#include "picture/writer.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include <jpeglib.h> // needs the declarations of cstdio

constexpr int DEFAULT_QUALITY = 90;
constexpr int MAX_QUALITY = 100;

static int openJPG(const char* name, int width, int height)
{
    if (std::max(width, height) > JPEG_MAX_DIMENSION) {
        fprintf(stderr, "Maximum supported image dimension is %ld pixels\n", JPEG_MAX_DIMENSION);
        errno = EINVAL;
        return -1;
    }
    return createFile(name) ? newPicture(width, height) : -1;
}

constexpr auto writeJPGLine = copyRow;

static void closeJPG()
{
    jpeg_compress_struct cinfo;
    jpeg_error_mgr errors; // the default one: an error is printed and ends the run with status 1
    cinfo.err = jpeg_std_error(&errors);
    jpeg_create_compress(&cinfo);
    jpeg_stdio_dest(&cinfo, outfile);

    cinfo.image_width = static_cast<JDIMENSION>(myDisplay.width);
    cinfo.image_height = static_cast<JDIMENSION>(myDisplay.height);
    cinfo.input_components = 3;
    cinfo.in_color_space = JCS_RGB;
    jpeg_set_defaults(&cinfo); // goes by the colour space, and would undo the quality
    const int quality = jpeg_quality <= 0 ? DEFAULT_QUALITY : std::min(jpeg_quality, MAX_QUALITY);
    jpeg_set_quality(&cinfo, quality, TRUE);

    jpeg_start_compress(&cinfo, TRUE);
    while (cinfo.next_scanline < cinfo.image_height) {
        JSAMPROW rows[] = {pictureRow(static_cast<int>(cinfo.next_scanline))};
        jpeg_write_scanlines(&cinfo, rows, 1);
    }
    jpeg_finish_compress(&cinfo);
    closeFile();
    jpeg_destroy_compress(&cinfo);
}

constexpr Writer writerJPG = {".jpg", openJPG, writeJPGLine, closeJPG};
