#pragma once

#include "core/vector.h"

#include <cstddef>
#include <cstdlib>
#include <type_traits>
#include <utility>

// What everybody needs: rays, hits, the head of a record, and the lists that hold the scene.

/// The tolerance of all geometry and shading tests; each test says whether the limit itself passes.
constexpr double EPSILON = 0.001;
/// Stands for no limit: the reach of a primary ray, the distance of a miss, the bounds of a plane, and the
/// start value of every search for bounds.
constexpr double NO_LIMIT = 10000000000.0;
constexpr double PI = 3.141592653589793;

/// Values of Object::type. A light is on myLightList, a bounding node only in the tree.
enum ObjectType { LIGHT = 1, BOUNDING_NODE, SPHERE, PLANE, RING, TRIANGLE, POLYGON, CONE, PATCH };

struct Object;
struct SurfaceAttrib;

struct Ray {
    Vec origin;
    Vec direction; // unit length, so that a ray parameter is a distance
};

/// What an intersection test hands back. Everything that one ray needs is here and not in the records,
/// which many threads read at once.
struct Hit {
    double distance;
    int entering; // 1 or 0 by the rule of the primitive; decides the order of the refraction indices
    const Object* object;
    Vec hitNormal; // patches only: the interpolated normal, not yet unit
};

/// The head of every primitive, bounding node and light. What else a kind needs stands behind it, in a record
/// of its own that begins with a member `head`; a record is only as long as its kind needs.
struct alignas(8) Object {
    Object* next;                      // in the list that holds this record; null at the end
    const SurfaceAttrib* surface;      // of a primitive; shared, and never changed
    double boundsMin[3], boundsMax[3]; // along the three Slab directions; not of a light
    int type;                          // an ObjectType
};

/// The record whose head is `object`; the type must be the right one.
template <class Record>
static inline const Record& recordOf(const Object* object)
{
    static_assert(std::is_standard_layout_v<Record> && offsetof(Record, head) == 0);
    return *reinterpret_cast<const Record*>(object);
}

// The scene. The parsers write it, the bounding build rearranges myObjectList into a tree, and from then on
// the render threads only read.
inline constinit Object* myObjectList = nullptr; // the primitives, latest first; then the root of the tree
inline constinit Object* myLightList = nullptr;  // the lights, latest first
inline constinit int nPrims = 0;                 // primitives, and after the build bounding nodes too

/// The unit vectors of x, y, z: the directions of all bounds.
inline constexpr Vec Slab[3] = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};

/// Puts `node` at the front of a list whose records have a member `next`.
template <class Node>
void addToList(Node** head, Node* node)
{
    node->next = *head;
    *head = node;
}

/// Frees the records along their `next` links, leaves the head null and returns how many there were. What a
/// record points to besides stays until the process ends, as all of newRecord does.
template <class Node>
int freeList(Node** head)
{
    int count = 0;
    for (; *head != nullptr; ++count)
        free(std::exchange(*head, (*head)->next));
    return count;
}
