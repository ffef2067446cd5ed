#pragma once

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>
#include <string_view>

namespace tool {

enum class ByteOrder { LITTLE, BIG };

/// A file that appears under its name only when it is complete: it is written under a temporary
/// name in the same directory, and commit() renames it. Without a commit the destructor removes it.
/// A target that is no regular file (a device, a pipe) is written directly.
///
/// Nor does a half-written one stay behind when a signal ends the program (see temporaryFiles.h).
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

    void write(std::string_view bytes) {
        buffer.append(bytes);
        if (buffer.size() >= BUFFER_SIZE) flush();
    }
    /// Writes the shortest decimal text that reads back as the same number.
    template <class Number>
    void writeNumber(Number number) {
        char text[32];
        const auto result = std::to_chars(text, text + sizeof text, number);
        write(std::string_view(text, static_cast<std::size_t>(result.ptr - text)));
    }

    /// Writes a number's bytes, whatever their order in this machine's memory.
    template <class Number>
    void writeBinary(Number number, ByteOrder order) {
        char bytes[sizeof number];
        std::memcpy(bytes, &number, sizeof number);
        if ((order == ByteOrder::BIG) != isBigEndian()) std::reverse(bytes, bytes + sizeof number);
        write(std::string_view(bytes, sizeof number));
    }

    /// Ends the writing; what a full disk has swallowed shows here at the latest.
    void close();
    /// Gives a closed file its name.
    void commit();

  private:
    static constexpr std::size_t BUFFER_SIZE = std::size_t{1} << 18;

    static bool isBigEndian() {
        const std::uint16_t one = 1;
        unsigned char firstByte = 0;
        std::memcpy(&firstByte, &one, 1);
        return firstByte == 0;
    }
    void createTemporary();
    void flush();
    [[noreturn]] void fail() const;

    std::string displayName;
    /// The target itself, behind all symbolic links.
    std::string target;
    std::string temporaryName;
    std::FILE* pFile = nullptr;
    std::string buffer;
    bool bTemporary = false;
};

}  // namespace tool
