#include "dt3Library/store/PointNumbers.h"

#include <algorithm>

#include "dt3Library/base/MeshAccess.h"
#include "dt3Library/base/prefetch.h"

namespace VARN3D {

void PointNumbers::addDuplicate(std::uint64_t place, const Point3* vertex) {
    const std::int32_t number = numberAt(place);
    if (number != NONE) duplicates.push_back({number, MeshAccess::number(vertex)});
}

void PointNumbers::addDuplicates(std::uint64_t firstPlace, const std::vector<Point3*>& vVertices,
                                 std::size_t numNew) {
    const std::size_t n = vVertices.size();
    if (numNew == n) return;
    const std::size_t needed = duplicates.size() + (n - numNew);
    if (needed > duplicates.capacity())
        duplicates.reserve(std::max(needed, duplicates.size() + duplicates.size() / 2));
    for (std::size_t i = 0; i < n; ++i) {
        // Vertices lie along a curve, and the points as the host has them.
        constexpr std::size_t AHEAD = 16;
        if (n - i > AHEAD) prefetchRecord(vVertices[i + AHEAD]);
        if (MeshAccess::number(vVertices[i]) != numberAt(firstPlace + i))
            addDuplicate(firstPlace + i, vVertices[i]);
    }
}

}  // namespace VARN3D
