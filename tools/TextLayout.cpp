#include "tools/TextLayout.h"

#include <algorithm>
#include <cctype>

#include "tools/InputError.h"
#include "tools/parsing.h"

namespace tool {

namespace {

/// 0, 1, 2 for the column names x, y, z, and for those that VTK's programs give them; -1 for any
/// other.
int axisNamed(std::string_view name) {
    if (name.size() == 8 && (name.substr(0, 7) == "Points:" || name.substr(0, 7) == "Points_"))
        return name[7] >= '0' && name[7] <= '2' ? name[7] - '0' : -1;
    if (!name.empty() && (name.back() == ')' || name.back() == ']'))
        name = trimmed(name.substr(0, name.find(name.back() == ')' ? '(' : '[')));
    const std::string_view axes = "xyzXYZ";
    const std::size_t found = name.size() == 1 ? axes.find(name[0]) : std::string_view::npos;
    return found == std::string_view::npos ? -1 : static_cast<int>(found % 3);
}

}  // namespace

bool hasDecimalComma(std::string_view text) {
    const std::size_t comma = text.find(',');
    double ignored = 0;
    return comma != std::string_view::npos && !parseNumber(text.substr(0, comma), ignored) &&
           !parseNumber(text.substr(comma + 1), ignored);
}

std::optional<AxisColumns> findAxes(std::string_view line, Separator separator) {
    AxisColumns axes = {};
    std::array<int, 3> timesNamed = {};
    std::vector<std::string_view> names;
    cut(line, separator, names);
    for (std::size_t column = 0; column < names.size(); ++column) {
        const int axis = axisNamed(names[column]);
        if (axis >= 0) {
            axes[static_cast<std::size_t>(axis)] = column;
            ++timesNamed[static_cast<std::size_t>(axis)];
        }
    }
    const bool bOnceEach = timesNamed == std::array<int, 3>{1, 1, 1};
    return bOnceEach ? std::optional<AxisColumns>(axes) : std::nullopt;
}

std::string TextLayout::parse(const Columns& columns, std::array<double, 3>& xyz) const {
    std::string problem = problemOfLength(columns);
    for (std::size_t axis = 0; axis < 3 && problem.empty(); ++axis) {
        const std::string_view text = columns[axes[axis]];
        const char* const fault = parseNumber(text, xyz[axis]);
        if (!fault) continue;
        if (text.empty()) {
            problem = "column " + std::to_string(axes[axis] + 1) + " is empty";
        } else if (hasDecimalComma(text)) {
            problem = quoted(text) + fault + ": the decimal sign must be a point";
        } else if (separator != Separator::BLANKS && contains(text, Separator::BLANKS)) {
            problem = std::string(nameOf(separator)) + " and blanks both separate numbers";
            problem += separator == Separator::COMMA ? " (decimal commas are not read)" : "";
        } else {
            problem = quoted(text) + fault;
        }
    }
    return problem;
}

/// A missing value must not pass for another column's, nor a line that breaks off for a whole one.
std::string TextLayout::problemOfLength(const Columns& columns) const {
    const std::size_t n = columns.size();
    const bool bMayLackLast = bLastEmpty && separator != Separator::BLANKS;
    const std::size_t fewest = std::max(*std::max_element(axes.begin(), axes.end()) + 1,
                                        numColumns - (bMayLackLast ? 1 : 0));
    if (n < fewest) {
        return "only " + std::to_string(n) + " of " + std::to_string(std::max(fewest, numColumns)) +
               " columns";
    }
    if (n > numColumns && !(n == numColumns + 1 && columns.back().empty())) {
        return std::to_string(n) + " columns, where line " + std::to_string(settlingLine) +
               " has " + std::to_string(numColumns);
    }
    return {};
}

bool TextLayout::hasEmptyCoordinate(const Columns& columns) const {
    return problemOfLength(columns).empty() &&
           std::any_of(axes.begin(), axes.end(),
                       [&](std::size_t axis) { return columns[axis].empty(); });
}

}  // namespace tool
