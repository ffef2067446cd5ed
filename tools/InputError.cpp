#include "tools/InputError.h"

namespace tool {

std::string printable(std::string_view text) {
    const std::size_t longest = 40;
    const char* const hex = "0123456789abcdef";
    std::string out;
    for (const char c : text.substr(0, longest)) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte >= 0x7f) {
            out += "\\x";
            out += hex[byte >> 4];
            out += hex[byte & 15];
        } else {
            out += c;
        }
    }
    return out + (text.size() > longest ? "..." : "");
}

std::string quoted(std::string_view text) {
    return '"' + printable(text) + '"';
}

}  // namespace tool
