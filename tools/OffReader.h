#pragma once

#include <cstdint>

#include "tools/PointReader.h"

namespace tool {

/// Reads the vertices of an ASCII OFF file of points in space: a keyword that ends in "OFF", the
/// counts of vertices, faces and edges, then a line for each vertex. Normals, colours and faces are
/// not looked at.
class OffReader : public PointReader {
  public:
    using PointReader::PointReader;

    /// Whether a file that begins with this line is an OFF file, readable or not.
    static bool isFirstLine(std::string_view line);

    PointSet read() override;

  private:
    std::uint64_t takeNumVertices();
};

}  // namespace tool
