#include "TextReader.h"

#include <algorithm>

#include "InputError.h"

namespace tool {

namespace {

/// Cuts a line into its columns, and keeps watch over what separates them.
class ColumnCutter {
  public:
    explicit ColumnCutter(std::string_view line) : rest(trimmed(line)), bMore(!rest.empty()) {}

    bool next(std::string_view& column) {
        if (!bMore) {
            return false;
        }
        std::size_t length = 0;
        while (length < rest.size() && rest[length] != ',' && !isBlank(rest[length])) {
            ++length;
        }
        column = rest.substr(0, length);
        rest = trimmed(rest.substr(length));
        bMore = !rest.empty();
        if (bMore) {
            const bool bComma = rest.front() == ',';
            (bComma ? bCommas : bBlanks) = true;
            rest = bComma ? trimmed(rest.substr(1)) : rest;
        }
        return true;
    }

    bool separatorsAreMixed() const { return bCommas && bBlanks; }

  private:
    std::string_view rest;
    bool bMore;
    bool bCommas = false;
    bool bBlanks = false;
};

/// 0, 1, 2 for the column names x, y, z; -1 for any other.
int axisNamed(std::string_view name) {
    if (name.size() == 3 && name.front() == '"' && name.back() == '"') {
        name = name.substr(1, 1);
    }
    const std::string_view axes = "xyzXYZ";
    const std::size_t found = name.size() == 1 ? axes.find(name[0]) : std::string_view::npos;
    return found == std::string_view::npos ? -1 : static_cast<int>(found % 3);
}

}  // namespace

TextReader::TextReader(std::string_view content, const std::string& name)
    : lines(content), fileName(name) {}

std::vector<VARN3D::Point3> TextReader::read() {
    std::vector<VARN3D::Point3> points;
    std::string_view line;
    bool bFirst = true;
    while (lines.next(line)) {
        line = trimmed(line.substr(0, line.find('#')));
        if (line.empty()) {
            continue;
        }
        if (!bFirst || !takeHeader(line)) {
            points.push_back(parsePoint(line));
        }
        bFirst = false;
    }
    return points;
}

bool TextReader::takeHeader(std::string_view line) {
    std::array<std::size_t, 3> found = {};
    std::array<int, 3> timesNamed = {};
    std::string_view name;
    ColumnCutter cutter(line);
    for (std::size_t column = 0; cutter.next(name); ++column) {
        const int axis = axisNamed(name);
        if (axis >= 0) {
            found[static_cast<std::size_t>(axis)] = column;
            ++timesNamed[static_cast<std::size_t>(axis)];
        }
    }
    if (timesNamed != std::array<int, 3>{1, 1, 1}) {
        return false;
    }
    columns = found;
    numColumns = *std::max_element(columns.begin(), columns.end()) + 1;
    return true;
}

VARN3D::Point3 TextReader::parsePoint(std::string_view line) const {
    double xyz[3] = {};
    ColumnCutter cutter(line);
    std::string_view text;
    std::size_t column = 0;
    for (; column < numColumns && cutter.next(text); ++column) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            if (columns[axis] != column) {
                continue;
            }
            if (const char* problem = parseNumber(text, xyz[axis])) {
                fail(quoted(text) + problem);
            }
        }
    }
    if (cutter.separatorsAreMixed()) {
        fail("commas and blanks both separate numbers");
    }
    if (column < numColumns) {
        fail("only " + std::to_string(column) + " of " + std::to_string(numColumns) + " columns");
    }
    return {xyz[0], xyz[1], xyz[2]};
}

void TextReader::fail(const std::string& problem) const {
    throw InputError(fileName, lines.lineNumber(), problem);
}

}  // namespace tool
