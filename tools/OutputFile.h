#pragma once

#include <charconv>
#include <cstdio>
#include <string>
#include <string_view>

namespace tool {

/// A file that appears under its name only when it is complete: it is written under a temporary
/// name in the same directory, and commit() renames it. Without a commit the destructor removes it.
/// A target that is no regular file (a device, a pipe) is written directly.
///
/// Every failure throws InputError with the target's name.
class OutputFile {
  public:
    explicit OutputFile(const std::string& targetName);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// The name under which the file is written.
    const std::string& writtenName() const { return temporaryName; }

    /// Whether it is written under another name than the target.
    bool isTemporary() const { return bTemporary; }

    void write(std::string_view text);
    /// Writes the shortest decimal text that reads back as the same number.
    template <class Number>
    void writeNumber(Number number) {
        char text[32];
        const auto result = std::to_chars(text, text + sizeof text, number);
        write(std::string_view(text, static_cast<std::size_t>(result.ptr - text)));
    }

    /// Ends the writing; what a full disk has swallowed shows here at the latest.
    void close();
    /// Gives a closed file its name.
    void commit();

  private:
    [[noreturn]] void fail() const;

    std::string displayName;
    /// The target itself, behind all symbolic links.
    std::string target;
    std::string temporaryName;
    std::FILE* pFile = nullptr;
    bool bTemporary = false;
};

}  // namespace tool
