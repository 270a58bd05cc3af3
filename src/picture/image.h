#pragma once

/// Creates the file of the picture, in the format of `iImageType`, with the extension of the format added
/// to `name` whatever it ends in, and prints the full name and the size. The picture starts black. Width
/// and height are above 0.
///
/// Returns 0. If the file or the memory for the picture cannot be had, the run ends with status 1.
int openImage(const char* name, int width, int height);

/// Takes row `y`, 0 at the top, of 3 * myDisplay.width bytes: red, green, blue. It may be called from many
/// threads at once, in any order of rows; a row that comes twice replaces itself. Returns 0.
int writeImageLine(const unsigned char* line, int y);

/// Writes the picture to its file. A failed write ends the run with status 1, a failed TIFF row with 0.
void closeImage();
