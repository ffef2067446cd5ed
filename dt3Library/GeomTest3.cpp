#include "dt3Library/GeomTest3.h"

#include <cmath>
#include <limits>

#include "dt3Library/base/EngineCheck.h"
#include "dt3Library/base/MeshAccess.h"
#include "dt3Library/base/facets.h"
#include "dt3Library/predicates/predicateStages.h"

namespace VARN3D {

using predicateStages::DistanceOrder;
using predicateStages::Estimate;
using predicateStages::Orientation;
using predicateStages::Orientation2D;
using predicateStages::Points;
using predicateStages::Sphere;
using predicateStages::Verdict;

namespace {

/// A certain sign and the stage that found it.
struct Decision {
    int sign;
    PredicateStage stage;
};

/// What plain doubles leave.
template <class Predicate>
Decision decideByIntegers(const Points<Predicate>& points) {
    Verdict verdict = decideByIntegers<Predicate, 1>(points);
    if (verdict.bCertain) return {verdict.sign, PredicateStage::SMALL_INTEGER};
    verdict = decideByIntegers<Predicate, 2>(points);
    if (verdict.bCertain) return {verdict.sign, PredicateStage::MEDIUM_INTEGER};
    return {signByWideIntegers(points), PredicateStage::WIDE_INTEGER};
}

/// What the filter leaves.
template <class Predicate>
Decision decideExactly(const Points<Predicate>& points, const Estimate& estimate) {
    const Verdict verdict = decideOnLattice(points, estimate);
    if (verdict.bCertain) return {verdict.sign, PredicateStage::LATTICE};
    return decideByIntegers(points);
}

template <class Predicate>
inline Decision decide(const Points<Predicate>& points, double errorBound) {
    const Estimate estimate = estimateOf(points);
    const Verdict verdict = decideByFilter(estimate, errorBound);
    if (verdict.bCertain) return {verdict.sign, PredicateStage::FILTER};
    return decideExactly(points, estimate);
}

Points<Sphere> sphereOf(const Tet3* tet, const Point3* p) {
    return {{MeshAccess::corner(tet, 0), MeshAccess::corner(tet, 1), MeshAccess::corner(tet, 2),
             MeshAccess::corner(tet, 3), p}};
}

/// By the sign plus 1; Shewchuk's orient3d counts the other handedness as positive. No branch: the
/// sign is unpredictable.
constexpr Orientation3 ORIENTATION_OF_SIGN[3] = {ORIENTATION3_POSITIVE, ORIENTATION3_COPLANAR,
                                                 ORIENTATION3_NEGATIVE};

/// `std::max` takes references, which compilers turn into branches.
inline double larger(double a, double b) {
    return a < b ? b : a;
}

}  // namespace

const char* getOrientationName(Orientation3 orientation) {
    switch (orientation) {
        case ORIENTATION3_POSITIVE:
            return "ORI3_ORIENTATION3_POSITIVE";
        case ORIENTATION3_NEGATIVE:
            return "ORI3_ORIENTATION3_NEGATIVE";
        case ORIENTATION3_COPLANAR:
            return "ORI3_ZERO";
    }
    engineCheck(false, checks::ORIENTATION_HAS_NAME);
    return "";
}

GeomTest3::GeomTest3() {
    double epsilon = 1.0;
    double splitter = 1.0;
    double check = 1.0;
    double lastCheck;
    bool bEveryOther = true;
    do {
        lastCheck = check;
        epsilon *= 0.5;
        if (bEveryOther) splitter *= 2.0;
        bEveryOther = !bEveryOther;
        check = 1.0 + epsilon;
    } while (check != 1.0 && check != lastCheck);
    constants.splitter = splitter + 1.0;
    constants.epsilon = epsilon;
    constants.resulterrbound = (3.0 + 8.0 * epsilon) * epsilon;
    constants.ccwerrboundA = (3.0 + 16.0 * epsilon) * epsilon;
    constants.ccwerrboundB = (2.0 + 12.0 * epsilon) * epsilon;
    constants.ccwerrboundC = (9.0 + 64.0 * epsilon) * epsilon * epsilon;
    constants.o3derrboundA = (7.0 + 56.0 * epsilon) * epsilon;
    constants.o3derrboundB = (3.0 + 28.0 * epsilon) * epsilon;
    constants.o3derrboundC = (26.0 + 288.0 * epsilon) * epsilon * epsilon;
    constants.iccerrboundA = (10.0 + 96.0 * epsilon) * epsilon;
    constants.iccerrboundB = (4.0 + 48.0 * epsilon) * epsilon;
    constants.iccerrboundC = (44.0 + 576.0 * epsilon) * epsilon * epsilon;
    constants.isperrboundA = (16.0 + 224.0 * epsilon) * epsilon;
    constants.isperrboundB = (5.0 + 72.0 * epsilon) * epsilon;
    constants.isperrboundC = (71.0 + 1408.0 * epsilon) * epsilon * epsilon;
}

Orientation3 GeomTest3::getOrientation3(const Point3* pa, const Point3* pb, const Point3* pc,
                                        const Point3* pd) const {
    const Decision decision = decide<Orientation>({{pa, pb, pc, pd}}, constants.o3derrboundA);
    VARN3D_COUNT_STAGE(orientation, decision.stage);
    return ORIENTATION_OF_SIGN[decision.sign + 1];
}

Orientation3 GeomTest3::getOrientation3(const Tet3* pC, int ith, const Point3* pD) const {
    engineCheck(range03(ith), checks::ORIENTATION_CORNER);
    if (pC == nullptr) goToHell("getOrientation3, pC==NULL");
    const auto& facet = OUTER_FACET[ith];
    return getOrientation3(MeshAccess::corner(pC, facet[0]), MeshAccess::corner(pC, facet[1]),
                           MeshAccess::corner(pC, facet[2]), pD);
}

FacetSides GeomTest3::seeFacets(const Tet3* pTet, const Point3* p) const {
    double x[4], y[4], z[4];
    double maxX = 0.0, maxY = 0.0, maxZ = 0.0;
    for (int i = 0; i < 4; ++i) {
        const Point3* corner = MeshAccess::corner(pTet, i);
        x[i] = corner->x() - p->x();
        y[i] = corner->y() - p->y();
        z[i] = corner->z() - p->z();
        maxX = larger(maxX, std::fabs(x[i]));
        maxY = larger(maxY, std::fabs(y[i]));
        maxZ = larger(maxZ, std::fabs(z[i]));
    }
    const auto minor = [&x, &y](int i, int j) { return x[i] * y[j] - x[j] * y[i]; };
    const double m01 = minor(0, 1), m02 = minor(0, 2), m03 = minor(0, 3);
    const double m12 = minor(1, 2), m13 = minor(1, 3), m23 = minor(2, 3);
    const double side0 = z[1] * m23 - z[2] * m13 + z[3] * m12;
    const double side1 = z[2] * m03 - z[0] * m23 - z[3] * m02;
    const double side2 = z[0] * m13 - z[1] * m03 + z[3] * m01;
    const double side3 = z[1] * m02 - z[0] * m12 - z[2] * m01;
    const bool bInRange = maxX < MAX_DIFFERENCE && maxY < MAX_DIFFERENCE && maxZ < MAX_DIFFERENCE;
    const double bound =
        bInRange ? getOrientationBound(maxX, maxY, maxZ) : std::numeric_limits<double>::infinity();
    const unsigned notInner = (side0 > bound ? 0U : 1U) | (side1 > bound ? 0U : 2U) |
                              (side2 > bound ? 0U : 4U) | (side3 > bound ? 0U : 8U);
    return {{side0, side1, side2, side3}, bound, notInner};
}

bool GeomTest3::isStrictlyInSphere(const Point3* pa, const Point3* pb, const Point3* pc,
                                   const Point3* pd, const Point3* pe) const {
    const Decision decision = decideByIntegers(Points<Sphere>{{pa, pb, pc, pd, pe}});
    VARN3D_COUNT_STAGE(sphere, decision.stage);
    return decision.sign < 0;
}

SphereInclusion GeomTest3::sphereInclusionTest(const Tet3* pTet, const Point3* pE) const {
    const Points<Sphere> points = sphereOf(pTet, pE);
    const Decision decision = decide(points, constants.isperrboundA);
    VARN3D_COUNT_STAGE(sphere, decision.stage);
    if (decision.sign != 0) return decision.sign < 0 ? SIC_INSIDE : SIC_OUTSIDE;
    for (int i = 0; i < 4; ++i)
        if (*points.p[i] == *pE) return SIC_INSIDE;
    return SIC_OUTSIDE;
}

bool GeomTest3::isOnSphere(const Tet3* pTet, const Point3* pE) const {
    const Decision decision = decide(sphereOf(pTet, pE), constants.isperrboundA);
    VARN3D_COUNT_STAGE(sphere, decision.stage);
    return decision.sign == 0;
}

int GeomTest3::compareDistances(const Point3* pa, const Point3* pb, const Point3* from) const {
    const Decision decision =
        decide<DistanceOrder>({{pa, pb, from}}, predicateStages::DISTANCE_FILTER_BOUND);
    VARN3D_COUNT_STAGE(distance, decision.stage);
    return decision.sign;
}

bool GeomTest3::areCollinear(const Point3* pa, const Point3* pb, const Point3* pc) const {
    // On one line exactly if all projections along an axis are.
    const auto sideInProjection = [&](auto project) {
        const Point3 a = project(*pa);
        const Point3 b = project(*pb);
        const Point3 c = project(*pc);
        const Decision decision = decide<Orientation2D>({{&a, &b, &c}}, constants.ccwerrboundA);
        VARN3D_COUNT_STAGE(collinear, decision.stage);
        return decision.sign;
    };
    return sideInProjection([](const Point3& p) { return Point3(p.x(), p.y(), 0.0); }) == 0 &&
           sideInProjection([](const Point3& p) { return Point3(p.y(), p.z(), 0.0); }) == 0 &&
           sideInProjection([](const Point3& p) { return Point3(p.z(), p.x(), 0.0); }) == 0;
}

}  // namespace VARN3D
