// Times the parts in which a render spends its time, one by one: `./dev bench` builds it as varlo-bench.

#include "bounds/bound.h"
#include "bounds/intersec.h"
#include "bounds/packing.h"
#include "bounds/pqueue.h"
#include "bounds/slab.h"
#include "core/settings.h"
#include "primitives/kinds.h"
#include "scene/lexer.h"

#include <benchmark/benchmark.h>
#include <random>
#include <string>
#include <vector>

static std::mt19937 generator;
static Hit hit;

static double random(double size)
{
    return size * (static_cast<double>(generator()) / 2147483648.0 - 1.0);
}

static Vec randomPoint(double size)
{
    const double x = random(size), y = random(size);
    return {x, y, random(size)};
}

/// Registers a test that gets rays from all around, of which about half meet what stands at the origin.
template <class Test>
static void addRays(const char* name, Test test)
{
    benchmark::RegisterBenchmark(name, [test](benchmark::State& state) {
        std::vector<Ray> rays(1024);
        for (Ray& ray : rays) {
            ray.origin = 5 * unit(randomPoint(1));
            ray.direction = unit(randomPoint(1.2) - ray.origin);
        }
        size_t i = 0;
        for (auto _ : state)
            benchmark::DoNotOptimize(test(&rays[++i % rays.size()]));
    });
}

static void addPrimitives()
{
    static Vec corners[] = {{-1, -1, 0.1}, {1, -1, -0.1}, {0.3, 0, 0}, {1, 1, 0.1}, {-1, 1, 0.3}};
    static Vec patch[] = {{-1, -1, 0}, {0, 0, 1}, {1, -1, 0.2}, {0, 0.1, 1}, {0, 1, 0}, {0, 0, 1}};
    const struct {
        const char* name;
        const Object* object;
    } kinds[] = {
        {"sphere", makeSphere({0, 0, 0}, 1)},
        {"plane", makePlane({0.1, 0.2, 1}, 0.1)},
        {"ring", makeRing({0, 0, 0}, {0.1, 0.2, 1}, 0.3, 1)},
        {"triangle", makeTriangle(corners)},
        {"polygon of 5", makePolygon(corners, 5)},
        {"cone", makeCone({0, 0, -1}, 1, {0.1, 0.2, 1}, 0.4)},
        {"patch", makePatch(patch)},
    };
    for (const auto& kind : kinds)
        addRays(kind.name,
                [object = kind.object](const Ray* ray) { return ObjectIntersect(object, ray, &hit); });
    addRays("slab test", [node = kinds[0].object](const Ray* ray) {
        double key;
        return passesSlabs(node, NO_LIMIT, &ray->origin.x, &ray->direction.x, &key);
    });
    myObjectList = nullptr; // they stay out of the tree
    nPrims = 0;
}

static void addWalks()
{
    for (int i = 0; i < 1000; ++i)
        makeSphere(randomPoint(1), 0.05);
    buildBoundingSlabs();
    packTree();
    addRays("walk, 1000 spheres", [](const Ray* ray) { return intersect(ray, NO_LIMIT, &hit, nullptr); });
    addRays("walk to a light", [](const Ray* ray) { return isBlocked(ray, 4, nullptr); });
    addRays("walk by the heap", [](const Ray* ray) { return intersectByHeap(ray, NO_LIMIT, &hit, nullptr); });
}

static void heap(benchmark::State& state)
{
    std::vector<PQEntry> queue(static_cast<size_t>(iPQSize));
    for (auto _ : state) {
        int count = 0;
        double key = 0.3;
        const Object* node;
        while (count < 32) {
            key = key < 0.5 ? 1.9 * key : 1.9 * (1 - key); // no order in it
            priorityQueueInsert(key, nullptr, queue.data(), &count);
        }
        while (count > 0)
            priorityQueueDelete(&key, &node, queue.data(), &count);
        benchmark::DoNotOptimize(key);
    }
}

static void scanner(benchmark::State& state)
{
    std::string text;
    for (int i = 0; i < 10000; ++i)
        text += std::to_string(random(100)) + ' ';
    FILE* stream = fmemopen(text.data(), text.size(), "r");
    for (auto _ : state) {
        rewind(stream);
        for (int i = 0; i < 10000; ++i)
            Lire_Decimal(stream);
    }
    fclose(stream);
    state.SetItemsProcessed(state.iterations() * 10000);
}

int main(int argc, char** argv)
{
    setStartValues();
    addPrimitives();
    addWalks();
    benchmark::RegisterBenchmark("heap, 32 in and out", heap);
    benchmark::RegisterBenchmark("scanner, 10000 numbers", scanner);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
