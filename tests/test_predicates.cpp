#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <string>

#include "dt3Library/GeomTest3.h"
#include "dt3Library/VarnException.h"
#include "dt3Library/predicates/circumcentre.h"
#include "dt3Library/predicates/predicateStages.h"
#include "tests/support/CaptureOutput.h"
#include "tests/support/Exact.h"
#include "tests/support/Failures.h"
#include "tests/support/PredicateInput.h"

using namespace VARN3D;
using namespace support;

namespace {

int signOfOrientation(Orientation3 orientation) {
    if (orientation == ORIENTATION3_POSITIVE) return 1;
    return orientation == ORIENTATION3_NEGATIVE ? -1 : 0;
}

std::string describe(const FivePoints& points) {
    std::string text;
    for (const Point3& p : points) {
        char line[128];
        std::snprintf(line, sizeof line, "{%a, %a, %a}\n", p.x(), p.y(), p.z());
        text += line;
    }
    return text;
}

/// Each stage alone, in Shewchuk's signs: undecided or right.
template <class Predicate>
void expectNoStageErrs(const predicateStages::Points<Predicate>& points, double errorBound,
                       int expected) {
    using namespace predicateStages;
    const Estimate estimate = estimateOf(points);
    const Verdict verdicts[] = {
        decideByFilter(estimate, errorBound), decideOnLattice(points, estimate),
        decideByIntegers<Predicate, 1>(points), decideByIntegers<Predicate, 2>(points),
        Verdict{true, signByWideIntegers(points)}};
    for (int stage = 0; stage < NUM_PREDICATE_STAGES; ++stage)
        if (verdicts[stage].bCertain)
            EXPECT_EQ(verdicts[stage].sign, expected) << "stage " << stage;
}

/// The centre of the first four points, seen from the first, against Cramer's rule. What is near
/// the ends of the range of doubles is left out.
void expectCircumcentre(const FivePoints& points) {
    const auto& [a, b, c, d, e] = points;
    const Vector3 centre = circumcentreFrom(a, b, c, d);
    const double components[] = {centre.x, centre.y, centre.z};
    const Vector3 edge = b - a;
    if (std::fabs(edge.x) + std::fabs(edge.y) + std::fabs(edge.z) < 1e-290) return;
    for (const double size : components)
        if (!(std::fabs(size) < 1e300) || (size != 0.0 && std::fabs(size) < 1e-290)) return;
    const Point3 zero(0, 0, 0);
    const Point3 tip(centre.x, centre.y, centre.z);
    const auto [u, v, w, toZero, toTip] = exactDifferences({&a, &b, &c, &d, &zero, &tip});
    const ExactVector vw = exactCross(v, w), wu = exactCross(w, u), uv = exactCross(u, v);
    const mpz_class volume = 2 * exactDot(u, vw);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const mpz_class exact =
            exactDot(u, u) * vw[axis] + exactDot(v, v) * wu[axis] + exactDot(w, w) * uv[axis];
        const mpz_class error = (toTip[axis] - toZero[axis]) * volume - exact;
        ASSERT_LE(abs(error) << 49, abs(exact)) << describe(points);
    }
}

/// A point and the facets of the scratch tetrahedron, one by one and in one look: certain or
/// nothing.
void expectFacetsSeenTruly(const GeomTest3& predicates, const Point3& p) {
    const FacetSides sides = predicates.seeFacets(&scratchTet(), &p);
    for (int i = 0; i < 4; ++i) {
        const Point3* corners[4];
        for (int k = 0; k < 4; ++k) corners[k] = k == i ? &p : scratchTet().getCorner(k);
        const int exact = exactOrientation(*corners[0], *corners[1], *corners[2], *corners[3]);
        EXPECT_EQ(signOfOrientation(predicates.getOrientation3(&scratchTet(), i, &p)), exact);
        const double side = sides.orientation[i];
        const int seen = side > sides.bound ? 1 : side < -sides.bound ? -1 : 0;
        EXPECT_TRUE(seen == 0 || seen == exact);
        EXPECT_EQ(sides.notInner >> i & 1U, seen > 0 ? 0U : 1U);
    }
}

/// Everything about five points against exact arithmetic.
void expectExact(FivePoints points) {
    const GeomTest3 predicates;
    auto& [a, b, c, d, e] = points;
    const int orientation = exactOrientation(a, b, c, d);
    ASSERT_EQ(signOfOrientation(predicates.getOrientation3(&a, &b, &c, &d)), orientation)
        << describe(points);
    ASSERT_EQ(predicates.areCollinear(&a, &b, &c), exactlyCollinear(a, b, c)) << describe(points);
    expectNoStageErrs<predicateStages::Orientation>(
        {{&a, &b, &c, &d}}, predicates.getConstants().o3derrboundA, -orientation);
    const int order = exactDistanceOrder(a, b, e);
    ASSERT_EQ(predicates.compareDistances(&a, &b, &e), order) << describe(points);
    expectNoStageErrs<predicateStages::DistanceOrder>(
        {{&a, &b, &e}}, predicateStages::DISTANCE_FILTER_BOUND, order);
    if (orientation == 0) return;

    if (orientation < 0) std::swap(a, b);
    scratchTet().setProperties(&a, &b, &c, &d);
    const int inside = exactInSphere(a, b, c, d, e);
    const bool bCorner = scratchTet().hasVertex(e);
    ASSERT_EQ(predicates.sphereInclusionTest(&scratchTet(), &e),
              inside > 0 || bCorner ? SIC_INSIDE : SIC_OUTSIDE)
        << describe(points);
    expectCircumcentre(points);
    expectFacetsSeenTruly(predicates, e);
    ASSERT_EQ(predicates.isOnSphere(&scratchTet(), &e), inside == 0) << describe(points);
    expectNoStageErrs<predicateStages::Sphere>({{&a, &b, &c, &d, &e}},
                                               predicates.getConstants().isperrboundA, -inside);
    if (testing::Test::HasFailure()) FAIL() << describe(points);
}

double movedByUlps(double value, int ulps) {
    const double towards = ulps < 0 ? -HUGE_VAL : HUGE_VAL;
    for (int i = std::abs(ulps); i > 0; --i) value = std::nextafter(value, towards);
    return value;
}

/// Moves the last point to all neighbours within so many units in the last place.
template <class Check>
void forNeighbours(FivePoints points, std::size_t moving, int radius, Check check) {
    const Point3 centre = points[moving];
    for (int i = -radius; i <= radius; ++i)
        for (int j = -radius; j <= radius; ++j)
            for (int k = -radius; k <= radius && !testing::Test::HasFatalFailure(); ++k) {
                points[moving].exchange(movedByUlps(centre.x(), i), movedByUlps(centre.y(), j),
                                        movedByUlps(centre.z(), k));
                check(points);
            }
}

}  // namespace

class Predicates : public testing::TestWithParam<PredicateInput> {};

TEST_P(Predicates, AgreeWithExactArithmetic) {
    Random r(7);
    for (int i = 0; i < 3000 && !HasFatalFailure(); ++i) expectExact(GetParam().make(r));
}

INSTANTIATE_TEST_SUITE_P(, Predicates, testing::ValuesIn(predicateInputs()),
                         [](const auto& test) { return std::string(test.param.name); });

TEST(PredicateNeighbourhoods, OfCoplanarPoints) {
    const FivePoints planes[] = {
        {Point3(0.5, 0.5, 0.5), {12, 12, 12}, {24, 24, 24}, {12, 13, 12}, {1, 2, 3}},
        {Point3(0.3, 0.3, 0.3), {0.1, 0.7, 0.1}, {0.9, 0.2, 0.9}, {-5, 3, -5}, {1, 2, 3}},
        {Point3(1e6, 1, 1), {1e6 + 1, 0, 1}, {1e6 + 2, 3, -4}, {1e6 + 3, -1, 0}, {1, 2, 3}},
        {Point3(1e-200, 1e-200, 0), {3, 3, 1}, {7, 7, -1e-200}, {-1e200, -1e200, 4}, {1, 2, 3}}};
    for (const FivePoints& points : planes)
        for (std::size_t moving = 0; moving < 4; ++moving)
            forNeighbours(points, moving, 4, [](const FivePoints& p) { expectExact(p); });
}

TEST(PredicateNeighbourhoods, OfCosphericalPoints) {
    Random r(9);
    for (const double step : {1.0, 0.1, 1e-3, 1e-120, 1e120})
        for (const double offset : {0.0, 16.0, -1e4})
            forNeighbours(gridBox(r, step, 9, offset * step), 4, 2,
                          [](const FivePoints& p) { expectExact(p); });
}

TEST(PredicateNeighbourhoods, OfCollinearPoints) {
    const FivePoints lines[] = {{Point3(0.5, 0.5, 0.5), {12, 12, 12}, {24, 24, 24}},
                                {Point3(0.1, 0.2, 0.3), {0.2, 0.4, 0.6}, {0.4, 0.8, 1.2}},
                                {Point3(1e-300, 0, 1), {2e-300, 0, 2}, {-7e-300, 0, -7}},
                                {Point3(-1e308, 1, 5e-324), {0, 1, 0}, {1e308, 1, -5e-324}}};
    for (const FivePoints& points : lines)
        for (std::size_t moving = 0; moving < 3; ++moving)
            forNeighbours(points, moving, 3, [](const FivePoints& p) {
                EXPECT_EQ(GeomTest3().areCollinear(&p[0], &p[1], &p[2]),
                          exactlyCollinear(p[0], p[1], p[2]))
                    << describe(p);
            });
}

TEST(GeomTest3, ConstantsAreThoseOfIeeeDoubles) {
    const PredicateConstants constants = GeomTest3().getConstants();
    const double expected[] = {134217729.0,
                               1.1102230246251565e-16,
                               3.3306690738754706e-16,
                               3.3306690738754716e-16,
                               2.2204460492503146e-16,
                               1.1093356479670487e-31,
                               7.771561172376103e-16,
                               3.330669073875473e-16,
                               3.2047474274603644e-31,
                               1.1102230246251577e-15,
                               4.440892098500632e-16,
                               5.423418723394464e-31,
                               1.7763568394002532e-15,
                               5.551115123125792e-16,
                               8.751425667295619e-31};
    static_assert(sizeof expected == sizeof constants);
    EXPECT_EQ(std::memcmp(&constants, expected, sizeof expected), 0);
    EXPECT_EQ(predicateStages::ORIENTATION_FILTER_BOUND, constants.o3derrboundA);
    EXPECT_EQ(predicateStages::SPHERE_FILTER_BOUND, constants.isperrboundA);
}

TEST(GeomTest3, OrientationsHaveNames) {
    EXPECT_STREQ(getOrientationName(ORIENTATION3_POSITIVE), "ORI3_ORIENTATION3_POSITIVE");
    EXPECT_STREQ(getOrientationName(ORIENTATION3_NEGATIVE), "ORI3_ORIENTATION3_NEGATIVE");
    EXPECT_STREQ(getOrientationName(ORIENTATION3_COPLANAR), "ORI3_ZERO");
    EXPECT_EQ(failureOf([] { getOrientationName(static_cast<Orientation3>(3)); }),
              checkReport("false", "dt3Library/GeomTest3.cpp:34"));
}

TEST(GeomTest3, FacetIndexIsCheckedFirst) {
    const GeomTest3 predicates;
    const Point3 p(0, 0, 0);
    for (const int ith : {-1, 4})
        EXPECT_EQ(failureOf([&] {
                      predicates.getOrientation3(static_cast<const Tet3*>(nullptr), ith, &p);
                  }),
                  checkReport("range03(ith)", "dt3Library/GeomTest3.h:88"));
}
