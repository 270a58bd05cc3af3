#include "picture/image.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sys/resource.h>
#include <unistd.h>
#include <utility>

#include <gtest/gtest.h>
#include <jpeglib.h>
#include <png.h>

#include "picture/pictures.h"
#include "picture/writer.h"

using namespace std::string_literals;

static const char* const extensions[] = {".tga", ".bmp", ".ppm", ".png", ".jpg", ".tif"};

std::string noise(int width, int first, int end)
{
    std::string bytes;
    for (int i = 3 * width * first; i < 3 * width * end; ++i) {
        const unsigned mixed = (static_cast<unsigned>(i) + 1) * 2654435761u;
        bytes += static_cast<char>((mixed ^ mixed >> 15) * 2246822519u >> 24);
    }
    return bytes;
}

/// An output name that already ends in an extension. It belongs to this process and its children alone.
static const std::string outputName = testing::TempDir() + "varlo-" + std::to_string(getpid()) + ".ppm";

/// Leaves no file and no setting behind.
struct Picture : testing::Test {
    ~Picture() override
    {
        for (const char* extension : extensions)
            remove((outputName + extension).c_str());
        iImageType = BMP;
        jpeg_quality = 0;
        myDisplay = {};
    }
};
using PictureDeathTest = Picture;

static void start(int type, int width, int height, const std::string& name = outputName)
{
    iImageType = type;
    myDisplay.width = width;
    myDisplay.height = height;
    EXPECT_EQ(openImage(name.c_str(), width, height), 0);
}

static void deliver(std::string row, int y)
{
    EXPECT_EQ(writeImageLine(reinterpret_cast<unsigned char*>(row.data()), y), 0);
}

std::string writePicture(int type, int width, int height)
{
    start(type, width, height);
    deliver(std::string(rowSize(width), 'x'), 0); // replaced below
    for (int y = height - 1; y >= 0; --y)
        deliver(noise(width, y, y + 1), y);
    closeImage();
    return outputName + extensions[type];
}

static std::string contents(const std::string& name)
{
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// A row of noise in blue, green, red.
static std::string swappedRow(int width, int y)
{
    std::string row = noise(width, y, y + 1);
    for (std::size_t i = 0; i < row.size(); i += 3)
        std::swap(row[i], row[i + 2]);
    return row;
}

TEST_F(Picture, BytesOfPpmTgaBmp)
{
    const struct {
        int width;
        char fileSize, pixelsSize;
        std::string padding;
    } cases[] = {{1, 62, 8, "\0"s}, {3, 78, 24, "\0\0\0"s}, {4, 78, 24, ""}, {5, 86, 32, "\0"s}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.width);
        const char w = static_cast<char>(c.width);
        const std::string top = swappedRow(w, 0), bottom = swappedRow(w, 1);
        EXPECT_EQ(contents(writePicture(PPM, w, 2)),
                  "P6\n" + std::to_string(w) + " 2\n255\n" + noise(w, 0, 2));
        EXPECT_EQ(contents(writePicture(TGA, w, 2)),
                  "\0\0\2\0\0\0\0\0\0\0\0\0"s + w + "\0\2\0\x18\x20"s + top + bottom);
        EXPECT_EQ(contents(writePicture(BMP, w, 2)),
                  "BM"s + c.fileSize + "\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0"s + w +
                      "\0\0\0\2\0\0\0\1\0\x18\0\0\0\0\0"s + c.pixelsSize + std::string(19, '\0') + bottom +
                      c.padding + top + c.padding);
    }
    // numbers of several bytes, one of them too large for its field
    EXPECT_EQ(contents(writePicture(TGA, 65537, 1)).substr(12, 4), "\1\0\1\0"s);
    EXPECT_EQ(contents(writePicture(BMP, 65537, 1)).substr(2, 20),
              "\x3a\0\3\0\0\0\0\0\x36\0\0\0\x28\0\0\0\1\0\1\0"s);
}

TEST_F(Picture, PngReadsBackAsItWasSent)
{
    for (const int width : {1, 3, 5}) {
        SCOPED_TRACE(width);
        const std::string file = writePicture(PNG, width, 4);
        png_image reader{};
        reader.version = PNG_IMAGE_VERSION;
        ASSERT_NE(png_image_begin_read_from_file(&reader, file.c_str()), 0);
        EXPECT_EQ(reader.format, static_cast<png_uint_32>(PNG_FORMAT_RGB));
        std::string pixels(PNG_IMAGE_SIZE(reader), ' ');
        ASSERT_NE(png_image_finish_read(&reader, nullptr, pixels.data(), 0, nullptr), 0);
        EXPECT_EQ(pixels, noise(width, 0, 4));
    }
}

TEST_F(Picture, JpegReadsBackWithItsQuality)
{
    const struct {
        int quality;
        unsigned firstStep;
    } cases[] = {{0, 3}, {-5, 3}, {90, 3}, {89, 4}, {1, 255}, {100, 1}, {150, 1}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.quality);
        jpeg_quality = c.quality;
        start(JPEG, 1, 16);
        for (int y = 0; y < 16; ++y)
            deliver(y < 8 ? "\xff\0\0"s : "\0\0\xff"s, y);
        closeImage();

        std::string bytes = contents(outputName + ".jpg");
        jpeg_decompress_struct reader;
        jpeg_error_mgr errors;
        reader.err = jpeg_std_error(&errors);
        jpeg_create_decompress(&reader);
        jpeg_mem_src(&reader, reinterpret_cast<unsigned char*>(bytes.data()), bytes.size());
        jpeg_read_header(&reader, TRUE);
        EXPECT_EQ(reader.quant_tbl_ptrs[0]->quantval[0], c.firstStep);
        jpeg_start_decompress(&reader);
        unsigned char pixels[16][3];
        for (auto& row : pixels) {
            JSAMPROW rows[] = {row};
            jpeg_read_scanlines(&reader, rows, 1);
        }
        jpeg_destroy_decompress(&reader);
        EXPECT_GT(pixels[0][0], pixels[0][2]);
        EXPECT_LT(pixels[15][0], pixels[15][2]);
    }
}

TEST_F(Picture, MissingRowsAreBlack)
{
    start(PPM, 2, 3);
    deliver("uvwxyz", 1);
    closeImage();
    EXPECT_EQ(contents(outputName + ".ppm"), "P6\n2 3\n255\n\0\0\0\0\0\0uvwxyz\0\0\0\0\0\0"s);
}

/// For the child of a death test: standard output joins standard error, the one that EXPECT_EXIT reads.
static void startAlone(int type, int width, const std::string& name)
{
    dup2(STDERR_FILENO, STDOUT_FILENO);
    start(type, width, 2, name);
    exit(0);
}

TEST_F(PictureDeathTest, FileThatCannotBeCreatedEndsTheRun)
{
    for (int type = 0; type < NUM_IMAGE_TYPES; ++type) {
        const std::string file = "/nowhere/x"s + extensions[type];
        EXPECT_EXIT(startAlone(type, 3, "/nowhere/x"), testing::ExitedWithCode(1),
                    "^ Rendering to: " + file + "\n Resolution:   3 x 2\n" + file +
                        ": No such file or directory\n$");
    }
    EXPECT_EXIT(startAlone(PNG, 1000001, outputName), testing::ExitedWithCode(1),
                "libpng error: Invalid IHDR");
}

/// For the child of a death test: no file may grow beyond `limit` bytes.
static void writeLimited(int type, rlim_t limit)
{
    start(type, 100, 20);
    for (int y = 0; y < 20; ++y)
        deliver(noise(100, y, y + 1), y);
    signal(SIGXFSZ, SIG_IGN);
    const rlimit limits = {limit, limit};
    setrlimit(RLIMIT_FSIZE, &limits);
    closeImage();
    exit(2);
}

TEST_F(PictureDeathTest, FailedWriteEndsTheRun)
{
    const struct {
        int type;
        rlim_t limit;
        int status;
        const char* words;
    } cases[] = {
        {TGA, 6017, 1, "tga: File too large"},
        {BMP, 6053, 1, "bmp: File too large"},
        {PPM, 3000, 1, "ppm: File too large"},
        {PNG, 3000, 1, "libpng error: Write Error"},
        {PNG, 5500, 1, "png: File too large"}, // what stdio still holds at the close
        {JPEG, 1000, 1, "Output file write error"},
        {TIF, 3000, 0, "TIFFAppend"},   // a row
        {TIF, 6007, 1, "TIFFAppend"},   // the last row
        {TIF, 6100, 1, "TIFFWriteDir"}, // the directory
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.limit);
        EXPECT_EXIT(writeLimited(c.type, c.limit), testing::ExitedWithCode(c.status), c.words);
    }
}
