#include "dt3Library/GeomTest3.h"

#include "dt3Library/FloatingPoint.h"
#include "dt3Library/predicateStages.h"
#include "dt3Library/tools.h"

namespace VARN3D {

using predicateStages::BitRange;
using predicateStages::Differences;
using predicateStages::Orientation;
using predicateStages::Orientation2D;
using predicateStages::Points;
using predicateStages::Sphere;
using predicateStages::Triple;
using predicateStages::UNCERTAIN;
using predicateStages::Verdict;

namespace {

/// A certain sign and the stage that found it.
struct Decision {
    int sign;
    PredicateStage stage;
};

/// Goes through the stages that work with doubles, for points in the safe range.
template <class Predicate>
bool decideByDoubles(const Points<Predicate>& points, double errorBound, Decision& decision) {
    using namespace predicateStages;
    Differences<Predicate> differences(points);
    const auto settle = [&decision](Verdict verdict, PredicateStage stage) {
        decision = {verdict.sign, stage};
        return verdict.bCertain;
    };
    if (settle(decideByFilter(differences, errorBound), PredicateStage::Filter)) return true;
    differences.computeTails(points);
    return settle(decideOnLattice(differences), PredicateStage::Lattice) ||
           settle(decideByDoubleDouble(differences), PredicateStage::DoubleDouble) ||
           settle(decideBySmallIntegers(differences), PredicateStage::SmallInteger);
}

/// Multiplies all coordinates by the power of two that takes them to the top of the safe range;
/// that changes no sign.
template <class Predicate>
Points<Predicate> scaled(const Points<Predicate>& points, int exponent) {
    Points<Predicate> result;
    for (int i = 0; i <= Predicate::NUM_ROWS; ++i) {
        const Triple<double>& p = points.p[i];
        result.p[i] = {std::ldexp(p.x, exponent), std::ldexp(p.y, exponent),
                       std::ldexp(p.z, exponent)};
    }
    return result;
}

/// Decides any call, whatever the finite coordinates.
template <class Predicate>
Decision decide(const Points<Predicate>& points, double errorBound) {
    using namespace predicateStages;
    Decision decision{0, PredicateStage::Filter};
    if (areSafeAtFirstSight(points)) {
        if (decideByDoubles(points, errorBound, decision)) return decision;
    } else {
        BitRange range;
        range.include(points.p);
        const int up = HIGHEST_SAFE_BIT - range.highest;
        if (range.lowest + up >= LOWEST_SAFE_BIT &&
            decideByDoubles(scaled(points, up), errorBound, decision))
            return decision;
    }
    Verdict verdict = decideByIntegers<Predicate, 3>(points);
    if (verdict.bCertain) return {verdict.sign, PredicateStage::MediumInteger};
    verdict = decideByIntegers<Predicate, FULL_LIMBS>(points);
    return {verdict.sign, PredicateStage::FullInteger};
}

Triple<double> coordinates(const Point3* p) {
    return {p->x(), p->y(), p->z()};
}

Orientation3 toOrientation(int sign) {
    // Shewchuk's orient3d counts the other handedness as positive.
    if (sign < 0) return ORIENTATION3_POSITIVE;
    return sign > 0 ? ORIENTATION3_NEGATIVE : ORIENTATION3_COPLANAR;
}

/// The order in which the corners of facet i see corner i on their positive side.
constexpr int FACET[4][3] = {{1, 3, 2}, {0, 2, 3}, {0, 3, 1}, {0, 1, 2}};

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
    varnAssertAt(false, "false", __FILE__, 34);
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

/// The filter has errors of rounding, which the bound covers, and of underflow: at most 2^-1074 in
/// a product of two differences, times a third below 2^1025, so 2^-40 covers them all. (An overflow
/// makes the bound infinite or a NaN, and nothing is then greater.) Whatever needs more care
/// is decided in peace.
Orientation3 GeomTest3::getOrientation3(const Point3* pa, const Point3* pb, const Point3* pc,
                                        const Point3* pd) const {
    const Triple<double> d = coordinates(pd);
    const Triple<double> rows[3] = {{pa->x() - d.x, pa->y() - d.y, pa->z() - d.z},
                                    {pb->x() - d.x, pb->y() - d.y, pb->z() - d.z},
                                    {pc->x() - d.x, pc->y() - d.y, pc->z() - d.z}};
    const double determinant = Orientation::determinant(rows);
    Triple<double> sizes[3];
    for (int i = 0; i < 3; ++i)
        sizes[i] = {std::fabs(rows[i].x), std::fabs(rows[i].y), std::fabs(rows[i].z)};
    const double bound = constants.o3derrboundA * Orientation::permanent(sizes) + 0x1p-40;
    if (determinant > bound || -determinant > bound) {
        VARN3D_COUNT_STAGE(orientation, PredicateStage::Filter);
        return determinant < 0.0 ? ORIENTATION3_POSITIVE : ORIENTATION3_NEGATIVE;
    }
    const Points<Orientation> points{{coordinates(pa), coordinates(pb), coordinates(pc), d}};
    const Decision decision = decide(points, constants.o3derrboundA);
    VARN3D_COUNT_STAGE(orientation, decision.stage);
    return toOrientation(decision.sign);
}

Orientation3 GeomTest3::getOrientation3(const Tet3* pC, int ith, const Point3* pD) const {
    varnAssertAt(range03(ith), "range03(ith)", "dt3Library/GeomTest3.h", 88);
    if (pC == nullptr) goToHell("getOrientation3, pC==NULL");
    const int* facet = FACET[ith];
    return getOrientation3(pC->getCorner(facet[0]), pC->getCorner(facet[1]),
                           pC->getCorner(facet[2]), pD);
}

SphereInclusion GeomTest3::sphereInclusionTest(const Tet3* pTet, const Point3* pE) const {
    Points<Sphere> points;
    for (int i = 0; i < 4; ++i) {
        const Point3* corner = pTet->getCorner(i);
        // A point with a corner's coordinates makes every term 0, which counts as inside.
        if (*corner == *pE) return SIC_INSIDE;
        points.p[i] = coordinates(corner);
    }
    points.p[4] = coordinates(pE);
    const Decision decision = decide(points, constants.isperrboundA);
    VARN3D_COUNT_STAGE(sphere, decision.stage);
    return decision.sign < 0 ? SIC_INSIDE : SIC_OUTSIDE;
}

bool GeomTest3::areCollinear(const Point3* pa, const Point3* pb, const Point3* pc) const {
    Points<Orientation2D> points{{coordinates(pa), coordinates(pb), coordinates(pc)}};
    for (int projection = 0; projection < 3; ++projection) {
        for (Triple<double>& p : points.p) p = {p.y, p.z, p.x};
        Points<Orientation2D> flat = points;
        for (Triple<double>& p : flat.p) p.z = 0.0;
        const Decision decision = decide(flat, constants.ccwerrboundA);
        VARN3D_COUNT_STAGE(collinear, decision.stage);
        if (decision.sign != 0) return false;
    }
    return true;
}

}  // namespace VARN3D
