#pragma once

// Operations of a Writer, whose contract picture/writer.h tells.

int openPPM(const char* name, int width, int height);
int writePPMLine(unsigned char* line, int y);
void closePPM();

/// Prepares what stands before the pixels; for openPPM.
void writePPMHeader(int width, int height);
