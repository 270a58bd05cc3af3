#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

// Mutations of a 3DS model that know its chunks: one chunk changes, and the lengths of the chunks around it
// are put right, so that the reader gets to the change.

using Bytes = std::vector<std::uint8_t>;

static constexpr size_t HEADER = 6; // bytes: the id and the length, which counts them
static constexpr std::uint16_t IDS[] = {0x0002, 0x0010, 0x0011, 0x3D3D, 0x3D3E, 0x4000, 0x4100,
                                        0x4110, 0x4120, 0x4130, 0x4140, 0x4600, 0x4610, 0x4620,
                                        0x4700, 0x4D4D, 0xA000, 0xA020, 0xA200, 0xA300, 0xAFFF};

inline std::uint32_t numberAt(const Bytes& bytes, size_t at, size_t width)
{
    std::uint32_t number = 0;
    memcpy(&number, &bytes[at], width);
    return number;
}

inline void setLength(Bytes& bytes, size_t chunk, size_t length)
{
    memcpy(&bytes[chunk + 2], &length, 4);
}

/// The end of the chunk at a place: that of its length, or of the chunk around it.
inline size_t endOf(const Bytes& bytes, size_t chunk, size_t limit)
{
    return std::min(limit, chunk + std::max<size_t>(numberAt(bytes, chunk + 2, 4), HEADER));
}

/// Where the chunks within a chunk begin; its end if it has none.
inline size_t contentOf(const Bytes& bytes, size_t chunk, size_t end)
{
    size_t content = chunk + HEADER;
    switch (numberAt(bytes, chunk, 2)) {
    case 0x4000: // behind the name
        while (content < end && bytes[content++] != 0) {
        }
        return content;
    case 0x4120: // behind the faces
        return content + 2 > end ? end : std::min(end, content + 2 + 8 * numberAt(bytes, content, 2));
    case 0x4600: // behind the position
        return std::min(end, content + 12);
    case 0x4D4D:
    case 0x3D3D:
    case 0x4100:
    case 0xA020:
    case 0xA200:
    case 0xAFFF:
        return content;
    default:
        return end;
    }
}

/// The places of some chunk and of all around it, from the outermost one.
inline std::vector<size_t> chooseChunk(const Bytes& bytes, std::minstd_rand& chance)
{
    std::vector<size_t> path{0};
    size_t end = endOf(bytes, 0, bytes.size());
    while (chance() % 5 != 0) {
        std::vector<size_t> within;
        for (size_t at = contentOf(bytes, path.back(), end); at + HEADER <= end; at = endOf(bytes, at, end))
            within.push_back(at);
        if (within.empty())
            break;
        path.push_back(within[chance() % within.size()]);
        end = endOf(bytes, path.back(), end);
    }
    return path;
}

/// What is to stand in place of a chunk. `mutate` changes the data of one, which may grow by 16 bytes.
inline Bytes changed(Bytes chunk, std::minstd_rand& chance, size_t (*mutate)(std::uint8_t*, size_t, size_t))
{
    const std::uint16_t id = IDS[chance() % std::size(IDS)];
    const Bytes header = {static_cast<std::uint8_t>(id), static_cast<std::uint8_t>(id >> 8), HEADER, 0, 0, 0};
    const size_t length = chunk.size();
    const size_t wrong[] = {0, HEADER - 1, HEADER, length - 1, length + 1, 0xFFFFFFFF};
    switch (chance() % 7) {
    case 0: // gone
        return {};
    case 1: { // twice
        const Bytes copy = chunk;
        chunk.insert(chunk.end(), copy.begin(), copy.end());
        return chunk;
    }
    case 2: // another kind
        std::copy_n(header.begin(), 2, chunk.begin());
        return chunk;
    case 3: // an empty one in front
        chunk.insert(chunk.begin(), header.begin(), header.end());
        return chunk;
    case 4: // within another
        chunk.insert(chunk.begin(), header.begin(), header.end());
        setLength(chunk, 0, length + HEADER);
        return chunk;
    case 5: // a wrong length
        setLength(chunk, 0, wrong[chance() % std::size(wrong)]);
        return chunk;
    default: // other data
        chunk.resize(length + 16);
        chunk.resize(HEADER + mutate(&chunk[HEADER], length - HEADER, length + 16 - HEADER));
        setLength(chunk, 0, chunk.size());
        return chunk;
    }
}

/// Changes one chunk of a model of at least six bytes.
inline void mutateChunk(Bytes& bytes, std::minstd_rand& chance,
                        size_t (*mutate)(std::uint8_t*, size_t, size_t))
{
    std::vector<size_t> path = chooseChunk(bytes, chance);
    size_t end = bytes.size();
    for (const size_t chunk : path)
        end = endOf(bytes, chunk, end);
    const auto first = bytes.begin() + static_cast<std::ptrdiff_t>(path.back());
    const auto last = bytes.begin() + static_cast<std::ptrdiff_t>(end);
    const Bytes fresh = changed({first, last}, chance, mutate);
    const size_t before = static_cast<size_t>(last - first);
    bytes.insert(bytes.erase(first, last), fresh.begin(), fresh.end());
    path.pop_back();
    for (const size_t around : path)
        setLength(bytes, around, numberAt(bytes, around + 2, 4) + fresh.size() - before);
}
