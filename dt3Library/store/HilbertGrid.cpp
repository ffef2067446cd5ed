#include "dt3Library/store/HilbertGrid.h"

#include <algorithm>

#include "dt3Library/predicates/FloatingPoint.h"

namespace VARN3D {

namespace {

constexpr int NUM_STATES = 12;

/// The curve's digit for an octant (4x + 2y + z), by the state of the curve in the cell.
constexpr std::uint8_t DIGIT[8][NUM_STATES] = {
    {0, 0, 0, 2, 4, 6, 4, 6, 2, 2, 4, 6}, {1, 7, 3, 3, 3, 5, 7, 7, 5, 1, 5, 1},
    {3, 1, 7, 1, 5, 1, 3, 5, 3, 5, 7, 7}, {2, 6, 4, 0, 2, 2, 0, 4, 4, 6, 6, 0},
    {7, 3, 1, 5, 7, 7, 5, 1, 1, 3, 3, 5}, {6, 4, 2, 4, 0, 4, 6, 0, 6, 0, 2, 2},
    {4, 2, 6, 6, 6, 0, 2, 2, 0, 4, 0, 4}, {5, 5, 5, 7, 1, 3, 1, 3, 7, 7, 1, 3},
};

/// The state of the curve within that octant.
constexpr std::uint8_t NEXT[8][NUM_STATES] = {
    {1, 2, 0, 6, 11, 4, 5, 6, 10, 4, 7, 10}, {2, 6, 9, 0, 11, 4, 7, 1, 3, 4, 2, 3},
    {3, 0, 10, 6, 0, 8, 5, 6, 1, 8, 11, 2},  {2, 7, 9, 11, 7, 8, 3, 10, 1, 8, 2, 6},
    {4, 8, 1, 9, 5, 0, 1, 9, 10, 2, 7, 10},  {5, 8, 1, 0, 9, 6, 1, 4, 3, 7, 5, 3},
    {3, 0, 11, 9, 0, 10, 11, 9, 5, 2, 8, 4}, {5, 7, 11, 8, 7, 6, 11, 10, 9, 3, 5, 4},
};

/// From the octants (three bits a level, the coarsest on top) to the curve's digits.
std::uint32_t placeOnCurve(std::uint32_t octants, unsigned numLevels) {
    unsigned state = 0;
    std::uint32_t key = 0;
    for (unsigned level = numLevels; level-- > 0;) {
        const unsigned octant = octants >> 3 * level & 7U;
        key = key << 3 | DIGIT[octant][state];
        state = NEXT[octant][state];
    }
    return key;
}

}  // namespace

HilbertGrid::HilbertGrid(const double (&minimum)[3], const double (&extents)[3], unsigned levels)
    : numLevels(levels) {
    std::copy(minimum, minimum + 3, low);
    std::copy(extents, extents + 3, extent);
}

std::uint32_t HilbertGrid::keyOf(const Point3& point) const {
    const double at[3][4] = {{point.x()}, {point.y()}, {point.z()}};
    std::uint32_t keys[4];
    keysOf(at, keys);
    return keys[0];
}

/// The octants are found level by level for four points side by side, and without a branch: they
/// are unpredictable.
void HilbertGrid::keysOf(const double (&at)[3][4], std::uint32_t (&keys)[4]) const {
    double rest[3][4];
    for (int axis = 0; axis < 3; ++axis)
        for (int i = 0; i < 4; ++i) rest[axis][i] = at[axis][i] - low[axis];
    double half[3] = {extent[0] / 2, extent[1] / 2, extent[2] / 2};
    std::uint32_t octants[4] = {};
    for (unsigned level = 0; level < numLevels; ++level) {
        // All axes are tested against the x half-extent: the keys, and with them the order of
        // insertion, are part of what hosts rely on.
        const double threshold = half[0];
        for (int axis = 0; axis < 3; ++axis) {
            const double step[2] = {0.0, half[axis]};
            for (int i = 0; i < 4; ++i) {
                const unsigned upper = rest[axis][i] >= threshold ? 1 : 0;
                rest[axis][i] -= step[upper];
                octants[i] = 2 * octants[i] + upper;
            }
            half[axis] *= 0.5;
        }
    }
    for (int i = 0; i < 4; ++i) keys[i] = placeOnCurve(octants[i], numLevels);
}

}  // namespace VARN3D
