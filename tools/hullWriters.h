#pragma once

#include "tools/IndexedMesh.h"
#include "tools/OutputFile.h"

namespace tool {

/// The convex hull as a surface, its facets counter-clockwise as seen from outside. Only its
/// corners are written, in the order of the input; a PLY file names their numbers there, from 0.
void writeHullPlyBinary(const IndexedMesh& mesh, OutputFile& file);
void writeHullPlyAscii(const IndexedMesh& mesh, OutputFile& file);
void writeHullObj(const IndexedMesh& mesh, OutputFile& file);

}  // namespace tool
