#include "tools/LayoutFinder.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include "tools/InputError.h"

namespace tool {

namespace {

std::string listed(const AxisColumns& axes) {
    return std::to_string(axes[0] + 1) + ", " + std::to_string(axes[1] + 1) + ", " +
           std::to_string(axes[2] + 1);
}

std::string shown(const std::array<double, 3>& xyz) {
    std::string text;
    for (const double coordinate : xyz) {
        char digits[32];
        const auto result = std::to_chars(digits, digits + sizeof digits, coordinate);
        text += (text.empty() ? "(" : ", ") + std::string(digits, result.ptr);
    }
    return text + ")";
}

}  // namespace

LayoutFinder::LayoutFinder(std::optional<TextHeader> possibleHeader, std::string_view firstRow,
                           std::size_t number, std::optional<AxisColumns> wantedColumns)
    : header(possibleHeader), row(firstRow), rowNumber(number), wanted(wantedColumns) {}

bool LayoutFinder::fits() const {
    return std::any_of(std::begin(ALL_SEPARATORS), std::end(ALL_SEPARATORS), [&](Separator s) {
        const Reading reading = readingAt(s);
        return reading.problem.empty() || reading.bEmpty;
    });
}

TextLayout LayoutFinder::find(const std::string& file) const {
    for (const Separator separator : ALL_SEPARATORS) {
        const Reading reading = readingAt(separator);
        if (reading.problem.empty()) {
            const std::string ambiguity = ambiguityOf(reading);
            if (!ambiguity.empty()) throw InputError(file, rowNumber, ambiguity);
            return reading.layout;
        }
    }
    throw InputError(file, rowNumber, problemOfAll());
}

LayoutFinder::Reading LayoutFinder::readingAt(Separator separator) const {
    Reading reading = {};
    TextLayout& layout = reading.layout;
    std::vector<std::string_view> columns;
    cut(row, separator, columns);
    layout.separator = separator;
    layout.numColumns = columns.size();
    layout.settlingLine = rowNumber;
    layout.bLastEmpty = columns.back().empty();
    applyHeader(layout);
    layout.axes = wanted.value_or(layout.axes);
    reading.problem = layout.parse(columns, reading.xyz);
    reading.bEmpty = layout.hasEmptyCoordinate(columns);
    if (header && !header->bComment && !wanted && !namesAxes(separator)) {
        reading.problem = "line " + std::to_string(header->lineNumber) +
                          " names no columns x, y and z when it is cut at " + nameOf(separator);
        reading.bEmpty = false;
    }
    return reading;
}

void LayoutFinder::applyHeader(TextLayout& layout) const {
    if (!header) return;
    std::vector<std::string_view> names;
    cut(header->text, layout.separator, names);
    const std::optional<AxisColumns> axes = findAxes(header->text, layout.separator);
    const bool bFits = names.size() == layout.numColumns ||
                       (layout.bLastEmpty && names.size() + 1 == layout.numColumns);
    if ((header->bComment && !(axes && bFits)) || (wanted && !bFits)) return;
    layout.names.assign(names.begin(), names.end());
    layout.axes = axes.value_or(layout.axes);
    layout.numColumns = names.size();
    layout.settlingLine = header->lineNumber;
    layout.bLastEmpty = names.back().empty();
}

bool LayoutFinder::namesAxes(Separator separator) const {
    return findAxes(header->text, separator).has_value();
}

std::string LayoutFinder::ambiguityOf(const Reading& best) const {
    const std::string asFound =
        std::string("cut at ") + nameOf(best.layout.separator) + " the point is " + shown(best.xyz);
    for (const Separator separator : ALL_SEPARATORS) {
        const Reading other = readingAt(separator);
        const std::string asOther = std::string("; cut at ") + nameOf(separator);
        if (other.bEmpty) return asFound + asOther + " " + other.problem;
        if (other.problem.empty() && other.xyz != best.xyz)
            return asFound + asOther + " it is " + shown(other.xyz);
    }
    if (best.layout.names.empty() && !wanted && hasDecimalCommas())
        return asFound + "; decimal commas are not read (--columns 1,2,3 says there are none)";
    return proseAgainst(best.layout);
}

/// Whether the row is like "0,5, 1,5, 2,5", which is neither six numbers nor three for certain.
bool LayoutFinder::hasDecimalCommas() const {
    std::vector<std::string_view> words;
    cut(row, Separator::BLANKS, words);
    for (std::size_t i = 0; i + 1 < words.size(); ++i) {
        if (words[i].empty() || words[i].back() != ',') return false;
        words[i].remove_suffix(1);
    }
    return words.size() > 2 && std::any_of(words.begin(), words.begin() + 3, hasDecimalComma);
}

/// A comment that names x, y and z but doesn't fit the row is prose; unless it might be a header
/// nevertheless, and other columns be meant than the first three.
std::string LayoutFinder::proseAgainst(const TextLayout& layout) const {
    if (!header || !header->bComment || wanted || !layout.names.empty()) return {};
    for (const Separator separator : ALL_SEPARATORS) {
        const std::optional<AxisColumns> named = findAxes(header->text, separator);
        const bool bOnlyThree =
            layout.numColumns == 3 && named && std::is_sorted(named->begin(), named->end());
        if (named && *named != layout.axes && !bOnlyThree) {
            return "columns " + listed(layout.axes) + ", or " + listed(*named) + " as line " +
                   std::to_string(header->lineNumber) +
                   " seems to name them? --columns tells which";
        }
    }
    return {};
}

/// The separator that the row uses tells best what is wrong, if the header agrees with it.
std::string LayoutFinder::problemOfAll() const {
    std::optional<Reading> clearest;
    for (const Separator separator : ALL_SEPARATORS) {
        const Reading reading = readingAt(separator);
        if (reading.bEmpty) return reading.problem;
        const bool bNamed = !header || header->bComment || wanted || namesAxes(separator);
        if (!clearest && bNamed && contains(row, separator)) clearest = reading;
    }
    return clearest ? clearest->problem : readingAt(Separator::BLANKS).problem;
}

}  // namespace tool
