#include "dt3Library/store/radixSort.h"

#include <algorithm>
#include <array>
#include <utility>

namespace VARN3D {

void sortByBits(std::vector<std::uint64_t>& numbers, unsigned lowestBit, unsigned numBits) {
    constexpr unsigned DIGIT_BITS = 9;
    constexpr unsigned MAX_DIGITS = 4;
    constexpr std::size_t NUM_BUCKETS = std::size_t{1} << DIGIT_BITS;
    constexpr std::size_t FEW = 256;
    const unsigned numDigits = (numBits + DIGIT_BITS - 1) / DIGIT_BITS;
    const auto upper = [=](std::uint64_t number) {
        return number >> lowestBit & ((std::uint64_t{1} << numBits) - 1);
    };
    if (numbers.size() < FEW) {
        std::stable_sort(numbers.begin(), numbers.end(),
                         [&](std::uint64_t a, std::uint64_t b) { return upper(a) < upper(b); });
        return;
    }
    std::array<std::array<std::size_t, NUM_BUCKETS>, MAX_DIGITS> starts{};
    for (const std::uint64_t number : numbers)
        for (unsigned digit = 0; digit < numDigits; ++digit)
            ++starts[digit][upper(number) >> digit * DIGIT_BITS & (NUM_BUCKETS - 1)];
    std::vector<std::uint64_t> sorted(numbers.size());
    for (unsigned digit = 0; digit < numDigits; ++digit) {
        std::size_t start = 0;
        for (std::size_t& entry : starts[digit]) start += std::exchange(entry, start);
        for (const std::uint64_t number : numbers)
            sorted[starts[digit][upper(number) >> digit * DIGIT_BITS & (NUM_BUCKETS - 1)]++] =
                number;
        numbers.swap(sorted);
    }
}

}  // namespace VARN3D
