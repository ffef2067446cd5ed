#include "dt3Library/store/SpatialOrder.h"

#include <cmath>
#include <cstring>

#include "dt3Library/base/bits.h"

namespace VARN3D {

namespace {

constexpr std::uint32_t LAST_CELL = (1U << 21) - 1;

/// The lowest 21 bits of v, two zero bits between any two of them.
std::uint64_t spreadBits(std::uint64_t v) {
    v = (v | (v << 32)) & 0x001F00000000FFFFULL;
    v = (v | (v << 16)) & 0x001F0000FF0000FFULL;
    v = (v | (v << 8)) & 0x100F00F00F00F00FULL;
    v = (v | (v << 4)) & 0x10C30C30C30C30C3ULL;
    v = (v | (v << 2)) & 0x1249249249249249ULL;
    return v;
}

std::uint64_t bitsOf(double value) {
    value += 0.0;  // makes -0.0 and 0.0 the same
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

/// The binary place of the highest bit in which two different numbers differ.
int highestDifferingPlace(double a, double b) {
    const std::uint64_t bitsA = bitsOf(a);
    const std::uint64_t bitsB = bitsOf(b);
    const std::uint64_t differing = bitsA ^ bitsB;
    if (differing >> 63) return 4096;  // different signs: above every place
    const int exponentA = static_cast<int>(bitsA >> 52 & 0x7FF);
    const int exponentB = static_cast<int>(bitsB >> 52 & 0x7FF);
    if (exponentA != exponentB) return exponentA > exponentB ? exponentA : exponentB;
    const int denormal = exponentA == 0 ? 1 : 0;
    return exponentA + denormal - 52 + static_cast<int>(highestBit(differing));
}

}  // namespace

void SpatialOrder::setFrame(const Bbox3& box) {
    minimum[0] = box.getMinX();
    minimum[1] = box.getMinY();
    minimum[2] = box.getMinZ();
    const double cells = (static_cast<double>(LAST_CELL) + 1.0) / box.getMaxRange();
    cellsPerUnit = std::isfinite(cells) ? cells : 0.0;
}

std::uint64_t SpatialOrder::cellCode(const Point3& p) const {
    const auto cell = [this](double coordinate, int axis) -> std::uint64_t {
        const double position = (coordinate - minimum[axis]) * cellsPerUnit;
        if (!(position > 0.0)) return 0;
        return position < LAST_CELL ? static_cast<std::uint32_t>(position) : LAST_CELL;
    };
    return spreadBits(cell(p.x(), 0)) << 2 | spreadBits(cell(p.y(), 1)) << 1 |
           spreadBits(cell(p.z(), 2));
}

bool SpatialOrder::precedesInCell(const Point3& a, const Point3& b) {
    int highest = -4096;
    bool precedes = false;
    const auto compareAxis = [&](double ca, double cb) {
        if (ca == cb) return;
        const int place = highestDifferingPlace(ca, cb);
        if (place > highest) {
            highest = place;
            precedes = ca < cb;
        }
    };
    compareAxis(a.x(), b.x());
    compareAxis(a.y(), b.y());
    compareAxis(a.z(), b.z());
    return precedes;
}

}  // namespace VARN3D
