#pragma once

#include <cstdint>
#include <vector>

#include "tools/AttributeColumns.h"
#include "tools/PointReader.h"

namespace tool {

/// Reads TetGen's .node files: a line of counts (points, 3, attributes, whether there are markers),
/// then a line for each point that begins with its number. "#" begins a comment.
class NodeReader : public PointReader {
  public:
    using PointReader::PointReader;

    PointSet read() override;

  private:
    void takeCounts();
    void takeNode(std::uint64_t index, PointSet& set);

    std::uint64_t numNodes = 0;
    std::uint64_t numAttributes = 0;
    std::uint64_t numMarkers = 0;
    /// The number of the first point: 0 or 1.
    std::uint64_t base = 0;
    AttributeColumns attributes;
    std::vector<std::string_view> words;
};

}  // namespace tool
