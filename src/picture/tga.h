#pragma once

// Operations of a Writer, whose contract picture/writer.h tells. The row operation leaves blue, green, red in
// the caller's row, and returns the width.

int openTGA(const char* name, int width, int height);
int writeTGALine(unsigned char* line, int y);
void closeTGA();

/// Prepares what stands before the pixels; for openTGA.
void writeTGAHeader(int width, int height);
