#pragma once

#include <cstdint>

namespace tool {

/// Standard input gives its bytes as they are, and a console takes UTF-8.
void prepareStreams();

bool stderrIsTerminal();

/// The most memory that the process has had in use at once, in bytes; 0 where the system can't say.
std::uint64_t peakMemory();

}  // namespace tool
