#include "core/args.h"

#include "core/settings.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

void showCredits()
{
    puts("\n VARLO v0.1 beta 14 (linux-intel-glibc2-multithreaded)");
}

void showUsage()
{
    puts("\n Usage: varlo [options] scenefile [...]\n");
    puts(" Example: varlo -i scene.vlo\n");
    puts(" Options:");
    puts("  -3ds/--3ds         filename    read filename as 3ds input");
    puts("  -c/--camera        integer     specify which camera to use to render");
    puts("  -i/--input         filename    read filename as input");
    puts("  -o/--ouput         filename    write output to 'filename' (no extension)");
    puts("  -w/--width         integer     specify with of the output image");
    puts("  -h/--height        integer     specify height of the output image");
    puts("  -r/--resolution    int int     specify width and height of the output image");
    puts("  -t/--thread        int         specify the number thread to use (2, 4 or 8)");
    puts("  -j/--jitter                    activate jittering");
    puts("  -aaa/--aaadatpive  double      activate adaptive anti-aliasing");
    puts("  -aaq/--aaquick                 activate quick anti-aliasing");
    puts("  -aan/--aanone                  deactivate anti-aliasing");
    puts("  -tga/--tga                     TGA output image");
    puts("  -bmp/--bmp                     BMP output image");
    puts("  -ppm/--ppm                     PPM output image");
    puts("  -tif/--tiff                    TIFF output image");
    puts("  -png/--png                     PNG output image");
    puts("  -jpg/--jpeg                    JPEG output image");
    puts("  -?/--help                      this help message\n");
    puts(" Report bugs to:         the issue tracker of this project");
    puts(" Send suggestions to:    the issue tracker of this project");
}

[[noreturn]] static void endWithUsage()
{
    showUsage();
    exit(-1);
}

static void copyName(char* target, size_t size, const char* name)
{
    if (strlen(name) >= size) {
        fprintf(stderr, " File name too long, at most %zu characters: %s\n", size - 1, name);
        exit(-1);
    }
    strcpy(target, name);
}

static void setQueueSize(int size)
{
    iPQSize = size;
    if (size <= 100) {
        puts("\n Defaulting priority queue size to 100");
        iPQSize = 100;
    }
}

static void setAdaptive(int distance)
{
    if (distance == 0)
        endWithUsage();
    iAntialias = AA_ADAPTIVE;
    adapt_dist = distance;
}

static void setInput(const char* name)
{
    copyName(inputFileName, sizeof inputFileName, name);
}

static constexpr Option table[] = {
    {.forms = {"-?", "--help"}, .flag = endWithUsage},
    {.forms = {"/?", "/?"}, .flag = endWithUsage},
    {.forms = {"-o", "--output"},
     .name = [](const char* name) { copyName(myDisplay.outputName, sizeof myDisplay.outputName, name); }},
    {.forms = {"-i", "--input"}, .name = setInput, .isInput = true},
    // Which camera this selects is the business of the model's import, which reads it in the first pass only.
    {.forms = {"-c", "--camera"},
     .number = [](int value) { iCameraIndex = static_cast<int>(static_cast<unsigned>(value) + 1U); }},
    {.forms = {"-3ds", "--3ds"},
     .name =
         [](const char* name) {
             setInput(name);
             use3ds = 1;
         },
     .isInput = true},
    {.forms = {"-aaa", "--aaadaptive"}, .number = setAdaptive},
    {.forms = {"-t", "--thread"}, .number = [](int value) { setThreads(value); }},
    {.forms = {"-pqs", "--pqsize"}, .number = setQueueSize},
    {.forms = {"-aaq", "--aaquick"}, .flag = [] { iAntialias = AA_QUICK; }},
    {.forms = {"-aan", "--aanone"}, .flag = [] { iAntialias = AA_NONE; }},
    {.forms = {"-j", "--jitter"}, .flag = [] { jitter = 1; }},
    {.forms = {"-r", "--resolution"},
     .number = [](int value) { myDisplay.width = value; },
     .second = [](int value) { myDisplay.height = value; }},
    {.forms = {"-w", "--width"}, .number = [](int value) { myDisplay.width = value; }},
    {.forms = {"-h", "--height"}, .number = [](int value) { myDisplay.height = value; }},
    {.forms = {"-tga", "--tga"}, .flag = [] { iImageType = TGA; }},
    {.forms = {"-bmp", "--bmp"}, .flag = [] { iImageType = BMP; }},
    {.forms = {"-ppm", "--ppm"}, .flag = [] { iImageType = PPM; }},
    {.forms = {"-tif", "--tiff"}, .flag = [] { iImageType = TIF; }},
    {.forms = {"-jpg", "--jpeg"}, .flag = [] { iImageType = JPEG; }},
    {.forms = {"-png", "--png"}, .flag = [] { iImageType = PNG; }},
};

constexpr std::span<const Option> options = table;

static const Option* findOption(const char* argument)
{
    for (const Option& option : options)
        if (strcmp(argument, option.forms[0]) == 0 || strcmp(argument, option.forms[1]) == 0)
            return &option;
    return nullptr;
}

void parseArgs(int argc, char* argv[])
{
    int i = 1;
    // A value is whatever stands next, even if it looks like an option.
    const auto value = [&] {
        if (i >= argc)
            endWithUsage();
        return argv[i++];
    };

    bool hasInput = false;
    while (i < argc) {
        const char* argument = argv[i++];
        const Option* option = findOption(argument);
        if (option == nullptr) {
            if (*argument == '-')
                endWithUsage();
            continue; // a bare word says nothing
        }
        if (option->flag != nullptr)
            option->flag();
        if (option->name != nullptr)
            option->name(value());
        if (option->number != nullptr)
            option->number(atoi(value()));
        if (option->second != nullptr)
            option->second(atoi(value()));
        hasInput = hasInput || option->isInput;
    }
    if (!hasInput)
        endWithUsage();
}
