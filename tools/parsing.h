#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tool {

/// Hands out the lines of a text one by one. A line ends in "\n", "\r\n" or "\r"; a byte order mark
/// before the first line is skipped.
class LineCursor {
  public:
    explicit LineCursor(std::string_view content);

    /// Takes the next line, without its end; false when there is none.
    bool next(std::string_view& line);
    /// The number of the line taken last, counted from 1.
    std::size_t lineNumber() const { return numLines; }
    /// What comes after the line taken last.
    std::string_view rest() const { return content.substr(position); }
    /// How much of the text has been taken, from 0 to 1.
    double share() const;

  private:
    std::string_view content;
    std::size_t position = 0;
    std::size_t nextNewline = 0;
    std::size_t numLines = 0;
};

bool isBlank(char c);
/// The text without blanks at its ends.
std::string_view trimmed(std::string_view text);
/// Cuts the first blank-separated word off the text; the word is empty when there is none.
std::string_view takeWord(std::string_view& text);

/// Whether a file's name has this ending, in either case, and something before it.
bool endsIn(std::string_view name, std::string_view ending);

/// Reads a finite double, whatever the locale. Returns null when the whole text is one, otherwise
/// what is wrong, to be put behind the text: " is not a number", …
const char* parseNumber(std::string_view text, double& value);

/// The same for any double, infinities and NaN included.
bool parseAnyNumber(std::string_view text, double& value);

/// Reads a number of things. False when the text is anything else.
bool parseCount(std::string_view text, std::uint64_t& count);

}  // namespace tool
