#include "engine/sampler.h"

#include "core/progress.h"
#include "core/settings.h"
#include "engine/random.h"
#include "engine/ray.h"
#include "picture/image.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

unsigned char toByte(double component)
{
    if (std::isnan(component))
        return 0;
    const double whole = std::clamp(component, static_cast<double>(INT_MIN), static_cast<double>(INT_MAX));
    return static_cast<unsigned char>(static_cast<int>(whole));
}

void toBytes(const Color& color, unsigned char bytes[3])
{
    bytes[0] = toByte(color.red);
    bytes[1] = toByte(color.green);
    bytes[2] = toByte(color.blue);
}

/// What a sampler owns for the length of its band.
struct Sampler {
    Band band;
    size_t width; // of the picture, in pixels
    Ray ray;
    int level = 0;
};

/// A sampler before its band, and before the band's share of the random numbers: only bands with rows have
/// one.
static Sampler startSampler(void* argument)
{
    const Band* band = &iBounds[reinterpret_cast<intptr_t>(argument)];
    const auto withRows = [](const Band* first, const Band* end) {
        const auto count = std::count_if(first, end, [](const Band& b) { return b.first < b.end; });
        return static_cast<size_t>(count);
    };
    startRandom(withRows(iBounds, band), std::max<size_t>(withRows(iBounds, iBounds + numThreads), 1));

    Sampler sampler{.band = *band, .width = static_cast<size_t>(myDisplay.width), .ray = {}};
    startRay(&sampler.ray);
    return sampler;
}

static constexpr const char* LINE_FAULT = " Memory alloction failed."; // the plain sampler omits the blank

/// Zeroed bytes for a line, or null with the message.
static unsigned char* newLine(size_t size, const char* message)
{
    auto* line = static_cast<unsigned char*>(calloc(size, 1));
    if (line == nullptr)
        puts(message);
    return line;
}

/// The colour at a picture position, on the scale 0 to 255.
static Color sampleAt(double x, double y, Ray* ray, int* level)
{
    Color color;
    initRay(x, y, ray);
    shoot(ray, &color, level);
    return 255.0 * color;
}

/// The sample of a pixel in the plain and the corner sampler: its middle, or anywhere in it.
static void samplePixel(Sampler& s, size_t column, int row, unsigned char bytes[3])
{
    double dx = 0.5, dy = 0.5;
    if (jitter != 0) {
        dy = randomNumber();
        dx = randomNumber();
    }
    toBytes(sampleAt(static_cast<double>(column) + dx, row + dy, &s.ray, &s.level), bytes);
}

static void sampleLine(Sampler& s, int row, size_t columns, unsigned char* line)
{
    for (size_t column = 0; column < columns; ++column)
        samplePixel(s, column, row, line + 3 * column);
}

static void deliver(const unsigned char* line, int row)
{
    writeImageLine(line, row);
    showProgress(row);
}

void* scanNone(void* band)
{
    Sampler s = startSampler(band);
    unsigned char* line = newLine(3 * s.width, LINE_FAULT + 1);
    if (line == nullptr)
        return nullptr;
    for (int row = s.band.first; row < s.band.end; ++row) {
        sampleLine(s, row, s.width, line);
        deliver(line, row);
    }
    free(line);
    return nullptr;
}

void* scanCorners(void* band)
{
    Sampler s = startSampler(band);
    if (s.band.first >= s.band.end)
        return nullptr;
    const size_t size = 3 * (s.width + 1);
    unsigned char* lines = newLine(2 * size, LINE_FAULT);
    if (lines == nullptr)
        return nullptr;
    unsigned char* previous = lines;
    unsigned char* current = lines + size;

    // The row above the band, so that its first row has both lines whatever the number of threads is.
    sampleLine(s, s.band.first - 1, s.width + 1, previous);
    for (int row = s.band.first; row < s.band.end; ++row) {
        sampleLine(s, row, s.width + 1, current);
        for (size_t i = 0; i < 3 * s.width; ++i) // in the place of samples that are not needed again
            previous[i] = static_cast<unsigned char>(
                (current[i] + current[i + 3] + previous[i] + previous[i + 3]) >> 2);
        deliver(previous, row);
        std::swap(previous, current);
    }
    free(lines);
    return nullptr;
}

static SampleCell cellOf(const Color& color)
{
    return {.red = toByte(color.red), .green = toByte(color.green), .blue = toByte(color.blue), .done = 1};
}

static SampleCell meanOf(const SampleCell p[4])
{
    const auto mean = [p](unsigned char SampleCell::*c) {
        return static_cast<unsigned char>((p[0].*c + p[1].*c + p[2].*c + p[3].*c) >> 2);
    };
    return {mean(&SampleCell::red), mean(&SampleCell::green), mean(&SampleCell::blue), 1};
}

/// The cell at (p, q) of a block, traced if no neighbour has handed it on.
static const SampleCell& cellAt(int p, int q, double x, double y, Ray* ray, int* level,
                                SampleCell block[5][5])
{
    SampleCell& cell = block[q][p];
    if (cell.done)
        return cell;
    double px = x + 0.25 * p, py = y + 0.25 * q;
    if (jitter != 0) {
        py += randomNumber() * 0.25 - 0.125;
        px += randomNumber() * 0.25 - 0.125;
    }
    return cell = cellOf(sampleAt(px, py, ray, level));
}

void adapt(int a, int b, double x, double y, Color* color, int size, Ray* ray, int* level,
           SampleCell block[5][5])
{
    const SampleCell corners[4] = {
        cellAt(a, b, x, y, ray, level, block),
        cellAt(a + size, b, x, y, ray, level, block),
        cellAt(a, b + size, x, y, ray, level, block),
        cellAt(a + size, b + size, x, y, ray, level, block),
    };
    SampleCell mean = meanOf(corners);
    const bool differs = std::any_of(corners, corners + 4, [=](const SampleCell& corner) {
        return std::abs(mean.red - corner.red) >= adapt_dist ||
               std::abs(mean.green - corner.green) >= adapt_dist ||
               std::abs(mean.blue - corner.blue) >= adapt_dist;
    });
    if (size > 1 && differs) {
        const int half = size / 2;
        SampleCell quarters[4];
        for (const int i : {0, 1, 2, 3}) {
            adapt(a + (i & 1) * half, b + (i >> 1) * half, x, y, color, half, ray, level, block);
            quarters[i] = cellOf(*color);
        }
        mean = meanOf(quarters);
    }
    *color = {static_cast<double>(mean.red), static_cast<double>(mean.green), static_cast<double>(mean.blue)};
}

void* scanAdaptive(void* band)
{
    Sampler s = startSampler(band);
    // The carry line holds the bottom edges of the pixels in the row above: place a of column c at 4 * c + a,
    // so that neighbours share their corner.
    const size_t carrySize = (4 * s.width + 1) * sizeof(SampleCell);
    unsigned char* output = newLine(3 * s.width + carrySize, LINE_FAULT);
    if (output == nullptr)
        return nullptr;
    auto* carry = reinterpret_cast<SampleCell*>(output + 3 * s.width);
    SampleCell block[5][5] = {}; // by row, then column

    for (int row = s.band.first; row < s.band.end; ++row) {
        for (auto& line : block)
            line[0].done = 0;
        for (size_t column = 0; column < s.width; ++column) {
            SampleCell* edge = carry + 4 * column;
            memcpy(&block[0][1], edge + 1, 4 * sizeof(SampleCell)); // (0, 0) came from the pixel to the left
            for (int b = 1; b <= 4; ++b)
                for (int a = 1; a <= 4; ++a)
                    block[b][a].done = 0;

            Color color;
            adapt(0, 0, static_cast<double>(column), row, &color, 4, &s.ray, &s.level, block);
            toBytes(color, output + 3 * column);
            memcpy(edge, block[4], sizeof block[4]);
            for (auto& line : block)
                line[0] = line[4];
        }
        deliver(output, row);
    }
    free(output);
    return nullptr;
}
