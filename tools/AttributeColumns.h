#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tools/PointSet.h"

namespace tool {

/// Collects the attributes of points from columns of text. A column that holds anything but numbers
/// and gaps in any line is no attribute.
class AttributeColumns {
  public:
    /// Announces a column; the names need not differ.
    void add(std::size_t column, const std::string& name);

    /// The columns of the next point; those that are missing are gaps.
    void take(const std::vector<std::string_view>& columns);

    /// Moves what has been collected there. To be called once.
    void moveTo(PointSet& set);

  private:
    struct Source {
        std::size_t column;
        bool bNumeric;
        bool bAnyNumber;
    };

    std::vector<Source> sources;
    std::vector<Attribute> attributes;
};

}  // namespace tool
