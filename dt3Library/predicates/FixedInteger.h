#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace VARN3D {

#if defined(__SIZEOF_INT128__)
#define VARN3D_HAS_INT128
__extension__ using Int128 = __int128;
__extension__ using Uint128 = unsigned __int128;
#endif

/// a + b + carry, where carry is 0 or 1 and becomes the next one.
inline std::uint64_t addWithCarry(std::uint64_t a, std::uint64_t b, std::uint64_t& carry) {
    const std::uint64_t partial = a + carry;
    const std::uint64_t sum = partial + b;
    carry = static_cast<std::uint64_t>(partial < carry) | static_cast<std::uint64_t>(sum < b);
    return sum;
}

/// a - b - borrow, where borrow is 0 or 1 and becomes the next one.
inline std::uint64_t subtractWithBorrow(std::uint64_t a, std::uint64_t b, std::uint64_t& borrow) {
    const std::uint64_t partial = a - b;
    const std::uint64_t difference = partial - borrow;
    borrow = static_cast<std::uint64_t>(a < b) | static_cast<std::uint64_t>(partial < borrow);
    return difference;
}

/// The low half of a * b + addend1 + addend2, which always fits two halves.
inline std::uint64_t multiplyAdd(std::uint64_t a, std::uint64_t b, std::uint64_t addend1,
                                 std::uint64_t addend2, std::uint64_t& high) {
#if defined(VARN3D_HAS_INT128)
    const Uint128 result = static_cast<Uint128>(a) * b + addend1 + addend2;
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

/// A signed integer of N 64-bit limbs in two's complement, least significant first. Sums have as
/// many limbs as their operands and products the limbs of both, so that whoever leaves the topmost
/// bits of the inputs free never overflows; everything is on the stack.
template <std::size_t N>
struct FixedInteger {
    std::array<std::uint64_t, N> limbs{};

    bool isNegative() const { return limbs[N - 1] >> 63 != 0; }
    int sign() const {
        if (isNegative()) return -1;
        std::uint64_t any = 0;
        for (const std::uint64_t limb : limbs) any |= limb;
        return any != 0 ? 1 : 0;
    }

    friend FixedInteger operator+(const FixedInteger& a, const FixedInteger& b) {
        FixedInteger sum;
        std::uint64_t carry = 0;
        for (std::size_t i = 0; i < N; ++i)
            sum.limbs[i] = addWithCarry(a.limbs[i], b.limbs[i], carry);
        return sum;
    }

    friend FixedInteger operator-(const FixedInteger& a, const FixedInteger& b) {
        FixedInteger difference;
        std::uint64_t borrow = 0;
        for (std::size_t i = 0; i < N; ++i)
            difference.limbs[i] = subtractWithBorrow(a.limbs[i], b.limbs[i], borrow);
        return difference;
    }
};

#if defined(VARN3D_HAS_INT128)
/// A number of one limb times another, keeping the sign in the carry.
template <std::size_t M>
FixedInteger<1 + M> multiplyByLimb(const FixedInteger<1>& a, const FixedInteger<M>& b) {
    FixedInteger<1 + M> product;
    const auto factor = static_cast<std::int64_t>(a.limbs[0]);
    std::int64_t carry = 0;
    for (std::size_t j = 0; j + 1 < M; ++j) {
        const Int128 partial = static_cast<Int128>(factor) * b.limbs[j] + carry;
        product.limbs[j] = static_cast<std::uint64_t>(partial);
        carry = static_cast<std::int64_t>(partial >> 64);
    }
    const Int128 top =
        static_cast<Int128>(factor) * static_cast<std::int64_t>(b.limbs[M - 1]) + carry;
    product.limbs[M - 1] = static_cast<std::uint64_t>(top);
    product.limbs[M] = static_cast<std::uint64_t>(top >> 64);
    return product;
}
#endif

/// Schoolbook multiplication; a factor that is negative counts 2^64N too much as an unsigned
/// number, so the other factor is taken off the upper limbs.
template <std::size_t N, std::size_t M>
FixedInteger<N + M> operator*(const FixedInteger<N>& a, const FixedInteger<M>& b) {
#if defined(VARN3D_HAS_INT128)
    if constexpr (N == 1) return multiplyByLimb(a, b);
#endif
    FixedInteger<N + M> product;
    for (std::size_t i = 0; i < N; ++i) {
        std::uint64_t carry = 0;
        for (std::size_t j = 0; j < M; ++j)
            product.limbs[i + j] =
                multiplyAdd(a.limbs[i], b.limbs[j], product.limbs[i + j], carry, carry);
        product.limbs[i + M] = carry;
    }
    // Masks instead of branches: the signs are unpredictable.
    const std::uint64_t maskA = std::uint64_t{0} - (a.isNegative() ? 1U : 0U);
    const std::uint64_t maskB = std::uint64_t{0} - (b.isNegative() ? 1U : 0U);
    std::uint64_t borrow = 0;
    for (std::size_t i = 0; i < M; ++i)
        product.limbs[N + i] = subtractWithBorrow(product.limbs[N + i], b.limbs[i] & maskA, borrow);
    borrow = 0;
    for (std::size_t i = 0; i < N; ++i)
        product.limbs[M + i] = subtractWithBorrow(product.limbs[M + i], a.limbs[i] & maskB, borrow);
    return product;
}

}  // namespace VARN3D
