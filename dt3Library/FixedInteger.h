#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace VARN3D {

/// A signed integer of N 64-bit limbs in two's complement, least significant first. Sums have as
/// many limbs as their operands and products the limbs of both, so that whoever leaves the topmost
/// bits of the inputs free never overflows; everything is on the stack.
template <std::size_t N>
struct FixedInteger {
    std::array<std::uint64_t, N> limbs{};

    bool isNegative() const { return limbs[N - 1] >> 63 != 0; }
    int sign() const {
        if (isNegative()) return -1;
        for (const std::uint64_t limb : limbs)
            if (limb != 0) return 1;
        return 0;
    }

    friend FixedInteger operator+(const FixedInteger& a, const FixedInteger& b) {
        FixedInteger sum;
        std::uint64_t carry = 0;
        for (std::size_t i = 0; i < N; ++i) {
            const std::uint64_t partial = a.limbs[i] + carry;
            sum.limbs[i] = partial + b.limbs[i];
            carry = (partial < carry ? 1U : 0U) + (sum.limbs[i] < partial ? 1U : 0U);
        }
        return sum;
    }

    friend FixedInteger operator-(const FixedInteger& a, const FixedInteger& b) {
        FixedInteger difference;
        std::uint64_t borrow = 0;
        for (std::size_t i = 0; i < N; ++i) {
            const std::uint64_t partial = a.limbs[i] - b.limbs[i];
            difference.limbs[i] = partial - borrow;
            borrow = (a.limbs[i] < b.limbs[i] ? 1U : 0U) + (partial < borrow ? 1U : 0U);
        }
        return difference;
    }
};

/// The two halves of a 64-bit product, added to an addend that leaves room for them.
inline std::uint64_t multiplyAdd(std::uint64_t a, std::uint64_t b, std::uint64_t addend1,
                                 std::uint64_t addend2, std::uint64_t& high) {
#if defined(__SIZEOF_INT128__)
    __extension__ using Wide = unsigned __int128;
    const Wide result = static_cast<Wide>(a) * b + addend1 + addend2;
    high = static_cast<std::uint64_t>(result >> 64);
    return static_cast<std::uint64_t>(result);
#else
    constexpr std::uint64_t LOW_HALF = 0xFFFFFFFFU;
    const std::uint64_t low = (a & LOW_HALF) * (b & LOW_HALF);
    const std::uint64_t middle1 = (a >> 32) * (b & LOW_HALF) + (low >> 32);
    const std::uint64_t middle2 = (a & LOW_HALF) * (b >> 32) + (middle1 & LOW_HALF);
    high = (a >> 32) * (b >> 32) + (middle1 >> 32) + (middle2 >> 32);
    std::uint64_t result = middle2 << 32 | (low & LOW_HALF);
    for (const std::uint64_t addend : {addend1, addend2}) {
        result += addend;
        high += result < addend ? 1U : 0U;
    }
    return result;
#endif
}

/// Schoolbook multiplication; a factor that is negative counts 2^64N too much as an unsigned
/// number, so the other factor is taken off the upper limbs.
template <std::size_t N, std::size_t M>
FixedInteger<N + M> operator*(const FixedInteger<N>& a, const FixedInteger<M>& b) {
    FixedInteger<N + M> product;
    for (std::size_t i = 0; i < N; ++i) {
        std::uint64_t carry = 0;
        for (std::size_t j = 0; j < M; ++j)
            product.limbs[i + j] =
                multiplyAdd(a.limbs[i], b.limbs[j], product.limbs[i + j], carry, carry);
        product.limbs[i + M] = carry;
    }
    const auto subtractAbove = [&product](const auto& factor, std::size_t offset) {
        std::uint64_t borrow = 0;
        for (std::size_t i = 0; i < factor.limbs.size(); ++i) {
            std::uint64_t& limb = product.limbs[offset + i];
            const std::uint64_t partial = limb - factor.limbs[i];
            const std::uint64_t result = partial - borrow;
            borrow = (limb < factor.limbs[i] ? 1U : 0U) + (partial < borrow ? 1U : 0U);
            limb = result;
        }
    };
    if (a.isNegative()) subtractAbove(b, N);
    if (b.isNegative()) subtractAbove(a, M);
    return product;
}

}  // namespace VARN3D
