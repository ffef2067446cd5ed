#pragma once

#include "tools/AttributeColumns.h"
#include "tools/PointReader.h"

namespace tool {

/// Reads the vertices of a Wavefront OBJ file: the lines that begin with "v". A fourth number is a
/// weight, a fourth to sixth one are a colour; other lines are skipped.
class ObjReader : public PointReader {
  public:
    using PointReader::PointReader;

    PointSet read() override;

  private:
    AttributeColumns attributes;
};

}  // namespace tool
