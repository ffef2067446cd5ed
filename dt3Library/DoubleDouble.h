#pragma once

namespace VARN3D {

// Error-free transformations (Dekker 1971; Knuth; Shewchuk, Adaptive Precision Floating-Point
// Arithmetic and Fast Robust Geometric Predicates, 1997). They rely on every operation being
// rounded once, to double, with nothing contracted.

/// a + b = sum + tail exactly.
inline void twoSum(double a, double b, double& sum, double& tail) {
    sum = a + b;
    const double bVirtual = sum - a;
    const double aVirtual = sum - bVirtual;
    tail = (a - aVirtual) + (b - bVirtual);
}

/// The same where a is 0 or at least as large as b.
inline void fastTwoSum(double a, double b, double& sum, double& tail) {
    sum = a + b;
    tail = b - (sum - a);
}

/// a - b = difference + tail exactly.
inline void twoDiff(double a, double b, double& difference, double& tail) {
    twoSum(a, -b, difference, tail);
}

/// a = high + low, each with at most 26 bits (and a sign).
inline void split(double a, double& high, double& low) {
    constexpr double SPLITTER = 134217729.0;  // 2^27 + 1
    const double c = SPLITTER * a;
    high = c - (c - a);
    low = a - high;
}

/// a * b = product + tail exactly.
inline void twoProduct(double a, double b, double& product, double& tail) {
    product = a * b;
    double aHigh, aLow, bHigh, bLow;
    split(a, aHigh, aLow);
    split(b, bHigh, bLow);
    tail = aLow * bLow - (((product - aHigh * bHigh) - aLow * bHigh) - aHigh * bLow);
}

/// A number as the unevaluated sum of two doubles, about 106 bits. With u = 2^-53, a product is off
/// by at most 7u^2 of itself, and a sum by at most 8u^2 of the sum of its operands' sizes; that is
/// all that bounds with a permanent need, so the cheap variant of the addition serves.
struct DoubleDouble {
    double high;
    double low;

    friend DoubleDouble operator+(const DoubleDouble& a, const DoubleDouble& b) {
        double sum, tail;
        twoSum(a.high, b.high, sum, tail);
        tail += a.low + b.low;
        DoubleDouble result;
        fastTwoSum(sum, tail, result.high, result.low);
        return result;
    }
    friend DoubleDouble operator-(const DoubleDouble& a, const DoubleDouble& b) {
        return a + DoubleDouble{-b.high, -b.low};
    }
    friend DoubleDouble operator*(const DoubleDouble& a, const DoubleDouble& b) {
        double product, tail;
        twoProduct(a.high, b.high, product, tail);
        tail += a.high * b.low + a.low * b.high;
        DoubleDouble result;
        fastTwoSum(product, tail, result.high, result.low);
        return result;
    }
};

}  // namespace VARN3D
