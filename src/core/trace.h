#pragma once

/// Renders the scene and writes the picture: one thread for each band of rows, no lock between them. Then
/// frees the two lists. May end the process: no thread, no picture file.
void doTrace();

/// Fills iBounds with `threads` bands and prints the thread line. Anything but 2, 4 or 8 becomes 2.
void initMTBounds(int threads);
