#pragma once

#include "core/data.h"

// The three samplers. Each is the entry of a render thread: its argument is the number of a band in iBounds,
// carried in the pointer, and it hands every row of that band to the picture sink, from top to bottom.

/// One ray a pixel.
void* scanNone(void* band);

/// One ray a pixel corner; a pixel is the mean of the four around it.
void* scanCorners(void* band);

/// Up to 25 rays a pixel, on a grid of 5 by 5 points, where its corners differ by adapt_dist or more.
void* scanAdaptive(void* band);

/// One point of the adaptive grid; the colour means something only once it is done.
struct SampleCell {
    unsigned char red, green, blue, done;
};

/// The colour, on a scale of 0 to 255 in whole numbers, of the square from (a, b) to (a + size, b + size) of
/// `block` in the pixel at (x, y). Makes the samples that the block lacks.
void adapt(int a, int b, double x, double y, Color* color, int size, Ray* ray, int* level,
           SampleCell block[5][5]);

/// The byte of a component on the scale 0 to 255: cut towards zero, kept within 32 bits, low 8 bits.
/// Something that is no number is 0.
unsigned char toByte(double component);

/// The three bytes of a colour on this scale.
void toBytes(const Color& color, unsigned char bytes[3]);
