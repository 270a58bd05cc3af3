#pragma once

#include "core/settings.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <span>

/// Room for a full file name: any output name, the extension and the end of the text.
constexpr int FILE_NAME_SIZE = OUTPUT_NAME_SIZE + 4;

/// The operations of a picture format, in the order of their calls; one picture at a time. The whole picture
/// stands in memory, so that a row is a copy from any thread, and only `close` writes pixels to the file.
struct Writer {
    const char* extension;
    /// Creates the file `name` and a black picture. Returns 0, or -1 with the reason in `errno`.
    int (*open)(const char* name, int width, int height);
    /// Takes row `y`, 0 at the top, of 3 * myDisplay.width bytes: red, green, blue. Runs in many threads at
    /// once, each with rows of its own.
    void (*row)(const unsigned char* line, int y);
    /// Writes the picture of the size in myDisplay and closes the file. A failed write ends the run with
    /// status 1 and the words of the system or the library on standard error.
    void (*close)();
};

extern const Writer writerTGA, writerBMP, writerPPM, writerPNG, writerJPG, writerTIFF;

// What the writers share. The picture in memory is rows without gaps, row 0 first.

/// A number of `size` bytes, low byte first; bits beyond its size are dropped.
struct Field {
    std::uint64_t value;
    int size;
};

/// Bytes of a picture row: three for each pixel.
constexpr std::size_t rowSize(int width)
{
    return 3 * static_cast<std::size_t>(width);
}

// Between open and close: the file, and the bytes of the picture, red, green, blue unless the row operation
// turned them.
inline constinit FILE* outfile = nullptr;
inline constinit unsigned char* image = nullptr;

/// Makes `image`, black, at the end of an `open`, and returns what that has to.
int newPicture(int width, int height);

/// Row `y` of a picture that is `myDisplay.width` pixels wide.
unsigned char* pictureRow(int y);

/// A row operation that copies the row to its place.
void copyRow(const unsigned char* line, int y);

/// Likewise, turned into blue, green, red.
void copyTurnedRow(const unsigned char* line, int y);

/// Creates the file, or empties it. False if that fails, with the reason in `errno`.
bool createFile(const char* name, const char* mode = "wb");

/// The open operation of a format that needs nothing but a header.
template <void (*writeHeader)(int width, int height)>
int openWithHeader(const char* name, int width, int height)
{
    if (!createFile(name))
        return -1;
    writeHeader(width, height);
    return newPicture(width, height);
}

// These end the run with status 1 if a write fails, and print the name of the file with the words of the
// system on standard error: a short file shall not look like a success.

void writeBytes(const void* bytes, std::size_t count);
void writeFields(std::span<const Field> fields);
void closeFile();

/// The close operation of a format that has the picture in its file as it is in memory.
void closeWithPicture();
