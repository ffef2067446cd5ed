#pragma once

#include <iostream>
#include <sstream>
#include <string>

namespace support {

/// What an operation writes on standard output. Exceptions pass through.
template <class Operation>
std::string outputOf(Operation operation) {
    struct Redirection {
        std::ostringstream out;
        std::streambuf* previous = std::cout.rdbuf(out.rdbuf());
        ~Redirection() { std::cout.rdbuf(previous); }
    } redirection;
    operation();
    return redirection.out.str();
}

}  // namespace support
