#pragma once

#include <atomic>
#include <optional>

#include "TextLayout.h"

namespace tool {

enum class PointFormat { automatic, text, ply, obj, off, node };

/// What a reader is to do besides taking the points.
struct ReadingOptions {
    PointFormat format = PointFormat::automatic;
    /// The columns of a text to take, whatever its header says.
    std::optional<AxisColumns> columns;
    /// Whether the other numbers of the points are wanted as well.
    bool bAttributes = false;
    /// Gets the share of the content that has been read, if not null.
    std::atomic<double>* pShare = nullptr;
};

}  // namespace tool
