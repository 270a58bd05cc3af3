#include "core/data.h"

constinit Object* myObjectList = nullptr;
constinit Object* myLightList = nullptr;
constinit int nPrims = 0;
constinit Vec Slab[3] = {{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}};
