#pragma once

#include <cstdint>

#include "tests/support/PointSets.h"

namespace support {

/// A point set and the digest of the mesh of one batch of it: the same value on every compiler,
/// optimisation level and processor, in whatever host.
struct DigestInput {
    const char* name;
    Points points;
    std::uint64_t digest;
};

/// Makes the points in the standard floating-point environment, whatever the host's is. To be
/// compiled without options that change floating-point results.
std::vector<DigestInput> digestInputs();

}  // namespace support
