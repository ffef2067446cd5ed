#include "tools/parsing.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>

namespace tool {

LineCursor::LineCursor(std::string_view text) : content(text) {
    const std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (content.substr(0, byteOrderMark.size()) == byteOrderMark)
        content.remove_prefix(byteOrderMark.size());
    nextNewline = std::min(content.find('\n'), content.size());
}

bool LineCursor::next(std::string_view& line) {
    if (position >= content.size()) return false;
    if (nextNewline < position)
        nextNewline = std::min(content.find('\n', position), content.size());
    line = content.substr(position, nextNewline - position);
    const std::size_t carriageReturn = line.find('\r');
    if (carriageReturn == std::string_view::npos) {
        position = nextNewline + 1;
    } else {
        line = line.substr(0, carriageReturn);
        position += carriageReturn + 1;
        position += position == nextNewline ? 1 : 0;
    }
    position = std::min(position, content.size());
    ++numLines;
    return true;
}

double LineCursor::share() const {
    return static_cast<double>(position) /
           static_cast<double>(std::max<std::size_t>(1, content.size()));
}

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\v' || c == '\f';
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

std::string_view takeWord(std::string_view& text) {
    text = trimmed(text);
    const auto end = std::find_if(text.begin(), text.end(), isBlank);
    const std::string_view word = text.substr(0, static_cast<std::size_t>(end - text.begin()));
    text.remove_prefix(word.size());
    return word;
}

bool endsIn(std::string_view name, std::string_view ending) {
    return name.size() > ending.size() &&
           std::equal(ending.rbegin(), ending.rend(), name.rbegin(), [](char e, char n) {
               return e == (n >= 'A' && n <= 'Z' ? n - 'A' + 'a' : n);
           });
}

namespace {

/// The standard's conversion takes a minus but no plus.
std::from_chars_result convert(std::string_view text, double& value) {
    const bool bPlus = text.size() > 1 && text[0] == '+' && text[1] != '-';
    return std::from_chars(text.data() + (bPlus ? 1 : 0), text.data() + text.size(), value);
}

}  // namespace

const char* parseNumber(std::string_view text, double& value) {
    const auto result = convert(text, value);
    if (result.ec == std::errc::invalid_argument || result.ptr != text.data() + text.size())
        return " is not a number";
    if (result.ec == std::errc::result_out_of_range) return " is out of the range of a double";
    return std::isfinite(value) ? nullptr : " is not finite";
}

bool parseAnyNumber(std::string_view text, double& value) {
    const auto result = convert(text, value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

bool parseCount(std::string_view text, std::uint64_t& count) {
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, count);
    return result.ec == std::errc() && result.ptr == end;
}

}  // namespace tool
