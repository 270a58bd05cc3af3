#include "picture/tiff.h"

#include <cstdlib>
#include <tiffio.h>

static constinit TIFF* fp = nullptr;

static void writeTIFFHeader(int width, int height)
{
    TIFFSetField(fp, TIFFTAG_IMAGEWIDTH, width);
    TIFFSetField(fp, TIFFTAG_IMAGELENGTH, height);
    TIFFSetField(fp, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(fp, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
    TIFFSetField(fp, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(fp, TIFFTAG_SAMPLESPERPIXEL, 3);
    TIFFSetField(fp, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(fp, TIFFTAG_ROWSPERSTRIP, 1);
    TIFFSetField(fp, TIFFTAG_IMAGEDESCRIPTION, "varlo pic!");
}

static int openTIFF(const char* name, int width, int height)
{
    // The sink tells why a file cannot be created, in the same words for all formats.
    const TIFFErrorHandler handler = TIFFSetErrorHandler(nullptr);
    fp = TIFFOpen(name, "w");
    TIFFSetErrorHandler(handler);
    if (fp == nullptr)
        return -1;
    writeTIFFHeader(width, height);
    return newPicture(width, height);
}

static int writeTIFFLine(unsigned char* line, int y)
{
    return copyRow(line, y);
}

static void closeTIFF()
{
    for (int y = 0; y < myDisplay.height; ++y) {
        if (TIFFWriteScanline(fp, pictureRow(y), static_cast<std::uint32_t>(y), 0) < 0) {
            TIFFClose(fp);
            exit(EXIT_SUCCESS);
        }
    }
    // TIFFClose would write the last row and the directory too, but does not return the result. The reason
    // is on standard error by then, in the words of libtiff.
    if (TIFFFlush(fp) == 0)
        exit(EXIT_FAILURE);
    TIFFClose(fp);
}

constexpr Writer writerTIFF = {".tif", openTIFF, writeTIFFLine, closeTIFF};
