#pragma once

#include <string>
#include <string_view>

#include "tools/PointSet.h"
#include "tools/ReadingOptions.h"

namespace tool {

/// Reads the points of a file; "-" is standard input. The automatic format goes by what can't be
/// anything else at the file's beginning, then by the name's ending; what neither tells is text.
/// Throws InputError when the file can't be read, is malformed or holds no point.
PointSet readPointFile(const std::string& fileName, const ReadingOptions& options);

/// The same for content that is in memory already; fileName names it in messages.
PointSet parsePoints(std::string_view content, const std::string& fileName,
                     const ReadingOptions& options);

}  // namespace tool
