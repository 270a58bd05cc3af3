#pragma once

#include "import3ds/model.h"

#include <algorithm>
#include <bit>
#include <span>

// A 3DS file is a tree of chunks: an id, a length, then data, sub-chunks or both. Nothing in a file is to be
// trusted, so every byte comes through these functions, which know where the chunk and the file end. Those
// that return a bool say false once reading has to stop for good, and damagedAt then tells where.

struct Chunk {
    std::uint16_t id;
    std::uint32_t length;    // from the header, which it includes
    std::uint32_t bytesRead; // the header included; never above length
};

inline constinit std::int64_t damagedAt = -1;   // byte at which reading stopped; -1 while there is no damage
inline constinit const char* damagedThing = ""; // what was wrong there, for the user
constexpr const char* FILE_END = "end of file";

/// Opens the one file that is read at a time and forgets damage. False if it cannot be opened.
bool openChunks(const char* fileName);

void closeChunks();

std::uint32_t bytesLeft(const Chunk* chunk);

/// How many records of `size` bytes the rest of the file can hold.
std::int64_t recordsLeft(std::uint32_t size);

/// Byte of the file that is read next.
std::int64_t filePosition();

/// Stops the reading at byte `where`, since `thing` is wrong.
bool damaged(std::int64_t where, const char* thing);

/// Reads `size` bytes of the chunk. If the chunk is too short for them none are read. A read that fails for
/// another reason than the end of the file ends the process with status -1 and the words of the system.
bool take(Chunk* chunk, void* data, std::uint32_t size);

/// Steps over the rest of the chunk.
bool skipRest(Chunk* chunk);

/// Reads the header of the next chunk within `parent`, where it has to end too. The parent's bytesRead stays.
/// Of a file that ends within the header, the id is set if it came.
bool readChunk(Chunk* chunk, const Chunk* parent);

/// Reads a string up to and including its zero. What does not fit is left out.
bool getString(Chunk* chunk, char (&text)[MODEL_NAME_SIZE]);

/// Takes the rest of the chunk for a string, with or without a zero. What does not fit is left out.
bool getRest(Chunk* chunk, char (&text)[MODEL_NAME_SIZE]);

/// Reads numbers, which a file holds with their low byte first.
template <class Number>
bool takeNumbers(Chunk* chunk, Number* numbers, std::uint32_t count)
{
    if (!take(chunk, numbers, count * static_cast<std::uint32_t>(sizeof(Number))))
        return false;
    if constexpr (std::endian::native == std::endian::big)
        for (std::uint32_t i = 0; i < count; ++i) {
            const auto bytes = std::as_writable_bytes(std::span(numbers + i, 1));
            std::reverse(bytes.begin(), bytes.end());
        }
    return true;
}
