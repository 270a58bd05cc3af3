#pragma once

#include <cstdio>

// The nine kinds of object. Each reads its block from the opening brace on, makes the object and gives it a
// copy of the current surface.

void yy_sphere(FILE* stream);
void yy_plane(FILE* stream);
void yy_cone(FILE* stream);
void yy_cylindre(FILE* stream);
void yy_ring(FILE* stream);
void yy_disc(FILE* stream);
void yy_triangle(FILE* stream);
void yy_polygon(FILE* stream);
void yy_patch(FILE* stream);
