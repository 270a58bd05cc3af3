#pragma once

// Operations of a Writer, whose contract picture/writer.h tells. A row that cannot be written ends the run
// with status 0.

int openTIFF(const char* name, int width, int height);
int writeTIFFLine(unsigned char* line, int y);
void closeTIFF();

/// Prepares what stands before the pixels; for openTIFF.
void writeTIFFHeader(int width, int height);
