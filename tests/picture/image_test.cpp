#include "picture/image.h"

#include "picture/writer.h"
#include "support.h"

#include <png.h>
#include <tiffio.h>

using namespace std::string_literals;

/// A row of noise in red, green, blue.
static std::string noise(int width, int y)
{
    std::string bytes;
    for (int i = 3 * width * y; i < 3 * width * (y + 1); ++i) {
        const unsigned mixed = (static_cast<unsigned>(i) + 1) * 2654435761u;
        bytes += static_cast<char>((mixed ^ mixed >> 15) * 2246822519u >> 24);
    }
    return bytes;
}

static std::string swapped(std::string row)
{
    for (size_t i = 0; i < row.size(); i += 3)
        std::swap(row[i], row[i + 2]);
    return row;
}

/// The name of the output already ends in an extension.
struct Picture : SceneTest {
    const Folder folder;
    const std::string output = folder.path + "/x.ppm";

    /// Sends noise, from the bottom up and the top row twice. Returns the bytes of the file.
    std::string picture(int type, const char* extension, int width, int height) const
    {
        iImageType = type;
        myDisplay = {.width = width, .height = height};
        printed([&] { EXPECT_EQ(openImage(output.c_str(), width, height), 0); });
        for (int y = height; y >= 0; --y) {
            std::string row = noise(width, y);
            EXPECT_EQ(writeImageLine(reinterpret_cast<unsigned char*>(row.data()), y % height), 0);
        }
        closeImage();
        return folder.read("x.ppm"s + extension);
    }
};

TEST_F(Picture, BytesOfPpmTgaBmp)
{
    const struct {
        char width, fileSize, pixelsSize;
        std::string padding;
    } cases[] = {{1, 62, 8, "\0"s}, {3, 78, 24, "\0\0\0"s}, {4, 78, 24, ""}, {5, 86, 32, "\0"s}};
    for (const auto& [w, fileSize, pixelsSize, padding] : cases) {
        const std::string top = noise(w, 0), bottom = noise(w, 1);
        EXPECT_EQ(picture(PPM, ".ppm", w, 2), "P6\n" + std::to_string(w) + " 2\n255\n" + top + bottom);
        EXPECT_EQ(picture(TGA, ".tga", w, 2),
                  "\0\0\2\0\0\0\0\0\0\0\0\0"s + w + "\0\2\0\x18\x20"s + swapped(top + bottom));
        EXPECT_EQ(picture(BMP, ".bmp", w, 2), "BM"s + fileSize + "\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0"s + w +
                                                  "\0\0\0\2\0\0\0\1\0\x18\0\0\0\0\0"s + pixelsSize +
                                                  std::string(19, '\0') + swapped(bottom) + padding +
                                                  swapped(top) + padding);
    }
    // numbers of several bytes, one of them too large for its field
    EXPECT_EQ(picture(TGA, ".tga", 65537, 1).substr(12, 4), "\1\0\1\0"s);
    EXPECT_EQ(picture(BMP, ".bmp", 65537, 1).substr(2, 20),
              "\x3a\0\3\0\0\0\0\0\x36\0\0\0\x28\0\0\0\1\0\1\0"s);
}

TEST_F(Picture, PngAndTiffReadBackAsTheyWereSent)
{
    for (const int width : {1, 3, 5}) {
        const std::string sent = noise(width, 0) + noise(width, 1), png = picture(PNG, ".png", width, 2);
        png_image reader{};
        reader.version = PNG_IMAGE_VERSION;
        ASSERT_NE(png_image_begin_read_from_memory(&reader, png.data(), png.size()), 0);
        EXPECT_EQ(reader.format, static_cast<png_uint_32>(PNG_FORMAT_RGB));
        std::string pixels(PNG_IMAGE_SIZE(reader), ' ');
        ASSERT_NE(png_image_finish_read(&reader, nullptr, pixels.data(), 0, nullptr), 0);
        EXPECT_EQ(pixels, sent);

        picture(TIF, ".tif", width, 2);
        TIFF* file = TIFFOpen((output + ".tif").c_str(), "r");
        ASSERT_NE(file, nullptr);
        for (unsigned y = 0; y < 2; ++y)
            EXPECT_EQ(TIFFReadScanline(file, &pixels[y * rowSize(width)], y, 0), 1);
        EXPECT_EQ(pixels, sent);
        EXPECT_EQ(TIFFNumberOfStrips(file), 2u);
        char* description = nullptr;
        TIFFGetField(file, TIFFTAG_IMAGEDESCRIPTION, &description);
        EXPECT_STREQ(description, "varlo pic!");
        TIFFClose(file);
    }
}

TEST_F(Picture, JpegHasItsQuality)
{
    EXPECT_NE(picture(JPEG, ".jpg", 65500, 1), ""); // the most that the format holds
    for (const auto& [quality, firstStep] :
         {std::pair{0, 3}, {-5, 3}, {90, 3}, {89, 4}, {1, 255}, {100, 1}, {150, 1}}) {
        jpeg_quality = quality;
        const std::string bytes = picture(JPEG, ".jpg", 1, 2);
        const size_t table = bytes.find("\xFF\xDB"); // then two bytes of length and one of its number
        EXPECT_EQ(static_cast<unsigned char>(bytes[table + 5]), firstStep) << quality;
    }
}
