#include "dt3Library/CurveSort.h"

#include <algorithm>
#include <cstddef>

#include "dt3Library/FloatingPoint.h"
#include "dt3Library/HilbertGrid.h"

namespace VARN3D {

namespace {

constexpr unsigned LEVELS = 9;
/// So many in a cell are in order enough.
constexpr std::ptrdiff_t FEW = 8;

/// A grid over the cube at the lowest corner of the vertices' box. Where the box is too large for
/// doubles, it separates less or nothing.
HilbertGrid gridAround(const CurveEntry* first, const CurveEntry* last) {
    double low[3];
    double high[3];
    first->vertex->xyz(low[0], low[1], low[2]);
    first->vertex->xyz(high[0], high[1], high[2]);
    for (const CurveEntry* entry = first; entry != last; ++entry) {
        double at[3];
        entry->vertex->xyz(at[0], at[1], at[2]);
        for (int axis = 0; axis < 3; ++axis) {
            low[axis] = at[axis] < low[axis] ? at[axis] : low[axis];
            high[axis] = high[axis] < at[axis] ? at[axis] : high[axis];
        }
    }
    const double side = std::max({high[0] - low[0], high[1] - low[1], high[2] - low[2]});
    return HilbertGrid(low, {side, side, side}, LEVELS);
}

}  // namespace

void sortAlongCurve(CurveEntry* first, CurveEntry* last) {
    const HilbertGrid grid = gridAround(first, last);
    for (CurveEntry* group = first; group < last; group += 4) {
        const std::ptrdiff_t left = last - group;
        const Point3* const points[4] = {group[0].vertex, group[left > 1 ? 1 : 0].vertex,
                                         group[left > 2 ? 2 : 0].vertex,
                                         group[left > 3 ? 3 : 0].vertex};
        std::uint32_t keys[4];
        grid.keysOf(points, keys);
        for (std::ptrdiff_t i = 0; i < left && i < 4; ++i) group[i].key = keys[i];
    }
    std::sort(first, last, [](const CurveEntry& a, const CurveEntry& b) {
        return a.key != b.key ? a.key < b.key : a.number < b.number;
    });
    for (CurveEntry* begin = first; begin != last;) {
        CurveEntry* end = begin + 1;
        while (end != last && end->key == begin->key) ++end;
        // A grid that separates nothing is the last one.
        if (end - begin > FEW && end - begin < last - first) sortAlongCurve(begin, end);
        begin = end;
    }
}

}  // namespace VARN3D
