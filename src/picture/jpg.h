#pragma once

// Operations of a Writer, whose contract picture/writer.h tells. An error of libjpeg, as for a side above
// 65500 pixels, ends the run with status 1 at the close. Before that, nothing is in the file.

int openJPG(const char* name, int width, int height);
int writeJPGLine(unsigned char* line, int y);
void closeJPG();
