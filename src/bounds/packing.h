#pragma once

/// Makes the packed tree of a finished one: where the queue cannot fill, and the picture is large enough, of
/// primitives that are grouped anew, for fewer nodes on the way of a ray; else a copy. It makes none, and the
/// walk does without, when there is no tree.
void packTree();

/// Makes a packed copy of the tree. It makes none when there is no memory, or a bound that is not a number:
/// the shortcuts of the walk reason about bounds that enclose.
void packRecords();
