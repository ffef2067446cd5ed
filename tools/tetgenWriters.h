#pragma once

#include "tools/IndexedMesh.h"
#include "tools/OutputFile.h"

namespace tool {

/// TetGen's files; numbers count from 0. Comment lines of the .node file name the duplicate points.
void writeTetgenNodes(const IndexedMesh& mesh, OutputFile& file);
void writeTetgenElements(const IndexedMesh& mesh, OutputFile& file);

/// The facets that belong to one of the mesh's tetrahedra only, counter-clockwise as seen from
/// outside.
void writeTetgenFaces(const IndexedMesh& mesh, OutputFile& file);

/// For each tetrahedron its four neighbours, each opposite a corner, in the order of the corners;
/// -1 stands for none.
void writeTetgenNeighbours(const IndexedMesh& mesh, OutputFile& file);

}  // namespace tool
