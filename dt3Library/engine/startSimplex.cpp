#include "dt3Library/engine/startSimplex.h"

#include <utility>

#include "dt3Library/base/EngineCheck.h"
#include "dt3Library/engine/AffineSpan.h"

namespace VARN3D {

namespace {

/// Affinely independent sets are a matroid, so taking the first vertex that raises the dimension
/// each time finds the first quadruple.
bool findFirstFour(const std::vector<Point3*>& vVertices, const GeomTest3& predicates,
                   std::array<Point3*, 4>& simplex) {
    AffineSpan span;
    std::size_t numFound = 0;
    for (Point3* vertex : vVertices) {
        span.extend(vertex, predicates);
        if (span.getDimension() < static_cast<int>(numFound)) continue;
        simplex[numFound++] = vertex;
        if (numFound == 4) return true;
    }
    return false;
}

}  // namespace

bool findStartSimplex(const std::vector<Point3*>& vVertices, const GeomTest3& predicates,
                      std::array<Point3*, 4>& simplex) {
    if (!findFirstFour(vVertices, predicates, simplex)) return false;
    const auto orientation = [&] {
        return predicates.getOrientation3(simplex[0], simplex[1], simplex[2], simplex[3]);
    };
    if (orientation() == ORIENTATION3_NEGATIVE) std::swap(simplex[0], simplex[1]);
    engineCheck(orientation() == ORIENTATION3_POSITIVE, checks::START_IS_POSITIVE);
    return true;
}

}  // namespace VARN3D
