#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "dt3Library/Point3.h"

namespace VARN3D {

/// Numbers the input points from 0 over all insertions, and remembers those that are no vertices of
/// their own: a vertex has the number of its first point.
class PointNumbers {
  public:
    /// What points have that come after 2^31 others.
    static constexpr std::int32_t NONE = -1;

    explicit PointNumbers(std::uint64_t countedBefore = 0) : numCounted(countedBefore) {}

    /// Counts n points. Returns how many came before.
    std::uint64_t count(std::size_t n) {
        numCounted += n;
        return numCounted - n;
    }
    static std::int32_t numberAt(std::uint64_t place) {
        return place <= INT32_MAX ? static_cast<std::int32_t>(place) : NONE;
    }
    /// Whether every point counted has a number.
    bool areComplete() const { return numCounted <= std::uint64_t{INT32_MAX} + 1; }

    /// Remembers a point that has the coordinates of this vertex.
    void addDuplicate(std::uint64_t place, const Point3* vertex);
    /// The same for those of a batch whose vertices aren't new. Nothing is looked at unless there
    /// are such. O(n).
    void addDuplicates(std::uint64_t firstPlace, const std::vector<Point3*>& vVertices,
                       std::size_t numNew);

    /// Pairs of a point and the first with its coordinates, by ascending points.
    const std::vector<std::array<std::int32_t, 2>>& getDuplicates() const { return duplicates; }

    struct Mark {
        std::uint64_t numCounted;
        std::size_t numDuplicates;
    };
    Mark mark() const { return {numCounted, duplicates.size()}; }
    void rewind(const Mark& mark) noexcept {
        numCounted = mark.numCounted;
        duplicates.resize(mark.numDuplicates);
    }

  private:
    std::uint64_t numCounted;
    std::vector<std::array<std::int32_t, 2>> duplicates;
};

}  // namespace VARN3D
