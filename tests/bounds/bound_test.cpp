#include "bounds/bound.h"

#include "bounds/random_scene.h"
#include "support.h"

#include <set>

namespace
{

using BoundTest = SceneTest;

std::vector<Object*> addSpheres(const std::vector<Vec>& centers)
{
    std::vector<Object*> spheres;
    for (const Vec center : centers)
        spheres.push_back(makeSphere(center, 0.5));
    return spheres;
}

/// A list as text: a letter for each sphere, the first made being a, and parentheses around a node.
std::string textOf(const Object* list, const std::vector<Object*>& spheres)
{
    std::string text;
    for (; list != nullptr; list = list->next)
        if (list->type == BOUNDING_NODE)
            text += "(" + textOf(list->children->first, spheres) + ")";
        else
            text +=
                static_cast<char>('a' + (std::find(spheres.begin(), spheres.end(), list) - spheres.begin()));
    return text;
}

TEST_F(BoundTest, TreeHasTheSettledShape)
{
    const struct {
        const char* name;
        std::vector<Vec> centers;
        std::string tree;
    } cases[] = {
        {"none", {}, ""},
        {"one stands bare", {{}}, "a"},
        {"two in the order of the list", {{}, {1, 0, 0}}, "(ba)"},
        {"four in one node", {{}, {9, 0, 0}, {}, {}}, "(dcba)"},
        {"five of the same centre", {{}, {}, {}, {}, {}}, "((cde)(ba))"},
        {"the mean itself is high", {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}}, "((cde)(ab))"},
        {"equal spreads take x", {{0, 0, 0}, {0, 4, 0}, {4, 0, 0}, {4, 4, 0}, {4, 2, 0}}, "((cde)(ab))"},
        {"widest along z", {{50, 0, 0}, {50, 4, 9}, {54, 0, 0}, {54, 4, 9}, {54, 2, 9}}, "((bde)(ac))"},
        {"one far out stays bare", {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {99, 0, 0}}, "(e(abcd))"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        resetScene();
        const auto spheres = addSpheres(c.centers);
        buildBoundingSlabs();
        EXPECT_EQ(textOf(myObjectList, spheres), c.tree);
    }
}

TEST_F(BoundTest, SplitKeepsWhatStandsBehind)
{
    const auto spheres =
        addSpheres({{9, 0, 0}, {8, 0, 0}, {0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, {4, 0, 0}});
    EXPECT_EQ(sortAndSplit(&myObjectList, 5), 1);
    EXPECT_EQ(textOf(myObjectList, spheres), "(efg)(cd)ba");
    const Outcome outcome = inChild([] { findAxis(myObjectList, 6); }); // four records are left
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.err, "NULL top in FindAxis, count = 1\n");
}

/// Looks over a subtree, takes its primitives out of `left` and returns its number of nodes.
int checkTree(const Object* node, std::set<const Object*>* left)
{
    if (node->type != BOUNDING_NODE) {
        EXPECT_EQ(left->erase(node), 1U);
        return 0;
    }
    int nodes = 1, count = 0;
    for (const Object* member = node->children->first; member != nullptr; member = member->next, ++count) {
        for (int axis = 0; axis < 3; ++axis) {
            EXPECT_LE(node->boundsMin[axis], member->boundsMin[axis]);
            EXPECT_GE(node->boundsMax[axis], member->boundsMax[axis]);
        }
        nodes += checkTree(member, left);
    }
    EXPECT_EQ(node->children->count, count);
    EXPECT_TRUE(2 <= count && count <= bunching);
    return nodes;
}

TEST_F(BoundTest, TreeHoldsEveryObjectOnce)
{
    for (const SceneKind& kind : SCENE_KINDS) {
        for (const int count : {2, 5, 17, 1000}) {
            SCOPED_TRACE(kind.name);
            resetScene();
            Random random;
            const std::vector<const Object*> objects = addObjects(kind, count, random);
            std::set<const Object*> left(objects.begin(), objects.end());
            buildBoundingSlabs();
            EXPECT_EQ(myObjectList->next, nullptr);
            EXPECT_EQ(static_cast<int>(objects.size()) + checkTree(myObjectList, &left), nPrims);
            EXPECT_TRUE(left.empty());
        }
    }
}

} // namespace
