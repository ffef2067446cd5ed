#pragma once

#include <cstdint>
#include <vector>

namespace VARN3D {

/// Sorts numbers by `numBits` bits, at most 36, from `lowestBit` on; numbers that are equal there
/// stay in order. O(n).
void sortByBits(std::vector<std::uint64_t>& numbers, unsigned lowestBit, unsigned numBits);

}  // namespace VARN3D
