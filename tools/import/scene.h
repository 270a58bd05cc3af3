#pragma once

#include "lights.h"
#include "paint.h"

/// Writes the whole scene, or its surfaces and faces only, as the options say.
void putScene(const Options& options, const Model& model);

/// Writes what the file holds, for a reader.
void putList(const Options& options, const Model& model);
