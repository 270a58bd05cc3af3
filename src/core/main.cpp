#include "bounds/bound.h"
#include "bounds/packing.h"
#include "core/args.h"
#include "core/data.h"
#include "core/fatal.h"
#include "core/settings.h"
#include "core/trace.h"
#include "import3ds/scene3ds.h"
#include "scene/parser.h"

#include <cstdio>
#include <fcntl.h>
#include <new>
#include <unistd.h>

/// Opens the null device on each standard stream that is closed. Otherwise the picture's file would get the
/// number of one, and what is said would go into it.
static void openStandardStreams()
{
    int file = 0;
    while (file >= 0 && file <= STDERR_FILENO)
        file = open("/dev/null", O_RDWR); // the lowest number that is free
    close(file);
}

int main(int argc, char* argv[])
{
    openStandardStreams();
    std::set_new_handler([] { fatal(OUT_OF_MEMORY); });
    resetScene();
    showCredits();
    if (argc < 2) {
        showUsage();
        return -1;
    }
    parseArgs(argc, argv);
    if ((use3ds ? parse3ds(inputFileName) : parseFile(inputFileName)) != 0)
        return -1;
    parseArgs(argc, argv); // again: the command line beats the scene
    if (myDisplay.width <= 0 || myDisplay.height <= 0) {
        fprintf(stderr, " A picture of %d x %d pixels cannot be rendered\n", myDisplay.width,
                myDisplay.height);
        return -1;
    }
    printf("\n Number of primitives:\t\t%ld\n\n", static_cast<long>(nPrims));
    buildBoundingSlabs();
    packTree();
    doTrace();
    return 0;
}
