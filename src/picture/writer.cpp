#include "picture/writer.h"

#include "core/fatal.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <utility>

constinit unsigned char* image = nullptr;

static constinit char fileName[FILE_NAME_SIZE] = ""; // of the latest created file, for a failed write

int newPicture(int width, int height)
{
    image = static_cast<unsigned char*>(calloc(static_cast<std::size_t>(height), rowSize(width)));
    return image != nullptr ? 0 : -1;
}

unsigned char* pictureRow(int y)
{
    return image + static_cast<std::size_t>(y) * rowSize(myDisplay.width);
}

int copyRow(const unsigned char* line, int y)
{
    memcpy(pictureRow(y), line, rowSize(myDisplay.width));
    return 0;
}

void swapRedBlue(unsigned char* line)
{
    for (const unsigned char* end = line + rowSize(myDisplay.width); line != end; line += 3)
        std::swap(line[0], line[2]);
}

FILE* createFile(const char* name, const char* mode)
{
    snprintf(fileName, sizeof fileName, "%s", name);
    return fopen(name, mode);
}

void writeBytes(FILE* fp, const void* bytes, std::size_t count)
{
    if (fwrite(bytes, 1, count, fp) != count)
        endForFile(fileName, errno, EXIT_FAILURE);
}

void writeFields(FILE* fp, std::span<const Field> fields)
{
    for (const Field& field : fields) {
        for (int i = 0; i < field.size; ++i) {
            const unsigned char byte = (field.value >> 8 * i) & 0xff;
            writeBytes(fp, &byte, 1);
        }
    }
}

void closeFile(FILE* fp)
{
    if (fclose(fp) != 0)
        endForFile(fileName, errno, EXIT_FAILURE);
}
