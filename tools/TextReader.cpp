#include "tools/TextReader.h"

#include <algorithm>

#include "tools/InputError.h"
#include "tools/readableFormats.h"

namespace tool {

namespace {

std::string_view withoutComment(std::string_view line) {
    if (trimmed(line).substr(0, 2) == "//") return {};
    for (std::size_t at = line.find('#'); at != std::string_view::npos; at = line.find('#', at + 1))
        if (at == 0 || isBlank(line[at - 1])) return line.substr(0, at);
    return line;
}

bool namesAxes(std::string_view line) {
    return std::any_of(std::begin(ALL_SEPARATORS), std::end(ALL_SEPARATORS),
                       [&](Separator separator) { return findAxes(line, separator).has_value(); });
}

/// Numbers that are refused for their size are numbers nevertheless.
bool isNumber(std::string_view text) {
    double ignored = 0;
    const char* const problem = parseNumber(text, ignored);
    return !problem || problem != std::string_view(" is not a number");
}

/// The column in which the positions of atoms begin, counted from 0, where a text such as
/// "Properties=species:S:1:pos:R:3" tells.
std::optional<std::size_t> positionColumn(std::string_view text) {
    const std::string_view key = "Properties=";
    text.remove_prefix(std::min(text.find(key), text.size()));
    text.remove_prefix(std::min(key.size(), text.size()));
    std::string_view rest = takeWord(text);
    const auto takeField = [&rest] {
        const std::string_view field = rest.substr(0, rest.find(':'));
        rest.remove_prefix(std::min(field.size() + 1, rest.size()));
        return field;
    };
    const std::uint64_t mostColumns = 1000;
    std::uint64_t column = 0;
    for (std::uint64_t count = 0; !rest.empty(); column += count) {
        const bool bPosition = takeField() == "pos";
        takeField();
        const bool bCount = parseCount(takeField(), count) && count <= mostColumns;
        if (!bCount || bPosition)
            return bPosition && count == 3 ? std::optional<std::size_t>(column) : std::nullopt;
    }
    return std::nullopt;
}

}  // namespace

PointSet TextReader::read() {
    PointSet set;
    std::string_view row = takeHead();
    if (row.empty()) return set;
    refuseAnythingElse(row);
    layout = LayoutFinder(header, row, lines.lineNumber(), options.columns).find(fileName);
    announceAttributes();
    do {
        if (promised && *promised == set.points.size()) {
            fail("more than the " + std::to_string(*promised) + " points that line " +
                 std::to_string(promisingLine) + " promises");
        }
        addRow(row, set);
    } while (nextRow(row));
    if (promised && *promised != set.points.size()) {
        fail("the file ends after " + std::to_string(set.points.size()) + " of the " +
             std::to_string(*promised) + " points that line " + std::to_string(promisingLine) +
             " promises");
    }
    attributes.moveTo(set);
    return set;
}

bool TextReader::nextRow(std::string_view& row) {
    std::string_view line;
    while (lines.next(line)) {
        tellShare();
        row = withoutComment(line);
        if (!trimmed(row).empty()) return true;
        if (!bHeadTaken) noteHeaderIn(trimmed(line));
    }
    return false;
}

void TextReader::noteHeaderIn(std::string_view comment) {
    comment.remove_prefix(std::min(comment.find_first_not_of("#/"), comment.size()));
    if (namesAxes(comment)) header = TextHeader{comment, lines.lineNumber(), true};
}

std::string_view TextReader::takeHead() {
    std::string_view row;
    std::uint64_t count = 0;
    if (!nextRow(row)) return {};
    if (parseCount(trimmed(row), count)) {
        promised = count;
        promisingLine = lines.lineNumber();
        row = takeRowAfterCount();
    }
    const bool bChosen = !bHeadTaken && options.columns &&
                         !LayoutFinder({}, row, lines.lineNumber(), options.columns).fits();
    if (namesAxes(row) || bChosen) {
        header = TextHeader{row, lines.lineNumber(), false};
        row = nextRow(row) ? row : std::string_view();
    }
    bHeadTaken = true;
    return row;
}

/// The line behind the count is a row, a header, or, in files of molecules, any text.
std::string_view TextReader::takeRowAfterCount() {
    const LineCursor behindCount = lines;
    std::string_view row;
    if (nextRow(row) &&
        (namesAxes(row) || LayoutFinder(header, row, lines.lineNumber(), options.columns).fits()))
        return row;
    lines = behindCount;
    return takeFirstAtom();
}

std::string_view TextReader::takeFirstAtom() {
    std::string_view text;
    std::string_view row;
    lines.next(text);
    bHeadTaken = true;
    if (!nextRow(row)) return {};
    cut(row, Separator::BLANKS, columns);
    if (options.columns || columns.size() < 4) return row;
    const std::optional<std::size_t> first = positionColumn(text);
    bAtoms = !isNumber(columns[0]);
    if (!bAtoms && !first)
        fail("columns 1, 2, 3, or 2, 3, 4 behind an element's number? --columns tells which");
    const std::size_t x = first.value_or(1);
    options.columns = AxisColumns{x, x + 1, x + 2};
    return row;
}

/// Whether the row and the one after it may be the beginning of a .node file: a line of counts, and
/// points that are numbered from 0 or 1.
bool TextReader::isNumberedLikeNodes(std::string_view row) const {
    std::uint64_t counts[4] = {};
    for (std::uint64_t& count : counts)
        if (!parseCount(takeWord(row), count)) return false;
    LineCursor behind = lines;
    std::string_view next;
    while (trimmed(next).empty() && behind.next(next)) next = withoutComment(next);
    std::vector<std::string_view> words;
    cut(next, Separator::BLANKS, words);
    return trimmed(row).empty() && (counts[1] == 2 || counts[1] == 3) && counts[3] <= 1 &&
           words.size() == 1 + counts[1] + counts[2] + counts[3] &&
           (words[0] == "0" || words[0] == "1");
}

void TextReader::refuseAnythingElse(std::string_view row) const {
    if (options.format == PointFormat::AUTOMATIC && !options.columns && isNumberedLikeNodes(row)) {
        fail(
            "this looks like TetGen's .node, whose points are in columns 2, 3, 4 from the next "
            "line on: --format node takes those, --format xyz columns 1, 2, 3 from here on");
    }
    bool bNumberFirst = false;
    for (const Separator separator : ALL_SEPARATORS) {
        std::vector<std::string_view> words;
        cut(row, separator, words);
        bNumberFirst = bNumberFirst || words[0].empty() || isNumber(words[0]);
    }
    if (!bNumberFirst && !header && !options.columns) {
        fail(quoted(trimmed(row)) +
             " is neither a point nor names columns x, y and z once each (--columns tells which to "
             "take); " +
             READABLE_FORMATS);
    }
}

void TextReader::announceAttributes() {
    for (std::size_t i = bAtoms ? 1 : 0; options.bAttributes && i < layout.numColumns; ++i) {
        if (std::find(layout.axes.begin(), layout.axes.end(), i) == layout.axes.end()) {
            const bool bNamed = i < layout.names.size() && !layout.names[i].empty();
            attributes.add(i, bNamed ? layout.names[i] : "column" + std::to_string(i + 1));
        }
    }
}

void TextReader::addRow(std::string_view row, PointSet& set) {
    std::array<double, 3> xyz = {};
    cut(row, layout.separator, columns);
    const std::string problem = layout.parse(columns, xyz);
    if (!problem.empty()) fail(problem);
    set.points.emplace_back(xyz[0], xyz[1], xyz[2]);
    attributes.take(columns);
}

}  // namespace tool
