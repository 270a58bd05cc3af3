#pragma once

#include <assimp/scene.h>

/// Puts the vertices of meshes with bones where the bones of the unanimated file hold them. A mesh whose
/// bones are not among the nodes stays as it is.
void applySkins(const aiScene& scene);
