#include "palette.h"

#include <algorithm>
#include <numeric>

// Median cut: P. Heckbert, "Color image quantization for frame buffer display", 1982. A box of colours is cut
// at the median of its longest side, the box with the largest side first, until there are enough boxes.

struct Counted {
    Rgb colour;
    uint32_t count;
};

struct Box {
    size_t begin, end; // in the list of colours
    int channel;       // the one with the longest side
    unsigned side;     // its length; 0 for one colour
};

static unsigned channelOf(Rgb colour, int channel)
{
    return colour >> (8 * channel) & 255;
}

static Box makeBox(const std::vector<Counted>& list, size_t begin, size_t end)
{
    Box box = {begin, end, 0, 0};
    for (int channel = 0; channel < 3; ++channel) {
        unsigned least = 255, most = 0;
        for (size_t i = begin; i < end; ++i) {
            least = std::min(least, channelOf(list[i].colour, channel));
            most = std::max(most, channelOf(list[i].colour, channel));
        }
        if (most - least > box.side) {
            box.channel = channel;
            box.side = most - least;
        }
    }
    return box;
}

/// Sorts the box along its longest side; where its colours are halved. Both halves hold some.
static size_t cutOf(std::vector<Counted>& list, const Box& box)
{
    const auto first = list.begin() + static_cast<ptrdiff_t>(box.begin),
               last = list.begin() + static_cast<ptrdiff_t>(box.end);
    std::sort(first, last, [&](const Counted& a, const Counted& b) {
        const unsigned x = channelOf(a.colour, box.channel), y = channelOf(b.colour, box.channel);
        return x != y ? x < y : a.colour < b.colour;
    });
    uint64_t all = 0, half = 0;
    for (auto i = first; i != last; ++i)
        all += i->count;
    size_t cut = box.begin;
    while (cut + 1 < box.end && (half += list[cut].count) * 2 < all)
        ++cut;
    return std::clamp(cut + 1, box.begin + 1, box.end - 1);
}

static Colour meanOf(const std::vector<Counted>& list, const Box& box)
{
    double sums[3] = {}, count = 0.0;
    for (size_t i = box.begin; i < box.end; ++i) {
        for (int channel = 0; channel < 3; ++channel)
            sums[channel] += static_cast<double>(channelOf(list[i].colour, channel)) * list[i].count;
        count += list[i].count;
    }
    const auto part = [&](double sum) { return static_cast<float>(sum / count / 255.0); };
    return {part(sums[0]), part(sums[1]), part(sums[2])};
}

static std::vector<Counted> countColours(std::vector<Rgb> colours)
{
    std::sort(colours.begin(), colours.end());
    std::vector<Counted> list;
    for (const Rgb colour : colours) {
        if (list.empty() || list.back().colour != colour)
            list.push_back({colour, 0});
        ++list.back().count;
    }
    return list;
}

std::vector<Colour> quantise(std::vector<Rgb>& colours, size_t count)
{
    std::vector<Counted> list = countColours(colours);
    if (list.empty())
        return {};
    std::vector<Box> boxes = {makeBox(list, 0, list.size())};
    while (boxes.size() < count) {
        const auto widest = std::max_element(boxes.begin(), boxes.end(),
                                             [](const Box& a, const Box& b) { return a.side < b.side; });
        if (widest->side == 0)
            break;
        const Box box = *widest;
        const size_t cut = cutOf(list, box);
        *widest = makeBox(list, box.begin, cut);
        boxes.push_back(makeBox(list, cut, box.end));
    }

    std::vector<Colour> palette;
    for (const Box& box : boxes) {
        palette.push_back(meanOf(list, box));
        for (size_t i = box.begin; i < box.end; ++i)
            list[i].count = static_cast<uint32_t>(palette.size() - 1); // from now on its place
    }
    std::sort(list.begin(), list.end(),
              [](const Counted& a, const Counted& b) { return a.colour < b.colour; });
    for (Rgb& colour : colours)
        colour = std::lower_bound(list.begin(), list.end(), colour, [](const Counted& a, Rgb b) {
                     return a.colour < b;
                 })->count;
    return palette;
}
