#pragma once

#include <atomic>
#include <optional>

#include "tools/TextLayout.h"

namespace tool {

enum class PointFormat { AUTOMATIC, TEXT, PLY, OBJ, OFF, NODE };

/// What a reader is to do besides taking the points.
struct ReadingOptions {
    PointFormat format = PointFormat::AUTOMATIC;
    /// The columns of a text to take, whatever its header says.
    std::optional<AxisColumns> columns;
    /// Whether the other numbers of the points are wanted as well.
    bool bAttributes = false;
    /// Gets the share of the content that has been read, if not null.
    std::atomic<double>* pShare = nullptr;
};

}  // namespace tool
