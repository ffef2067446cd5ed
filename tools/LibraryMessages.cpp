#include "LibraryMessages.h"

#include <cstdio>
#include <iostream>

namespace tool {

LibraryMessages::LibraryMessages() : pPrevious(std::cout.rdbuf(this)) {}

LibraryMessages::~LibraryMessages() {
    passOn();
    std::cout.rdbuf(pPrevious);
}

LibraryMessages::int_type LibraryMessages::overflow(int_type c) {
    if (traits_type::eq_int_type(c, traits_type::eof())) {
        return traits_type::not_eof(c);
    }
    line += traits_type::to_char_type(c);
    if (line.back() == '\n') {
        passOn();
    }
    return c;
}

void LibraryMessages::passOn() {
    bErrorSeen = bErrorSeen || line.find("ERROR") != std::string::npos;
    if (bErrorSeen || line.find(", WARNING: ") != std::string::npos) {
        std::fwrite(line.data(), 1, line.size(), stderr);
    }
    line.clear();
}

}  // namespace tool
