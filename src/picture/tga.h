#pragma once

#include "picture/writer.h"

extern const Writer writerTGA;
