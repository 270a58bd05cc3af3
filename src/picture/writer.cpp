#include "picture/writer.h"

#include "core/fatal.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

static constinit char fileName[FILE_NAME_SIZE] = ""; // of the file, for a failed write

int newPicture(int width, int height)
{
    image = static_cast<unsigned char*>(calloc(static_cast<std::size_t>(height), rowSize(width)));
    return image != nullptr ? 0 : -1;
}

unsigned char* pictureRow(int y)
{
    return image + static_cast<std::size_t>(y) * rowSize(myDisplay.width);
}

void copyRow(const unsigned char* line, int y)
{
    memcpy(pictureRow(y), line, rowSize(myDisplay.width));
}

void copyTurnedRow(const unsigned char* line, int y)
{
    copyRow(line, y);
    unsigned char* row = pictureRow(y);
    for (const unsigned char* end = row + rowSize(myDisplay.width); row != end; row += 3)
        std::swap(row[0], row[2]);
}

bool createFile(const char* name, const char* mode)
{
    snprintf(fileName, sizeof fileName, "%s", name);
    outfile = fopen(name, mode);
    return outfile != nullptr;
}

void writeBytes(const void* bytes, std::size_t count)
{
    if (fwrite(bytes, 1, count, outfile) != count)
        endForFile(fileName, errno, EXIT_FAILURE);
}

void writeFields(std::span<const Field> fields)
{
    for (const Field& field : fields) {
        for (int i = 0; i < field.size; ++i) {
            const unsigned char byte = (field.value >> 8 * i) & 0xff;
            writeBytes(&byte, 1);
        }
    }
}

void closeFile()
{
    if (fclose(outfile) != 0)
        endForFile(fileName, errno, EXIT_FAILURE);
}

void closeWithPicture()
{
    writeBytes(image, rowSize(myDisplay.width) * static_cast<std::size_t>(myDisplay.height));
    closeFile();
}
