#pragma once

#include <cstdint>

namespace VARN3D {

/// A number that depends on an ordered pair of addresses, its upper bits on all of theirs: records
/// lie side by side, so places taken from the addresses as they are would be crowded.
inline std::uint64_t hashPointers(const void* a, const void* b) {
    return (reinterpret_cast<std::uintptr_t>(a) * 0x9E3779B97F4A7C15U ^
            reinterpret_cast<std::uintptr_t>(b)) *
           0xC2B2AE3D27D4EB4FU;
}

}  // namespace VARN3D
