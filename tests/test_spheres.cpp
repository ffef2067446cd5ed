// The certificate of cached spheres at its edge, and the frame of exact coordinates, both against
// exact arithmetic. Weakened certificates go through the same attack, which must find them out.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>
#include <utility>
#include <vector>

#include "dt3Library/kernel/CertifiedSphere.h"
#include "dt3Library/kernel/ExactFrame.h"
#include "dt3Library/predicates/predicateStages.h"
#include "tests/support/Exact.h"
#include "tests/support/LaneSpheres.h"
#include "tests/support/PointSets.h"
#include "tests/support/PredicateInput.h"

namespace {

using namespace VARN3D;
using support::Coordinates;
using support::Random;
using support::scalarSpheres;
using support::Spheres;

struct Tally {
    int numSpheres = 0, numAnswers = 0, numWrong = 0;
};

Tally attack(const Spheres& spheres, int numFamilies) {
    Random random(7);
    auto unit = [&random] { return random.unit(); };
    Tally tally;
    const auto judge = [&tally](const Coordinates(&corner)[4], const Coordinates& query, int side) {
        const Point3 p = pointAt(corner[0]), a = pointAt(corner[1]), b = pointAt(corner[2]),
                     c = pointAt(corner[3]);
        const int inside = support::exactInSphere(p, a, b, c, pointAt(query)) *
                           support::exactOrientation(p, a, b, c);
        ++tally.numAnswers;
        if (side != -inside) ++tally.numWrong;
    };
    for (int i = 0; i < numFamilies; ++i)
        if (support::SphereAttack(spheres, unit).run(judge)) ++tally.numSpheres;
    return tally;
}

TEST(Spheres, CertifiedAnswersAreTrue) {
    std::vector<Spheres> all = support::kernelSpheres();
    all.push_back(scalarSpheres<ProvedCertificate>("scalar"));
    for (const Spheres& spheres : all) {
        const Tally tally = attack(spheres, 1000);
        EXPECT_EQ(tally.numWrong, 0) << spheres.name;
        EXPECT_GT(tally.numSpheres, 700) << spheres.name;
        EXPECT_GT(tally.numAnswers, 7000) << spheres.name;
    }
}

struct Flatter : ProvedCertificate {
    static constexpr double DETERMINANT = ProvedCertificate::DETERMINANT / 65536;
};
struct Smaller : ProvedCertificate {
    static constexpr double RADIUS = ProvedCertificate::RADIUS / 4096;
};
struct Narrower : ProvedCertificate {
    static constexpr double ETA = ProvedCertificate::ETA / 8;
};

TEST(Spheres, TheAttackFindsOutWhatIsNotProved) {
    Spheres movedInexactly = scalarSpheres<ProvedCertificate>("moved inexactly");
    movedInexactly.bMovedExactly = false;
    for (const Spheres& spheres :
         {scalarSpheres<Flatter>("flatter"), scalarSpheres<Smaller>("smaller"),
          scalarSpheres<Narrower>("narrower"), movedInexactly})
        EXPECT_GT(attack(spheres, 500).numWrong, 5) << spheres.name;
}

TEST(Spheres, WhatHasNoSphereOrTooLargeAOneIsNotCertified) {
    const double point[10][3] = {
        {1, 0, 0},        {0, 1, 0},       {0, 0, 1},      {0.25, 0.25, 0.5}, {0, 0, 1e300},
        {0, 0, INFINITY}, {0.3, 0.3, 0.3}, {0x1p70, 0, 0}, {0, 0x1p70, 0},    {0, 0, 0x1p70}};
    const auto& [a, b, c, coplanar, far, beyond, inside, x, y, z] = point;
    for (const CachedSphere& sphere :
         {makeSphere(a, b, c, coplanar, 1.0), makeSphere(a, b, c, c, 1.0),
          makeSphere(a, b, inside, far, 1.0), makeSphere(a, b, inside, beyond, 1.0),
          makeSphere(inside, x, y, z, 1.0)})
        for (const auto& query : point) EXPECT_EQ(sideOfSphere(sphere, query), 0);
}

TEST(Spheres, TheDeterminantsInLanesAreCertainOfTheTruthOnly) {
    const GeomTest3 predicates;
    BatchState state(predicates, 5, 4, true);
    CompactTet* const tets = state.mesh.tets();
    tets[1] = {{}, 0.0F, {1, 2, 3, 4}, 0, {}};
    tets[2] = {{}, 0.0F, {AT_INFINITY, 1, 2, 3}, 0, {}};
    for (const support::PredicateInput& input : support::predicateInputs()) {
        Random r(3);
        for (int i = 0; i < 400; ++i) {
            const support::FivePoints points = input.make(r);
            const auto& [a, b, c, d, e] = points;
            double largest = 0.0;
            for (VertexNumber v = 1; v <= 5; ++v) {
                auto& at = state.mesh.vertices()[v].at;
                points[v - 1].xyz(at[0], at[1], at[2]);
                for (const double coordinate : at)
                    largest = std::fmax(largest, std::fabs(coordinate));
            }
            state.bCertified = largest > 0x1p-30 && largest < 0x1p30;
            state.orientationLattice = state.sphereLattice = 0.0;
            state.findLattice(5);
            const int expected[] = {9, -support::exactInSphere(a, b, c, d, e),
                                    -support::exactOrientation(a, b, c, e)};
            // Certain are the predicates' filter and the lattice, neither more nor less.
            using namespace predicateStages;
            const Estimate sphere = estimateOf<Sphere>({{&a, &b, &c, &d, &e}});
            const Estimate hull = estimateOf<Orientation>({{&a, &b, &c, &e}});
            const bool bCertain[] = {false,
                                     decideByFilter(sphere, SPHERE_FILTER_BOUND).bCertain ||
                                         sphere.permanent < state.sphereLattice,
                                     decideByFilter(hull, ORIENTATION_FILTER_BOUND).bCertain ||
                                         hull.permanent < state.orientationLattice};
            for (const Spheres& steps : support::kernelSpheres())
                for (const Slot slot : {1U, 2U})
                    EXPECT_EQ(steps.sign(state, slot, 5), bCertain[slot] ? expected[slot] : 9)
                        << input.name;
        }
    }
}

/// Whether one power of two takes all differences of the given points to those of the moved ones.
bool areSimilar(const std::vector<Coordinates>& given, const std::vector<Coordinates>& moved) {
    mpq_class ratio = 0;
    for (std::size_t i = 1; i < given.size(); ++i)
        for (int k = 0; k < 3; ++k) {
            const mpq_class from = mpq_class(given[i].xyz[k]) - mpq_class(given[0].xyz[k]);
            const mpq_class to = mpq_class(moved[i].xyz[k]) - mpq_class(moved[0].xyz[k]);
            if (ratio == 0 && from != 0) ratio = to / from;
            if (to != ratio * from) return false;
        }
    return ratio == 0 ||
           (mpz_popcount(ratio.get_num_mpz_t()) == 1 && mpz_popcount(ratio.get_den_mpz_t()) == 1);
}

/// Of about 2^exponent, or some powers more or less.
double valueNear(Random& r, int exponent) {
    const int e = exponent + r.below(r.below(2) == 0 ? 3 : 80) - 1;
    const double mantissa = 1.0 + r.unit();
    return std::ldexp(r.below(2) == 0 ? -mantissa : mantissa, std::clamp(e, -1075, 1022));
}

/// The ends of a box on one axis: any, one nearly three times the other, close together, on both
/// sides of zero, denormal.
std::pair<double, double> axisRange(Random& r, int exponent) {
    const double any = valueNear(r, exponent), ratio = 3.0 + 0x1p-51 * (r.below(9) - 4);
    const double near = any + any * support::powerNear(-60 * r.unit());
    const double unit = std::numeric_limits<double>::denorm_min();
    const double few = unit * r.below(40);
    const double ends[5][2] = {{any, valueNear(r, exponent)},
                               {any, any * ratio},
                               {any, near},
                               {any, -any * r.unit()},
                               {few, few + unit * r.below(90)}};
    constexpr double MAX = std::numeric_limits<double>::max();
    const auto& [one, other] = ends[r.below(5)];
    return std::minmax(one, std::clamp(other, -MAX, MAX));
}

/// A point of the box, or when `bOutside` perhaps not.
Coordinates pointNear(Random& r, const Coordinates (&box)[2], bool bOutside) {
    Coordinates q;
    for (int k = 0; k < 3; ++k) {
        const double low = box[0].xyz[k], high = box[1].xyz[k], t = r.unit();
        q.xyz[k] = std::clamp((1 - t) * low + t * high, low, high);
        if (bOutside) q.xyz[k] *= r.below(2) == 0 ? 0.5 : 1.5;
        if (!std::isfinite(q.xyz[k])) q.xyz[k] = high;
    }
    return q;
}

TEST(ExactFrame, MovesWithoutRounding) {
    Random r(11);
    int numMoved = 0, numLosing = 0, numLost = 0;
    for (int i = 0; i < 4000; ++i) {
        constexpr int EXPONENTS[4] = {-1072, 1020, 0, 0};
        const int exponent = i % 8 < 4 ? EXPONENTS[i % 8] : r.below(2100) - 1075;
        Coordinates box[2];
        for (int k = 0; k < 3; ++k) std::tie(box[0].xyz[k], box[1].xyz[k]) = axisRange(r, exponent);
        const ExactFrame frame(box[0].xyz, box[1].xyz);
        EXPECT_TRUE(frame.isCertifiable());
        if (frame.mayLoseBits()) ++numLosing;
        std::vector<Coordinates> given, moved;
        for (int j = 0; j < 8; ++j) {
            const Coordinates q = j < 2 ? box[j] : pointNear(r, box, j >= 6);
            if (frame.isExactFor(q.xyz)) {
                given.push_back(q);
                frame.apply(q.xyz, moved.emplace_back().xyz);
                for (const double c : moved.back().xyz) EXPECT_LE(std::fabs(c), 0x1p30);
            } else if (j < 6) {
                EXPECT_TRUE(frame.mayLoseBits());
                ++numLost;
            }
        }
        EXPECT_TRUE(areSimilar(given, moved)) << i;
        // What the frame is for: coordinates no larger than the box allows, and of their range.
        Coordinates low, high;
        frame.apply(box[0].xyz, low.xyz);
        frame.apply(box[1].xyz, high.xyz);
        double reach = 0.0, side = 0.0;
        for (int k = 0; k < 3; ++k) {
            reach = std::max({reach, -low.xyz[k], high.xyz[k]});
            side = std::max(side, high.xyz[k] - low.xyz[k]);
            if (low.xyz[k] < 0.0 && box[0].xyz[k] > 0.0) ++numMoved;
        }
        EXPECT_TRUE(reach == 0.0 || reach >= 0x1p-30);
        EXPECT_TRUE(exponent < -1000 || reach <= 1.5 * side * (1.0 + 0x1p-50)) << i;
    }
    EXPECT_GT(numMoved, 1000);
    EXPECT_GT(numLosing, 1000);
    EXPECT_GT(numLost, 100);
}

TEST(ExactFrame, NamesTheLimitsOfScaling) {
    const ExactFrame none, large({-0x1p40, 0, 0}, {0x1p40, 1, 1}), unit({-1, 0, 0}, {1, 1, 1});
    EXPECT_FALSE(none.isCertifiable() || none.mayLoseBits() || unit.mayLoseBits());
    EXPECT_TRUE(none.isExactFor({1e308, 0, -5e-324}));
    EXPECT_TRUE(large.mayLoseBits() && large.isExactFor({0, 0x1p-900, 0x1.fp-1000}));
    EXPECT_FALSE(large.isExactFor({0, 0, 5e-324}));
    EXPECT_TRUE(unit.isExactFor({0x1p30, -0x1p30, 5e-324}));
    EXPECT_FALSE(unit.isExactFor({0, 0x1.1p30, 0}));
    double moved[3];
    ExactFrame({1.5e308, 0, 0}, {1.7e308, 1, 1}).apply({1.5e308, 0, 0}, moved);
    EXPECT_LT(moved[0], 0);
}

}  // namespace
