#pragma once

#include "tools/IndexedMesh.h"
#include "tools/OutputFile.h"

namespace tool {

/// What several text formats write alike. Numbers are separated by single blanks.
void writeCoordinates(const VARN3D::Point3& point, OutputFile& file);

/// Numbers of points, which count from base in the file.
template <class Corners>
void writeCorners(const Corners& corners, std::uint32_t base, OutputFile& file) {
    for (std::size_t i = 0; i < corners.size(); ++i) {
        file.write(i == 0 ? "" : " ");
        file.writeNumber(corners[i] + base);
    }
}

/// A comment line for each duplicate point.
void writeDuplicateComments(const IndexedMesh& mesh, std::uint32_t base, OutputFile& file);

}  // namespace tool
