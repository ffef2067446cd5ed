#pragma once

#include "IndexedMesh.h"
#include "OutputFile.h"

namespace tool {

/// A legacy VTK unstructured grid, ASCII. The point data firstEqual holds the number of the first
/// point with the same coordinates. Numbers count from 0.
void writeVtk(const IndexedMesh& mesh, OutputFile& file);

/// A Medit mesh, ASCII; numbers count from 1. Comment lines name the duplicate points.
void writeMedit(const IndexedMesh& mesh, OutputFile& file);

/// TetGen's pair of files; numbers count from 0. Comment lines name the duplicate points.
void writeTetgenNodes(const IndexedMesh& mesh, OutputFile& file);
void writeTetgenElements(const IndexedMesh& mesh, OutputFile& file);

/// A line "point first" for each duplicate point and the first point equal to it, counted from 0.
void writeDuplicates(const IndexedMesh& mesh, OutputFile& file);

}  // namespace tool
