#pragma once

#include <ostream>

namespace VARN3D {

/// Where the library prints all that it has to say: standard output, unless the host has set
/// another stream.
std::ostream& messageStream();

/// Sets it for the whole process, null for silence. Returns the one before.
std::ostream* exchangeMessageStream(std::ostream* stream);

}  // namespace VARN3D
