#include "dt3Library/testDataGenerators.h"

#include <atomic>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <stdexcept>

#include "dt3Library/base/EngineCheck.h"

namespace VARN3D {

namespace {

/// With seed 0, calls within the same second still get different numbers.
void seedByTime() {
    static std::atomic<unsigned> numCalls{0};
    std::srand(static_cast<unsigned>(std::time(nullptr)));
    for (unsigned call = numCalls.fetch_add(1); call > 0; --call)
        std::srand(static_cast<unsigned>(std::rand()));
}

}  // namespace

double toRange(int random, double min, double max) {
    const double part = static_cast<double>(random) * (1.0 / (static_cast<double>(RAND_MAX) + 1.0));
    const double extent = max - min;
    const double value =
        std::isfinite(extent) ? min + part * extent : min * (1.0 - part) + max * part;
    return value < max ? value : std::nextafter(max, min);
}

void generateRandomNumbers(std::uint64_t num, double min, double max, std::vector<double>& out,
                           std::uint32_t seed) {
    if (seed != 0)
        std::srand(seed);
    else
        seedByTime();
    engineCheck(min < max, checks::RANGE_OF_NUMBERS);
    if (num > out.max_size() - out.size()) throw std::length_error("generateRandomNumbers");
    auto number = out.insert(out.end(), static_cast<std::size_t>(num), 0.0);
    for (; number != out.end(); ++number) *number = toRange(std::rand(), min, max);
}

void generateRandomPoints(std::uint64_t num, double min, double max, std::vector<Point3>& out,
                          std::uint32_t seed) {
    engineCheck(min < max, checks::RANGE_OF_POINTS);
    std::vector<double> numbers;
    if (num > numbers.max_size() / 3) throw std::length_error("generateRandomPoints");
    generateRandomNumbers(3 * num, min, max, numbers, seed);
    for (std::size_t i = 0; i < numbers.size(); i += 3)
        out.emplace_back(numbers[i], numbers[i + 1], numbers[i + 2]);
}

}  // namespace VARN3D
