#include "picture/writer.h"

#include "core/fatal.h"

#include <cerrno>
#include <cstdlib>
#include <tiffio.h>
#include <unistd.h>
#include <utility>

static constinit TIFF* fp = nullptr; // writes to the file by its number

/// An offset in the file has 32 bits. Beside its bytes a row has its offset and its length there.
static bool fits(int width, int height)
{
    static constexpr std::uint64_t HEADER_AND_TAGS = 256;
    const std::uint64_t row = rowSize(width), counted = row > UINT16_MAX ? 4 : 2;
    return HEADER_AND_TAGS + (row + 4 + counted) * static_cast<std::uint64_t>(height) <= UINT32_MAX;
}

static int writeTIFFHeader(int width, int height)
{
    const std::pair<int, int> tags[] = {{TIFFTAG_IMAGEWIDTH, width},
                                        {TIFFTAG_IMAGELENGTH, height},
                                        {TIFFTAG_BITSPERSAMPLE, 8},
                                        {TIFFTAG_COMPRESSION, COMPRESSION_NONE},
                                        {TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB},
                                        {TIFFTAG_SAMPLESPERPIXEL, 3},
                                        {TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG},
                                        {TIFFTAG_ROWSPERSTRIP, 1}};
    for (const auto& [tag, value] : tags)
        if (TIFFSetField(fp, static_cast<ttag_t>(tag), value) == 0)
            return -1;
    return TIFFSetField(fp, TIFFTAG_IMAGEDESCRIPTION, "varlo pic!") != 0 ? 0 : -1;
}

static int openTIFF(const char* name, int width, int height)
{
    if (!fits(width, height)) {
        errno = EFBIG;
        return -1;
    }
    // For reading too: a pipe nobody reads from opens at once then, and is found to be one.
    if (!createFile(name, "w+b") || lseek(fileno(outfile), 0, SEEK_CUR) < 0)
        return -1;
    // The sink tells why a file cannot be begun, in the same words for all formats.
    const TIFFErrorHandler handler = TIFFSetErrorHandler(nullptr);
    fp = TIFFFdOpen(fileno(outfile), name, "w");
    const bool isReady = fp != nullptr && writeTIFFHeader(width, height) == 0;
    TIFFSetErrorHandler(handler);
    return isReady ? newPicture(width, height) : -1;
}

constexpr auto writeTIFFLine = copyRow;

static void closeTIFF()
{
    for (int y = 0; y < myDisplay.height; ++y) {
        if (TIFFWriteScanline(fp, pictureRow(y), static_cast<std::uint32_t>(y), 0) < 0) {
            TIFFClose(fp);
            exit(EXIT_SUCCESS);
        }
    }
    // TIFFClose would write the last row and the directory and close the file, but returns no result. The
    // reason is on standard error after a flush that fails, in the words of libtiff.
    errno = 0;
    if (TIFFFlush(fp) == 0)
        exit(EXIT_FAILURE);
    if (errno != 0) // a seek, whose result libtiff does not look at
        endForFile(TIFFFileName(fp), errno, EXIT_FAILURE);
    TIFFCleanup(fp);
    closeFile();
}

constexpr Writer writerTIFF = {".tif", openTIFF, writeTIFFLine, closeTIFF};
