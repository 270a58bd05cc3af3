#pragma once

// Operations of a Writer, whose contract picture/writer.h tells. The row operation leaves blue, green, red in
// the caller's row, and returns the width.

int openBMP(const char* name, int width, int height);
int writeBMPLine(unsigned char* line, int y);
void closeBMP();

/// Prepares what stands before the pixels; for openBMP.
void writeBMPHeader(int width, int height);
