#include "dt3Library/kernel/ExactFrame.h"

#include <algorithm>
#include <cmath>

#include "dt3Library/kernel/CertifiedSphere.h"
#include "dt3Library/predicates/FloatingPoint.h"

namespace VARN3D {

namespace {

using Certificate = ProvedCertificate;

/// Sterbenz's condition. Where halving rounds, both numbers are small enough for their difference
/// to be exact anyway: a multiple of the smallest double, with no more than 53 bits.
bool isDifferenceExact(double q, double middle) {
    return (q > 0.0) == (middle > 0.0) && std::fabs(0.5 * middle) <= std::fabs(q) &&
           std::fabs(0.5 * q) <= std::fabs(middle);
}

}  // namespace

ExactFrame::ExactFrame(const double (&low)[3], const double (&high)[3]) : bCertifiable(true) {
    double reach = 0.0;
    for (int axis = 0; axis < 3; ++axis) {
        const double m = 0.5 * low[axis] + 0.5 * high[axis];
        // Between these two everything has the middle's sign and lies in the same range.
        if (isDifferenceExact(low[axis], m) && isDifferenceExact(high[axis], m)) middle[axis] = m;
        reach = std::max(
            {reach, std::fabs(low[axis] - middle[axis]), std::fabs(high[axis] - middle[axis])});
    }
    bScaled = reach > Certificate::MAX_COORDINATE || reach < Certificate::LEAST_REACH;
    if (!bScaled) return;
    int exponent;
    std::frexp(reach, &exponent);
    const int half = -exponent / 2;
    factors[0] = std::ldexp(1.0, half);
    factors[1] = std::ldexp(1.0, -exponent - half);
}

void ExactFrame::scaleUpOrDown(double (&moved)[3]) const {
    for (double& coordinate : moved) coordinate = coordinate * factors[0] * factors[1];
}

bool ExactFrame::isExactFor(const double (&q)[3]) const {
    double moved[3];
    apply(q, moved);
    for (int axis = 0; axis < 3; ++axis) {
        if (middle[axis] != 0.0 && !isDifferenceExact(q[axis], middle[axis])) return false;
        if (bCertifiable && !(std::fabs(moved[axis]) <= Certificate::MAX_COORDINATE)) return false;
        // Scaling back up never rounds.
        if (mayLoseBits() && moved[axis] / factors[0] / factors[1] != q[axis] - middle[axis])
            return false;
    }
    return true;
}

}  // namespace VARN3D
