#include "tools/LibraryMessages.h"

#include <cstdio>
#include <iostream>

#include "dt3Library/Varn_3D.h"

namespace tool {

LibraryMessages::LibraryMessages() {
    VARN3D::Varn_3D::setMessageStream(&stream);
}

LibraryMessages::~LibraryMessages() {
    passOn();
    VARN3D::Varn_3D::setMessageStream(&std::cout);
}

LibraryMessages::int_type LibraryMessages::overflow(int_type c) {
    if (traits_type::eq_int_type(c, traits_type::eof())) return traits_type::not_eof(c);
    line += traits_type::to_char_type(c);
    if (line.back() == '\n') passOn();
    return c;
}

void LibraryMessages::passOn() {
    bErrorSeen = bErrorSeen || line.find("ERROR") != std::string::npos;
    if (bErrorSeen || line.find(", WARNING: ") != std::string::npos)
        std::fwrite(line.data(), 1, line.size(), stderr);
    line.clear();
}

}  // namespace tool
