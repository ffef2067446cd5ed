#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <numeric>
#include <utility>

#include "dt3Library/GeomTest3.h"
#include "dt3Library/predicates/predicateStages.h"
#include "tests/support/PredicateInput.h"

using namespace VARN3D;
using namespace support;

namespace {

constexpr int NUM_CALLS = 5000;

using StageCounts = std::uint64_t[NUM_PREDICATE_STAGES];

/// The share of the calls that a stage or one before it decided.
double shareUpTo(PredicateStage stage, const StageCounts& counts) {
    const auto upTo = std::accumulate(counts, counts + static_cast<int>(stage) + 1, 0.0);
    return upTo / NUM_CALLS;
}

PredicateCounters countStages(const char* name) {
    const auto& inputs = predicateInputs();
    const auto input = std::find_if(inputs.begin(), inputs.end(), [name](const auto& candidate) {
        return std::strcmp(candidate.name, name) == 0;
    });
    const GeomTest3 predicates;
    Random r(3);
    predicateCounters() = PredicateCounters();
    for (int i = 0; i < NUM_CALLS; ++i) {
        auto [a, b, c, d, e] = input->make(r);
        if (predicates.getOrientation3(&a, &b, &c, &d) == ORIENTATION3_NEGATIVE) std::swap(a, b);
        scratchTet().setProperties(&a, &b, &c, &d);
        predicates.sphereInclusionTest(&scratchTet(), &e);
    }
    EXPECT_EQ(shareUpTo(PredicateStage::WIDE_INTEGER, predicateCounters().orientation), 1.0);
    EXPECT_EQ(shareUpTo(PredicateStage::WIDE_INTEGER, predicateCounters().sphere), 1.0);
    return predicateCounters();
}

constexpr PredicateStage FILTER = PredicateStage::FILTER;
constexpr PredicateStage LATTICE = PredicateStage::LATTICE;
constexpr PredicateStage SMALL = PredicateStage::SMALL_INTEGER;
constexpr PredicateStage MEDIUM = PredicateStage::MEDIUM_INTEGER;

}  // namespace

/// What a family costs: a filter that quietly stops working, or a stage that passes on what it
/// should decide, shows here.
TEST(PredicateStages, DecideTheFamiliesTheyAreMadeFor) {
    const struct {
        const char* family;
        /// At least `orientationShare` of the calls are decided by `orientationStage` or before.
        PredicateStage orientationStage;
        double orientationShare;
        PredicateStage sphereStage;
        double sphereShare;
    } expectations[] = {
        {"uniform", FILTER, 1.0, FILTER, 0.999},
        {"large", FILTER, 1.0, FILTER, 0.999},
        {"small", FILTER, 1.0, MEDIUM, 1.0},
        {"lattice", LATTICE, 1.0, LATTICE, 1.0},
        {"boxOfIntegers", LATTICE, 1.0, LATTICE, 1.0},
        {"latticeTooLargeForDoubles", FILTER, 0.999, SMALL, 1.0},
        {"boxOfTenths", SMALL, 1.0, SMALL, 1.0},
        {"boxOfThirdsFarOff", SMALL, 1.0, SMALL, 1.0},
        {"sphere", FILTER, 0.999, SMALL, 0.8},
        {"sphere", FILTER, 0.999, MEDIUM, 1.0},
        {"symmetricBox", MEDIUM, 1.0, MEDIUM, 1.0},
        {"boxBelowUnderflow", MEDIUM, 1.0, MEDIUM, 1.0},
        {"boxOfDenormals", MEDIUM, 1.0, MEDIUM, 1.0},
        {"largest", MEDIUM, 1.0, MEDIUM, 1.0},
    };
    for (const auto& expected : expectations) {
        const PredicateCounters counters = countStages(expected.family);
        EXPECT_GE(shareUpTo(expected.orientationStage, counters.orientation),
                  expected.orientationShare)
            << expected.family;
        EXPECT_GE(shareUpTo(expected.sphereStage, counters.sphere), expected.sphereShare)
            << expected.family;
    }
}
