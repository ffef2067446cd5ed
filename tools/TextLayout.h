#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/columns.h"

namespace tool {

/// The columns of x, y and z, counted from 0.
using AxisColumns = std::array<std::size_t, 3>;

/// Where a line names x, y and z, each once; null if it doesn't. The names may be in either case
/// and be followed by a unit in brackets.
std::optional<AxisColumns> findAxes(std::string_view line, Separator separator);

/// Whether the text is a number with a comma for its decimal sign, or two numbers with one between.
bool hasDecimalComma(std::string_view text);

/// How the lines of a text are cut into columns, and which of these are x, y and z.
struct TextLayout {
    using Columns = std::vector<std::string_view>;

    /// Reads the point of a line that is cut already. Returns what is wrong with it, or nothing.
    std::string parse(const Columns& columns, std::array<double, 3>& xyz) const;

    bool hasEmptyCoordinate(const Columns& columns) const;

    Separator separator = Separator::BLANKS;
    AxisColumns axes = {0, 1, 2};
    /// The names of all columns; empty without a header.
    std::vector<std::string> names;
    std::size_t numColumns = 0;
    /// The line that has settled the number of columns.
    std::size_t settlingLine = 0;
    /// Whether the last column was empty there: other lines may leave it out.
    bool bLastEmpty = false;

  private:
    std::string problemOfLength(const Columns& columns) const;
};

}  // namespace tool
