#pragma once

#include <cstddef>

/// Zeroed memory for a primitive or a bounding node of `size` bytes, aligned for an Object. It lasts to the
/// end of the process: of these records there may be millions, none goes before the others, and they stand in
/// the order in which they were made. Null without memory.
void* newRecord(size_t size);

/// Begins anew, as at the start of the process. The records so far stay, and so does their memory.
void resetRecords();
