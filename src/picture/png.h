#pragma once

// Operations of a Writer, whose contract picture/writer.h tells.

int openPNG(const char* name, int width, int height);
int writePNGLine(unsigned char* line, int y);
void closePNG();

/// Prepares what stands before the pixels; for openPNG.
void writePNGHeader(int width, int height);
