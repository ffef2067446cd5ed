#pragma once

#include <cstdint>

namespace VARN3D {

/// The place of the lowest bit set; there must be one.
inline unsigned lowestBit(unsigned bits) {
#if defined(__GNUC__)
    return static_cast<unsigned>(__builtin_ctz(bits));
#else
    unsigned place = 0;
    while ((bits >> place & 1U) == 0) ++place;
    return place;
#endif
}

/// The place of the highest bit set; there must be one.
inline unsigned highestBit(std::uint64_t bits) {
#if defined(__GNUC__)
    return 63U - static_cast<unsigned>(__builtin_clzll(bits));
#else
    unsigned place = 63;
    while ((bits >> place & 1U) == 0) --place;
    return place;
#endif
}

/// How many bits are set.
inline unsigned bitCount(unsigned bits) {
#if defined(__GNUC__)
    return static_cast<unsigned>(__builtin_popcount(bits));
#else
    unsigned count = 0;
    for (; bits != 0; bits &= bits - 1) ++count;
    return count;
#endif
}

/// The same of 64.
inline unsigned bitCount(std::uint64_t bits) {
    return bitCount(static_cast<unsigned>(bits)) + bitCount(static_cast<unsigned>(bits >> 32));
}

}  // namespace VARN3D
