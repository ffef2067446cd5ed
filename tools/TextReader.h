#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/AttributeColumns.h"
#include "tools/LayoutFinder.h"
#include "tools/PointReader.h"

namespace tool {

/// Reads points from text: one point a line, in columns that LayoutFinder makes out.
///
/// "#" at the beginning of a line or after a blank begins a comment, and so does "//" at the
/// beginning of a line; empty lines are skipped. The first line, or a comment before it, may name
/// the columns. A first line with a single whole number tells how many points follow (.pts); in
/// files of molecules (.xyz) a line of text comes after it, and each point after an element, or
/// where "Properties=" in that line says.
class TextReader : public PointReader {
  public:
    using PointReader::PointReader;

    PointSet read() override;

  private:
    bool nextRow(std::string_view& row);
    void noteHeaderIn(std::string_view comment);
    /// Takes everything up to the first row.
    std::string_view takeHead();
    std::string_view takeRowAfterCount();
    std::string_view takeFirstAtom();
    bool isNumberedLikeNodes(std::string_view row) const;
    void refuseAnythingElse(std::string_view row) const;
    void addRow(std::string_view row, PointSet& set);
    void announceAttributes();

    std::optional<TextHeader> header;
    bool bHeadTaken = false;
    std::optional<std::uint64_t> promised;
    std::uint64_t promisingLine = 0;
    /// Whether each line begins with an element.
    bool bAtoms = false;
    TextLayout layout;
    AttributeColumns attributes;
    std::vector<std::string_view> columns;
};

}  // namespace tool
