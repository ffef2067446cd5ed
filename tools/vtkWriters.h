#pragma once

#include "tools/IndexedMesh.h"
#include "tools/OutputFile.h"

namespace tool {

/// VTK unstructured grids. The point data firstEqual holds the number of the first point with the
/// same coordinates, counted from 0; the points' attributes follow under their names, in which "_"
/// replaces what VTK doesn't bear.
///
/// The legacy format (.vtk), binary or ASCII.
void writeVtkBinary(const IndexedMesh& mesh, OutputFile& file);
void writeVtkAscii(const IndexedMesh& mesh, OutputFile& file);

/// The XML format (.vtu), with its arrays in binary behind the text.
void writeVtu(const IndexedMesh& mesh, OutputFile& file);

}  // namespace tool
