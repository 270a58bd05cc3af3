#include "bounds/bound.h"

#include "primitives/sphere.h"
#include "support.h"

using BoundTest = SceneTest;

static std::vector<Object*> spheres;

static void addSpheres(const std::vector<Vec>& centers)
{
    resetScene();
    spheres.clear();
    for (const Vec center : centers)
        spheres.push_back(makeSphere(center, 0.5));
}

/// A list as text: a letter for each sphere, the first made being a, and parentheses around a node.
static std::string textOf(const Object* list)
{
    std::string text;
    for (; list != nullptr; list = list->next)
        text += list->type == BOUNDING_NODE
                    ? "(" + textOf(childrenOf(list).first) + ")"
                    : std::string(1, "abcdefg"[std::ranges::find(spheres, list) - spheres.begin()]);
    return text;
}

TEST_F(BoundTest, TreeHasTheSettledShape)
{
    const std::pair<std::vector<Vec>, std::string> cases[] = {
        {{}, ""},
        {{{}}, "a"},                           // one stands bare
        {{{}, {9, 0, 0}, {}, {}}, "(dcba)"},   // in the order of the list
        {{{}, {}, {}, {}, {}}, "((cde)(ba))"}, // none is below the mean, or, as that is rounded, all are
        {std::vector<Vec>(5, {0.9, 0, 0}), "((ba)(cde))"},
        {{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}}, "((cde)(ab))"}, // the mean itself is high
        {{{0, 0, 0}, {0, 4, 0}, {4, 0, 0}, {4, 4, 0}, {4, 2, 0}}, "((cde)(ab))"}, // equal spreads take x
        {{{50, 0, 0}, {50, 4, 9}, {54, 0, 0}, {54, 4, 9}, {54, 2, 9}}, "((bde)(ac))"}, // widest along z
        {{{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {99, 0, 0}}, "(e(abcd))"}}; // one far out stays bare
    for (const auto& [centers, tree] : cases) {
        addSpheres(centers);
        buildBoundingSlabs();
        EXPECT_EQ(textOf(myObjectList), tree);
    }
}

TEST_F(BoundTest, CountBeyondTheListEndsTheProcess)
{
    addSpheres({{1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}, {5, 0, 0}});
    nPrims += 2;
    const Outcome outcome = inChild([] { buildBoundingSlabs(); });
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "NULL top in FindAxis, count = 1\n");
}
