#include "scene/colors.h"

#include <cstdlib>
#include <cstring>

constinit ColorEntry* myColorList = nullptr;

void addColorToList(ColorEntry** head, ColorEntry* entry)
{
    entry->next = *head;
    *head = entry;
}

const ColorEntry* findColor(const ColorEntry* head, const char* name)
{
    while (head != nullptr && strcmp(head->name, name) != 0)
        head = head->next;
    return head;
}

int freeColorList(ColorEntry** head)
{
    int count = 0;
    while (*head != nullptr) {
        ColorEntry* next = (*head)->next;
        free(*head);
        *head = next;
        ++count;
    }
    return count;
}
