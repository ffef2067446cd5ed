#pragma once

#include <dt3Library/Varn_3D.h>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "parsing.h"

namespace tool {

/// Reads points from text: one point a line, its three numbers separated by blanks or by commas.
///
/// "#" begins a comment, empty lines are skipped, columns after the third are ignored. A first line
/// that names columns x, y and z (in either case, perhaps in quotes) says which columns to take.
/// Commas and blanks that separate the numbers of one line in turn are refused: they are how
/// decimal commas look.
class TextReader {
  public:
    TextReader(std::string_view content, const std::string& fileName);

    /// All points, in the order of the file. Throws InputError naming the file and the line.
    std::vector<VARN3D::Point3> read();

  private:
    bool takeHeader(std::string_view line);
    VARN3D::Point3 parsePoint(std::string_view line) const;
    [[noreturn]] void fail(const std::string& problem) const;

    LineCursor lines;
    std::string fileName;
    /// The columns of x, y and z.
    std::array<std::size_t, 3> columns = {0, 1, 2};
    std::size_t numColumns = 3;
};

}  // namespace tool
