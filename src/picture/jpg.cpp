#include "picture/jpg.h"

#include <cstdio>
#include <cstdlib>

#include <jpeglib.h>

#include "core/settings.h"
#include "picture/writer.h"

constexpr int DEFAULT_QUALITY = 90;
constexpr int MAX_QUALITY = 100;

static constinit FILE* outfile = nullptr;
static constinit unsigned char* image_buffer = nullptr;
static constinit int image_width = 0, image_height = 0;

int openJPG(const char* name, int width, int height)
{
    outfile = createFile(name);
    if (outfile == nullptr)
        return -1;
    image_width = width;
    image_height = height;
    image_buffer = newPicture(width, height);
    return image_buffer != nullptr ? 0 : -1;
}

int writeJPGLine(unsigned char* line, int y)
{
    copyRow(image_buffer, line, y);
    return 0;
}

static void limitQuality()
{
    if (jpeg_quality <= 0)
        jpeg_quality = DEFAULT_QUALITY;
    else if (jpeg_quality > MAX_QUALITY)
        jpeg_quality = MAX_QUALITY;
}

void closeJPG()
{
    limitQuality();
    jpeg_compress_struct cinfo;
    jpeg_error_mgr errors; // the default one: an error is printed and ends the run with status 1
    cinfo.err = jpeg_std_error(&errors);
    jpeg_create_compress(&cinfo);
    jpeg_stdio_dest(&cinfo, outfile);

    cinfo.image_width = static_cast<JDIMENSION>(image_width);
    cinfo.image_height = static_cast<JDIMENSION>(image_height);
    cinfo.input_components = 3;
    cinfo.in_color_space = JCS_RGB;
    jpeg_set_defaults(&cinfo); // goes by the colour space, and would undo the quality
    jpeg_set_quality(&cinfo, jpeg_quality, TRUE);

    jpeg_start_compress(&cinfo, TRUE);
    while (cinfo.next_scanline < cinfo.image_height) {
        JSAMPROW rows[] = {image_buffer + cinfo.next_scanline * rowSize(image_width)};
        jpeg_write_scanlines(&cinfo, rows, 1);
    }
    jpeg_finish_compress(&cinfo);
    closeFile(outfile);
    jpeg_destroy_compress(&cinfo);
    free(image_buffer);
}
