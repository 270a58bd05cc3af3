#include "core/data.h"

#include <atomic>
#include <cstdlib>
#include <unistd.h>

constinit Object* myObjectList = nullptr;
constinit Object* myLightList = nullptr;
constinit int nPrims = 0;
constinit ViewPoint myViewPoint{};
constinit Display myDisplay{};
constinit Haze myHaze{};
constinit Color myBackGroundColor{};
constinit Vec Slab[3]{};

constinit int iAntialias = AA_NONE;
constinit int adapt_dist = 0;
constinit int jitter = 0;
constinit int iImageType = BMP;
constinit int jpeg_quality = 0;
constinit int bunching = 4;
constinit int iPQSize = 128;
constinit int numThreads = 2;
constinit Band iBounds[MAX_THREADS]{};
constinit int use3ds = 0;
constinit char inputFileName[INPUT_NAME_SIZE] = "";
constinit int iCameraIndex = 0;

static constinit std::atomic_flag ending; // set by the first thread that meets a fatal condition

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

int printList(const Object* head)
{
    int count = 0;
    for (; head != nullptr; head = head->next, ++count)
        head->ObjectPrint(head);
    return count;
}

void fatal(const char* message, FILE* stream)
{
    while (ending.test_and_set())
        pause();
    fputs(message, stream);
    exit(EXIT_FAILURE);
}
