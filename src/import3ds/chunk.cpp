#include "import3ds/chunk.h"

#include "core/fatal.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

static constexpr std::uint32_t HEADER_SIZE = 6;

static constinit FILE* m_FilePointer = nullptr;
static constinit const char* name = nullptr; // of the file, for a read that fails
static constinit std::int64_t fileEnd = 0, position = 0;

bool openChunks(const char* fileName)
{
    m_FilePointer = fopen(fileName, "rb");
    if (m_FilePointer == nullptr)
        return false;
    name = fileName;
    fseeko(m_FilePointer, 0, SEEK_END);
    fileEnd = ftello(m_FilePointer);
    rewind(m_FilePointer);
    position = 0;
    damagedAt = -1;
    return true;
}

void closeChunks()
{
    fclose(m_FilePointer);
    m_FilePointer = nullptr;
}

std::uint32_t bytesLeft(const Chunk* chunk)
{
    return chunk->length - chunk->bytesRead;
}

std::int64_t recordsLeft(std::uint32_t size)
{
    // Below 0 for a pipe, which has no end to seek, and for a file that grows meanwhile.
    return std::max<std::int64_t>(0, (fileEnd - position) / size);
}

std::int64_t filePosition()
{
    return position;
}

bool damaged(std::int64_t where, const char* thing)
{
    damagedAt = where;
    damagedThing = thing;
    return false;
}

bool take(Chunk* chunk, void* data, std::uint32_t size)
{
    if (size > bytesLeft(chunk))
        return damaged(position, "chunk too short");
    const size_t got = fread(data, 1, size, m_FilePointer);
    position += static_cast<std::int64_t>(got);
    chunk->bytesRead += static_cast<std::uint32_t>(got);
    if (got < size && ferror(m_FilePointer) != 0)
        endForFile(name, errno, -1);
    return got == size || damaged(position, FILE_END);
}

bool skipRest(Chunk* chunk)
{
    const std::uint32_t rest = bytesLeft(chunk);
    if (rest > fileEnd - position)
        return damaged(fileEnd, FILE_END); // a seek would pass the end without a word
    if (rest > 0 && fseeko(m_FilePointer, static_cast<off_t>(rest), SEEK_CUR) != 0)
        return damaged(position, FILE_END);
    position += rest;
    chunk->bytesRead = chunk->length;
    return true;
}

bool readChunk(Chunk* chunk, const Chunk* parent)
{
    const std::int64_t start = position;
    const std::uint32_t room = bytesLeft(parent);
    *chunk = {.id = 0, .length = HEADER_SIZE, .bytesRead = 0};
    std::uint32_t length;
    if (room < HEADER_SIZE)
        return damaged(start, "chunk header");
    if (!takeNumbers(chunk, &chunk->id, 1) || !takeNumbers(chunk, &length, 1))
        return damaged(start, FILE_END);
    chunk->length = length;
    return (length >= HEADER_SIZE && length <= room) || damaged(start, "chunk length");
}

bool getString(Chunk* chunk, char (&text)[MODEL_NAME_SIZE])
{
    memset(text, 0, sizeof text);
    int length = 0;
    char c;
    do {
        if (!take(chunk, &c, 1))
            return false;
        if (length < MODEL_NAME_SIZE - 1)
            text[length++] = c;
    } while (c != '\0');
    return true;
}

bool getRest(Chunk* chunk, char (&text)[MODEL_NAME_SIZE])
{
    memset(text, 0, sizeof text);
    return take(chunk, text, std::min<std::uint32_t>(bytesLeft(chunk), MODEL_NAME_SIZE - 1)) &&
           skipRest(chunk);
}
