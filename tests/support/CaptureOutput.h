#pragma once

#include <sstream>
#include <string>

#include "dt3Library/base/messages.h"

namespace support {

/// What the library prints in an operation. Exceptions pass through.
template <class Operation>
std::string outputOf(Operation operation) {
    struct Redirection {
        std::ostringstream out;
        std::ostream* const previous = VARN3D::exchangeMessageStream(&out);
        ~Redirection() { VARN3D::exchangeMessageStream(previous); }
    } redirection;
    operation();
    return redirection.out.str();
}

}  // namespace support
