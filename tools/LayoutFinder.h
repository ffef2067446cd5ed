#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "tools/TextLayout.h"

namespace tool {

/// A line that may name the columns of a text.
struct TextHeader {
    std::string_view text;
    std::size_t lineNumber;
    /// A comment may as well be prose: it counts as a header only if it fits the first row.
    bool bComment;
};

/// Finds the layout of a text, once and for all its lines, from its header and its first row.
///
/// Each separator is tried. It fits when it cuts header and row into equally many columns and the
/// row has numbers where they are wanted. The first one that fits is taken; but where two fit and
/// make different points of the row, nothing tells which of them is meant.
class LayoutFinder {
  public:
    /// wanted: the columns to take, if the user has named them.
    LayoutFinder(std::optional<TextHeader> header, std::string_view row, std::size_t rowNumber,
                 std::optional<AxisColumns> wanted);

    /// Whether the row is a row of numbers: some separator fits, or would if nothing were empty.
    bool fits() const;

    /// Throws InputError, naming the file and the row's line, when no separator fits or when the
    /// choice is open.
    TextLayout find(const std::string& file) const;

  private:
    struct Reading {
        TextLayout layout;
        std::array<double, 3> xyz;
        std::string problem;
        bool bEmpty;
    };

    Reading readingAt(Separator separator) const;
    /// The number of columns, the names and the axes, as far as the header tells.
    void applyHeader(TextLayout& layout) const;
    bool namesAxes(Separator separator) const;
    /// What speaks against taking this reading, or nothing.
    std::string ambiguityOf(const Reading& best) const;
    bool hasDecimalCommas() const;
    std::string proseAgainst(const TextLayout& layout) const;
    std::string problemOfAll() const;

    std::optional<TextHeader> header;
    std::string_view row;
    std::size_t rowNumber;
    std::optional<AxisColumns> wanted;
};

}  // namespace tool
