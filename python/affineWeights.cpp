#include "python/affineWeights.h"

#include <algorithm>
#include <cmath>

namespace varn3d_python {

using VARN3D::Point3;
using VARN3D::Tet3;

namespace {

/// The unevaluated sum of two doubles, good for about 31 digits (Dekker, A floating-point technique
/// for extending the available precision, 1971).
struct Pair {
    double high;
    double low;
};

/// Exact for |a| >= |b|.
Pair ordered(double a, double b) {
    const double sum = a + b;
    return {sum, b - (sum - a)};
}

/// Exact.
Pair difference(double a, double b) {
    const double rounded = a - b;
    const double taken = a - rounded;
    return {rounded, (a - (rounded + taken)) + (taken - b)};
}

Pair operator-(const Pair& a, const Pair& b) {
    const Pair high = difference(a.high, b.high);
    return ordered(high.high, high.low + (a.low - b.low));
}

Pair operator+(const Pair& a, const Pair& b) {
    return a - Pair{-b.high, -b.low};
}

Pair operator*(const Pair& a, const Pair& b) {
    const double product = a.high * b.high;
    const double lost = std::fma(a.high, b.high, -product);
    return ordered(product, lost + (a.high * b.low + a.low * b.high));
}

using Row = std::array<Pair, 3>;

/// Half the difference, which can't overflow.
Row rowOf(const Point3& corner, const Point3& point) {
    return {difference(corner.x() / 2, point.x() / 2), difference(corner.y() / 2, point.y() / 2),
            difference(corner.z() / 2, point.z() / 2)};
}

double size(const Row& row) {
    return std::max({std::abs(row[0].high), std::abs(row[1].high), std::abs(row[2].high)});
}

/// A power of two that brings a size near 1.
double scaleFor(double size) {
    return std::ldexp(1.0, -std::clamp(std::ilogb(size), -1000, 1000));
}

double determinant(const Row& a, const Row& b, const Row& c) {
    const Pair sum = a[0] * (b[1] * c[2] - b[2] * c[1]) + a[1] * (b[2] * c[0] - b[0] * c[2]) +
                     a[2] * (b[0] * c[1] - b[1] * c[0]);
    return sum.high;
}

std::array<double, 4> atNearest(const std::array<double, 4>& sizes) {
    std::array<double, 4> weights = {};
    const auto nearest = std::min_element(sizes.begin(), sizes.end());
    weights[static_cast<std::size_t>(nearest - sizes.begin())] = 1;
    return weights;
}

}  // namespace

std::array<double, 4> affineWeights(const Tet3& tet, const Point3& point) {
    std::array<Row, 4> rows;
    std::array<double, 4> sizes;
    for (std::size_t i = 0; i < 4; ++i) {
        rows[i] = rowOf(*tet.getCorner(static_cast<int>(i)), point);
        sizes[i] = size(rows[i]);
    }
    const double scale = scaleFor(*std::max_element(sizes.begin(), sizes.end()));
    for (Row& row : rows)
        for (Pair& number : row) number = {number.high * scale, number.low * scale};

    // A corner's weight is the volume of the tetrahedron with the point in the corner's place.
    std::array<double, 4> weights = {
        determinant(rows[1], rows[2], rows[3]), determinant(rows[0], rows[3], rows[2]),
        determinant(rows[0], rows[1], rows[3]), determinant(rows[0], rows[2], rows[1])};
    double sum = 0;
    for (double& weight : weights) sum += weight = std::max(weight, 0.0);
    if (!(sum > 0)) return atNearest(sizes);
    for (double& weight : weights) weight /= sum;
    return weights;
}

}  // namespace varn3d_python
