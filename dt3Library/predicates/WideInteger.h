#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "dt3Library/predicates/FixedInteger.h"

namespace VARN3D {

/// A signed integer of up to N 64-bit limbs, as sign and magnitude, on the stack. Only the limbs
/// between the lowest and the highest that matter are kept, so that numbers of very different
/// sizes, the usual reason to need so many limbs, cost little. Sums of numbers below 2^(64N - 1)
/// fit N limbs; products get the limbs of both factors.
template <int N>
class WideInteger {
  public:
    WideInteger() {}

    /// mantissa * 2^exponent, with an exponent of at least 0.
    WideInteger(std::uint64_t mantissa, int exponent, bool bIsNegative) : bNegative(bIsNegative) {
        if (mantissa == 0) return;
        const int bits = exponent % 64;
        begin = exponent / 64;
        end = begin + 1;
        limbs[0] = mantissa << bits;
        const std::uint64_t carry = bits == 0 ? 0 : mantissa >> (64 - bits);
        if (carry != 0) limbs[static_cast<std::size_t>(end++ - begin)] = carry;
    }

    int sign() const {
        if (begin == end) return 0;
        return bNegative ? -1 : 1;
    }

    /// The magnitude's limbs, of which the topmost is not 0.
    int numLimbs() const { return end; }
    std::uint64_t limb(int i) const { return limbOrZero(i); }

    friend WideInteger operator+(const WideInteger& a, const WideInteger& b) {
        return a.plus(b, b.bNegative);
    }
    friend WideInteger operator-(const WideInteger& a, const WideInteger& b) {
        return a.plus(b, !b.bNegative);
    }

    template <int M>
    WideInteger<N + M> operator*(const WideInteger<M>& b) const {
        WideInteger<N + M> product;
        if (sign() == 0 || b.sign() == 0) return product;
        product.bNegative = bNegative != b.bNegative;
        product.begin = begin + b.begin;
        product.end = end + b.end;
        std::fill_n(product.limbs.begin(), product.end - product.begin, 0);
        for (int i = begin; i < end; ++i) {
            // Sums of numbers of different sizes have gaps of zeros.
            if (at(i) == 0) continue;
            std::uint64_t carry = 0;
            for (int j = b.begin; j < b.end; ++j)
                product.at(i + j) = multiplyAdd(at(i), b.at(j), product.at(i + j), carry, carry);
            product.at(i + b.end) = carry;
        }
        product.trim();
        return product;
    }

  private:
    template <int M>
    friend class WideInteger;

    std::uint64_t& at(int i) { return limbs[static_cast<std::size_t>(i - begin)]; }
    std::uint64_t at(int i) const { return limbs[static_cast<std::size_t>(i - begin)]; }
    std::uint64_t limbOrZero(int i) const { return i >= begin && i < end ? at(i) : 0; }

    WideInteger plus(const WideInteger& b, bool bNegativeB) const {
        if (begin == end) return b.withSign(bNegativeB);
        if (b.begin == b.end) return *this;
        return bNegative == bNegativeB ? withAdded(b) : withSubtracted(b);
    }

    WideInteger withSign(bool bIsNegative) const {
        WideInteger result = *this;
        result.bNegative = bIsNegative;
        return result;
    }

    /// Limbs for all of this number and b, of this one's sign.
    WideInteger emptySpaceFor(const WideInteger& b) const {
        WideInteger result;
        result.bNegative = bNegative;
        result.begin = std::min(begin, b.begin);
        result.end = std::max(end, b.end);
        return result;
    }

    /// Adds magnitudes.
    WideInteger withAdded(const WideInteger& b) const {
        WideInteger sum = emptySpaceFor(b);
        std::uint64_t carry = 0;
        for (int i = sum.begin; i < sum.end; ++i)
            sum.at(i) = addWithCarry(limbOrZero(i), b.limbOrZero(i), carry);
        if (carry != 0) {
            ++sum.end;
            sum.at(sum.end - 1) = carry;
        }
        return sum;
    }

    /// Subtracts magnitudes; where b's is larger the sign changes.
    WideInteger withSubtracted(const WideInteger& b) const {
        WideInteger difference = emptySpaceFor(b);
        std::uint64_t borrow = 0;
        for (int i = difference.begin; i < difference.end; ++i)
            difference.at(i) = subtractWithBorrow(limbOrZero(i), b.limbOrZero(i), borrow);
        if (borrow != 0) difference.negate();
        difference.trim();
        return difference;
    }

    /// Of a number in two's complement, negative so far.
    void negate() {
        bNegative = !bNegative;
        std::uint64_t borrow = 0;
        for (int i = begin; i < end; ++i) at(i) = subtractWithBorrow(0, at(i), borrow);
    }

    /// Drops the zeros at the top.
    void trim() {
        while (end > begin && at(end - 1) == 0) --end;
    }

    bool bNegative = false;
    int begin = 0;
    int end = 0;
    /// Limb i of the number, begin <= i < end, stands at i - begin; the others are not set.
    std::array<std::uint64_t, static_cast<std::size_t>(N)> limbs;
};

}  // namespace VARN3D
