#include "bounds/pqueue.h"

#include "core/fatal.h"
#include "core/settings.h"

#include <cstdio>
#include <utility>

void priorityQueueInsert(double key, const Object* node, PQEntry* queue, int* count)
{
    int i = ++*count;
    if (i >= iPQSize)
        fatal("\n\n VARLO is out of space...\n"
              " Please use the -pqs or --pqsize switch to increase the priority queue size\n");
    queue[i] = {.key = key, .node = node};
    for (; i > 1 && queue[i / 2].key > queue[i].key; i /= 2)
        std::swap(queue[i / 2], queue[i]);
}

void priorityQueueDelete(double* key, const Object** node, PQEntry* queue, int* count)
{
    if (*count == 0)
        fatal(" Priority queue is empty, dying...\n"
              " Please use the -pqs or --pqsize switch to increase the priority queue size\n",
              stdout);
    *key = queue[1].key;
    *node = queue[1].node;
    queue[1] = queue[*count];
    --*count;
    for (int i = 1; 2 * i <= *count;) {
        int child = 2 * i;
        if (child != *count && !(queue[child + 1].key > queue[child].key))
            ++child;
        if (!(queue[i].key > queue[child].key))
            break;
        std::swap(queue[i], queue[child]);
        i = child;
    }
}
