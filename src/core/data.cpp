#include "core/data.h"

#include <cstdlib>

constinit Object* myObjectList = nullptr;
constinit Object* myLightList = nullptr;
constinit int nPrims = 0;
constinit Vec Slab[3] = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};

void addToList(Object** head, Object* node)
{
    node->next = *head;
    *head = node;
}

int freeList(Object** head)
{
    int count = 0;
    while (*head != nullptr) {
        Object* next = (*head)->next;
        free(*head);
        *head = next;
        ++count;
    }
    return count;
}
