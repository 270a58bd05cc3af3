#include "harness.h"

#include "bounds/bound.h"
#include "bounds/intersec.h"
#include "bounds/packed.h"
#include "bounds/packing.h"
#include "core/data.h"
#include "core/fatal.h"
#include "core/progress.h"
#include "core/settings.h"
#include "core/surface.h"
#include "core/trace.h"
#include "engine/light.h"
#include "engine/ray.h"
#include "import3ds/3ds.h"
#include "import3ds/scene3ds.h"
#include "primitives/kinds.h"
#include "scene/colors.h"
#include "scene/parser.h"

#include <algorithm>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>

namespace
{
/// Memory that a run took, and what gives it back.
struct Block {
    void* address;
    void (*release)(void*);
};
} // namespace

static constexpr size_t MAX_BLOCK = 1 << 18; // bytes; nothing that fits into an input needs more
static constexpr size_t MAX_STREAMS = 6;     // open at a time

// One run at a time.
static constinit bool running = false;
static constinit int blocksLeft = -1; // that the C library hands out; below 0 there is no limit
static constinit bool asksHeap = false;
static jmp_buf beforeRun;
static constinit std::span<const File> present{};
static constinit std::vector<Block> blocks{};
static constinit std::vector<FILE*> streams{};

// ---- in place of the C library ----

extern "C" {
[[noreturn]] void __real_exit(int status);
[[noreturn]] void __real__Z5fatalPKcP8_IO_FILE(const char* message, FILE* stream); // fatal
FILE* __real_fopen(const char* name, const char* mode);
int __real_fclose(FILE* stream);
void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* old, size_t size);
void* __real_aligned_alloc(size_t alignment, size_t size);
void __real_free(void* address);
void* __real__Znwm(size_t size);                 // operator new
void __real__ZdlPv(void* address);               // operator delete
void __real__ZdlPvm(void* address, size_t size); // and with the size
}

static void* note(void* address, void (*release)(void*))
{
    if (running && address != nullptr) {
        running = false; // the list itself is not to be listed
        blocks.push_back({address, release});
        running = true;
    }
    return address;
}

static void forget(const void* address)
{
    if (!running)
        return;
    const auto block = std::find_if(blocks.rbegin(), blocks.rend(),
                                    [address](const Block& other) { return other.address == address; });
    if (block == blocks.rend())
        return;
    *block = blocks.back();
    blocks.pop_back();
}

/// Whether a run has to go without so much memory, or without more of it.
static bool isTooMuch(size_t size)
{
    if (!running)
        return false;
    if (blocksLeft > 0)
        --blocksLeft;
    return size > MAX_BLOCK || blocksLeft == 0;
}

extern "C" {
[[noreturn]] void __wrap_exit(int status)
{
    if (running)
        longjmp(beforeRun, 1);
    __real_exit(status);
}

/// The end of a run too, but where the heap is only asked to agree: the walk answered, so it may not
/// overflow.
[[noreturn]] void __wrap__Z5fatalPKcP8_IO_FILE(const char* message, FILE* stream)
{
    if (running && !asksHeap)
        longjmp(beforeRun, 1);
    if (running)
        abort();
    __real__Z5fatalPKcP8_IO_FILE(message, stream);
}

FILE* __wrap_fopen(const char* name, const char* mode)
{
    if (!running || *mode != 'r') // the fuzzer writes the input of a finding
        return __real_fopen(name, mode);
    const auto file = std::ranges::find(present, std::string_view(name), &File::name);
    if (file == present.end() || streams.size() == MAX_STREAMS)
        return nullptr;
    FILE* stream = fmemopen(const_cast<char*>(file->text.data()), file->text.size(), "r");
    if (stream != nullptr)
        streams.push_back(stream); // has room for all of them
    return stream;
}

int __wrap_fclose(FILE* stream)
{
    std::erase(streams, stream);
    return __real_fclose(stream);
}

void* __wrap_malloc(size_t size)
{
    return isTooMuch(size) ? nullptr : note(__real_malloc(size), __real_free);
}

void* __wrap_calloc(size_t count, size_t size)
{
    return isTooMuch(count * size) ? nullptr : note(__real_calloc(count, size), __real_free);
}

void* __wrap_aligned_alloc(size_t alignment, size_t size)
{
    return isTooMuch(size) ? nullptr : note(__real_aligned_alloc(alignment, size), __real_free);
}

void* __wrap_realloc(void* old, size_t size)
{
    if (isTooMuch(size))
        return nullptr;
    forget(old);
    return note(__real_realloc(old, size), __real_free);
}

void __wrap_free(void* address)
{
    forget(address);
    __real_free(address);
}

void* __wrap__Znwm(size_t size)
{
    if (isTooMuch(size))
        fatal(OUT_OF_MEMORY); // as the program's new handler does
    return note(__real__Znwm(size), __real__ZdlPv);
}

void __wrap__ZdlPv(void* address)
{
    forget(address);
    __real__ZdlPv(address);
}

void __wrap__ZdlPvm(void* address, size_t size)
{
    forget(address);
    __real__ZdlPvm(address, size);
}

/// Start values of the sanitizers' options. What a run leaves is swept up, so that no leak is one; short call
/// stacks and a short memory of what was freed make the runs much quicker.
const char* __asan_default_options();
const char* __asan_default_options()
{
    return "detect_leaks=0:allocator_may_return_null=1:malloc_context_size=6:quarantine_size_mb=8";
}

const char* __ubsan_default_options();
const char* __ubsan_default_options()
{
    return "print_stacktrace=1";
}

/// Called once, ahead of the first run.
int LLVMFuzzerInitialize(int* argc, char*** argv);
int LLVMFuzzerInitialize(int*, char***)
{
    streams.reserve(MAX_STREAMS);
    // The fuzzer has taken its own hold of standard error; the program says the same things every time.
    stdout = stderr = __real_fopen("/dev/null", "w");
    return 0;
}
}

// ---- one run ----

void runWith(std::span<const File> files, void (*body)())
{
    myColorList = nullptr; // its entries went with the last run
    resetScene();
    present = files;
    // The length of an input, which is free of meaning, tells if memory ends, and when.
    size_t length = 0;
    for (const File& file : files)
        length += file.text.size();
    blocksLeft = length % 8 == 0 ? static_cast<int>(length / 8 % 64) + 1 : -1;
    // In the same way it tells if the queue is as small as may be, or around what a run has.
    static constexpr int SIZES[] = {100, 101, 128, 1024, 1025};
    iPQSize = SIZES[length % std::size(SIZES)];
    running = true;
    if (setjmp(beforeRun) == 0)
        body();
    releasePackedTree();
    free(takeWorkspace());
    // A run that ended amid a model has left an index and records behind. A whole model of nothing ends the
    // one, and one that is not found the others.
    static constexpr File NOTHING[] = {{"nothing.3ds", {"MM\6\0\0\0", 6}},
                                       {"nowhere.set", "{ input_name \"nowhere.3ds\" }"}};
    present = NOTHING;
    blocksLeft = -1;
    Model3DS none{};
    if (setjmp(beforeRun) == 0) {
        import3DS(&none, "nothing.3ds", 0);
        parse3ds("nowhere.set");
    }
    running = false;
    for (FILE* stream : streams)
        __real_fclose(stream);
    streams.clear();
    for (const Block& block : blocks)
        block.release(block.address);
    blocks.clear();
}

/// Ends the process, and so makes a finding, if the quick walk and the heap do not agree.
static void compareWalks(const Ray& ray)
{
    Hit quick{}, slow{};
    if (myObjectList->type != BOUNDING_NODE || std::isnan(dot(ray.origin, ray.direction)))
        return;
    const int found = intersect(&ray, NO_LIMIT, &quick, nullptr);
    asksHeap = true;
    const int left = std::exchange(blocksLeft, -1); // a large queue takes memory
    if (found != intersectByHeap(&ray, NO_LIMIT, &slow, nullptr) ||
        (found != 0 && quick.object != slow.object))
        abort();
    asksHeap = false;
    blocksLeft = left;
}

void shootRays()
{
    static constexpr int MAX_PRIMITIVES = 200, RAYS = 4; // a side
    if (nPrims == 0 || nPrims > MAX_PRIMITIVES)
        return;
    // How often a ray is repeated changes the time only.
    for (Object* object = myObjectList; object != nullptr; object = object->next)
        const_cast<int&>(object->surface->reflectionSamples) =
            std::min(object->surface->reflectionSamples, 1);
    for (Object* light = myLightList; light != nullptr; light = light->next)
        const_cast<int&>(recordOf<Light>(light).samples) = std::min(recordOf<Light>(light).samples, 1);
    myViewPoint.samples = 1;
    myDisplay.width = myDisplay.height = RAYS;

    printList(myObjectList);
    initMTBounds(numThreads);
    showProgressInit();
    buildBoundingSlabs();
    packTree();
    screenInit();
    Ray ray;
    startRay(&ray);
    for (int y = 0; y < RAYS; ++y) {
        for (int x = 0; x < RAYS; ++x) {
            initRay(x + 0.5, y + 0.5, &ray);
            compareWalks(ray);
        }
        showProgress(y);
    }
    initRay(RAYS / 2, RAYS / 2, &ray);
    Color color;
    int level = 4; // so that a reflection is followed twice only
    shoot(&ray, &color, &level);
}
