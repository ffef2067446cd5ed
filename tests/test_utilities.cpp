#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <stdexcept>

#include "dt3Library/Varn_3D.h"
#include "dt3Library/testDataGenerators.h"
#include "tests/support/Failures.h"

using namespace VARN3D;

namespace {

std::vector<double> numbersOf(std::uint64_t num, double min, double max, std::uint32_t seed) {
    std::vector<double> numbers;
    generateRandomNumbers(num, min, max, numbers, seed);
    return numbers;
}

}  // namespace

TEST(Version, IsTheBuildsVersion) {
    EXPECT_EQ(getVarn3DVersion(), "Varn3D, DEBUG, v0.99.0");
    EXPECT_EQ(std::to_string(getMajorVersionNumber()) + "." +
                  std::to_string(getMinorVersionNumber()) + "." +
                  std::to_string(getRevisionNumber()),
              VARN3D_TEST_VERSION);
    EXPECT_FALSE(isRelease());
}

TEST(RandomData, ASeedRepeatsItsNumbers) {
    const std::vector<double> numbers = numbersOf(300, -2.0, 3.0, 7);
    EXPECT_EQ(numbers, numbersOf(300, -2.0, 3.0, 7));
    EXPECT_NE(numbers, numbersOf(300, -2.0, 3.0, 8));
    EXPECT_NE(numbersOf(300, -2.0, 3.0, 0), numbersOf(300, -2.0, 3.0, 0));
    for (const double number : numbers) EXPECT_TRUE(number >= -2.0 && number < 3.0);
    std::vector<double> more(1, 9.0);
    generateRandomNumbers(2, -2.0, 3.0, more, 7);
    EXPECT_EQ(more, (std::vector<double>{9.0, numbers[0], numbers[1]}));

    std::vector<Point3> points(1, Point3(9, 9, 9));
    generateRandomPoints(100, -2.0, 3.0, points, 7);
    ASSERT_EQ(points.size(), 101U);
    EXPECT_TRUE(points[0] == Point3(9, 9, 9));
    for (std::size_t i = 0; i < 100; ++i)
        EXPECT_TRUE(points[i + 1] ==
                    Point3(numbers[3 * i], numbers[3 * i + 1], numbers[3 * i + 2]));
    generateRandomPoints(0, -2.0, 3.0, points, 7);
    EXPECT_EQ(points.size(), 101U);
}

TEST(RandomData, RangesAreHalfOpen) {
    const std::pair<double, double> ranges[] = {
        {0.0, 1.0},
        {-1.0, std::nextafter(-1.0, 0.0)},
        {1e300, std::nextafter(1e300, 2e300)},
        {0.0, DBL_TRUE_MIN},
        {-DBL_MAX, DBL_MAX},
        {-1.0, DBL_MAX},
        {-DBL_MAX, 1.0},
        {-1e-300, 1e300},
    };
    for (const auto& [min, max] : ranges) {
        EXPECT_EQ(toRange(0, min, max), min);
        double previous = min;
        for (const int random : {1, RAND_MAX / 3, RAND_MAX / 2, RAND_MAX - 1, RAND_MAX}) {
            const double value = toRange(random, min, max);
            EXPECT_TRUE(value >= previous && value < max) << random << " in " << min << ", " << max;
            previous = value;
        }
    }
    EXPECT_EQ(toRange(RAND_MAX / 2 + 1, -4.0, 8.0), 2.0);
}

TEST(RandomData, EmptyRangesAndTooManyPointsAreRefused) {
    std::vector<double> numbers;
    std::vector<Point3> points;
    const std::string file = "dt3Library/testDataGenerators.cpp:";
    for (const double max : {1.0, 0.5, std::nan("")}) {
        EXPECT_EQ(support::failureOf([&] { generateRandomNumbers(1, 1.0, max, numbers, 1); }),
                  support::checkReport("min<max", file + "39"));
        EXPECT_EQ(support::failureOf([&] { generateRandomPoints(1, 1.0, max, points, 1); }),
                  support::checkReport("min<max", file + "47"));
    }
    EXPECT_THROW(generateRandomPoints(UINT64_MAX / 3 + 2, 0.0, 1.0, points, 1), std::length_error);
    EXPECT_THROW(generateRandomNumbers(std::uint64_t{1} << 62, 0.0, 1.0, numbers, 1),
                 std::length_error);
    EXPECT_TRUE(numbers.empty() && points.empty());
}
