#include "scene/block.h"

// Does not compile, which is the test: one word is misspelt, the other stands behind the end of the search.

BlockWord misspeltRow(double* radius)
{
    return block::once("raduis", radius);
}

BlockWord unreachedRow(Vec* angles)
{
    return block::any("rotate", angles);
}
