#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tools/PointSet.h"
#include "tools/ReadingOptions.h"
#include "tools/parsing.h"

namespace tool {

/// What the readers of all formats have in common: the lines of the file, and how to complain about
/// one of them.
class PointReader {
  public:
    /// fileName names the file in messages.
    PointReader(std::string_view content, const std::string& fileName,
                const ReadingOptions& readingOptions);
    virtual ~PointReader() = default;

    /// All points, in the order of the file. Throws InputError, which names the file and the place.
    virtual PointSet read() = 0;

  protected:
    /// Takes the next line that holds anything besides a comment ("#" to the line's end), without
    /// that comment; false when there is none.
    bool nextDataLine(std::string_view& line);
    /// The next of so many lines of vertices; that there is none is an error.
    std::string_view takeVertexLine(std::uint64_t index, std::uint64_t count);
    double takeNumber(std::string_view& line) const;
    VARN3D::Point3 takePoint(std::string_view& line) const;
    void tellShare() const;
    [[noreturn]] void fail(const std::string& problem) const;

    LineCursor lines;
    std::string fileName;
    ReadingOptions options;
};

}  // namespace tool
