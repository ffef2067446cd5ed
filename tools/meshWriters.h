#pragma once

#include "tools/IndexedMesh.h"
#include "tools/OutputFile.h"

namespace tool {

/// A Medit mesh, ASCII; numbers count from 1. Comment lines name the duplicate points.
void writeMedit(const IndexedMesh& mesh, OutputFile& file);

/// A line "point first" for each duplicate point and the first point equal to it, counted from 0.
void writeDuplicates(const IndexedMesh& mesh, OutputFile& file);

}  // namespace tool
