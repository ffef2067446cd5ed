#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tool {

/// Input, options or files that the program can't work with. The text is the one line that the user
/// gets to see, without the program's name.
class InputError : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
    InputError(const std::string& file, const std::string& problem)
        : std::runtime_error(file + ": " + problem) {}
    InputError(const std::string& file, std::size_t line, const std::string& problem)
        : std::runtime_error(file + ":" + std::to_string(line) + ": " + problem) {}
};

/// Text from a file as it can stand in a one-line message: cut when it is long, and with what can't
/// be printed written as \xNN.
std::string printable(std::string_view text);
/// The same in quotes.
std::string quoted(std::string_view text);

}  // namespace tool
