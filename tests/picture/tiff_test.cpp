#include "picture/pictures.h"

#include "core/data.h"

#include <cstdio>

#include <gtest/gtest.h>
#include <tiffio.h>

TEST(Tiff, ReadsBackAsItWasSent)
{
    for (const int width : {1, 3, 5}) {
        SCOPED_TRACE(width);
        const std::string name = writePicture(TIF, width, 4);
        TIFF* file = TIFFOpen(name.c_str(), "r");
        ASSERT_NE(file, nullptr);
        for (int y = 0; y < 4; ++y) {
            std::string row = noise(width, 0, 1);
            EXPECT_EQ(TIFFReadScanline(file, row.data(), static_cast<unsigned>(y), 0), 1);
            EXPECT_EQ(row, noise(width, y, y + 1));
        }
        EXPECT_EQ(TIFFNumberOfStrips(file), 4u);
        char* description = nullptr;
        TIFFGetField(file, TIFFTAG_IMAGEDESCRIPTION, &description);
        EXPECT_STREQ(description, "varlo pic!");
        TIFFClose(file);
        remove(name.c_str());
    }
}
