#include "picture/image.h"

#include "core/fatal.h"
#include "picture/writer.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <iterator>

// indexed by iImageType
static constexpr const Writer* writers[] = {&writerTGA, &writerBMP, &writerPPM,
                                            &writerPNG, &writerJPG, &writerTIFF};
static_assert(std::size(writers) == NUM_IMAGE_TYPES);

int openImage(const char* name, int width, int height)
{
    const Writer& writer = *writers[iImageType];
    char fileName[FILE_NAME_SIZE];
    snprintf(fileName, sizeof fileName, "%s%s", name, writer.extension);

    errno = 0;
    const int opened = writer.open(fileName, width, height);
    // libpng leaves no reason when it refuses a size
    const int reason = errno != 0 ? errno : EINVAL;
    printf(" Rendering to: %s\n", fileName);
    printf(" Resolution:   %d x %d\n", width, height);
    if (opened != 0)
        endForFile(fileName, reason, EXIT_FAILURE);
    return 0;
}

int writeImageLine(const unsigned char* line, int y)
{
    writers[iImageType]->row(line, y);
    return 0;
}

void closeImage()
{
    writers[iImageType]->close();
    free(image);
}
