#include "scene/colors.h"

#include <cstring>

const ColorEntry* findColor(const ColorEntry* head, const char* name)
{
    while (head != nullptr && strcmp(head->name, name) != 0)
        head = head->next;
    return head;
}
