#pragma once

/// The file that messages name.
void setMessageFile(const char* file);

/// One line on standard error: the program, the file, and what is to be said of it.
[[gnu::format(printf, 1, 2)]] void warn(const char* format, ...);

/// As `warn`, and false, for the caller to hand back.
[[gnu::format(printf, 1, 2)]] bool refuse(const char* format, ...);
