#include "tools/columns.h"

#include <algorithm>

#include "tools/parsing.h"

namespace tool {

namespace {

bool separates(char c, Separator separator) {
    switch (separator) {
        case Separator::SEMICOLON:
            return c == ';';
        case Separator::COMMA:
            return c == ',';
        case Separator::TAB:
            return c == '\t';
        case Separator::BLANKS:
            break;
    }
    return isBlank(c);
}

std::size_t skipBlanks(std::string_view line, std::size_t at, Separator separator) {
    const bool bAll = separator == Separator::BLANKS;
    while (at < line.size() && isBlank(line[at]) && (bAll || !separates(line[at], separator))) ++at;
    return at;
}

std::size_t findEnd(std::string_view line, std::size_t begin, Separator separator) {
    std::size_t at = begin;
    // A quote within quotes is doubled: then one quoted text follows upon the other.
    for (std::size_t closing = begin; at < line.size() && line[at] == '"'; at = closing + 1) {
        closing = line.find('"', at + 1);
        if (closing == std::string_view::npos) break;
    }
    while (at < line.size() && !separates(line[at], separator)) ++at;
    return at;
}

std::string_view withoutQuotes(std::string_view text) {
    const bool bQuoted = text.size() >= 2 && text.front() == '"' && text.back() == '"';
    return bQuoted ? trimmed(text.substr(1, text.size() - 2)) : text;
}

}  // namespace

const char* nameOf(Separator separator) {
    const char* const names[] = {"semicolons", "commas", "tabs", "blanks"};
    return names[static_cast<int>(separator)];
}

bool contains(std::string_view line, Separator separator) {
    return std::any_of(line.begin(), line.end(), [=](char c) { return separates(c, separator); });
}

void cut(std::string_view line, Separator separator, std::vector<std::string_view>& columns) {
    columns.clear();
    if (separator == Separator::BLANKS) line = trimmed(line);
    for (std::size_t begin = 0; begin <= line.size();) {
        begin = skipBlanks(line, begin, separator);
        const std::size_t end = findEnd(line, begin, separator);
        columns.push_back(withoutQuotes(trimmed(line.substr(begin, end - begin))));
        begin = end + 1;
    }
}

}  // namespace tool
