#pragma once

/// Counters of the engine's work, for the benchmarks and for tests of the algorithms' cost. They
/// exist only in builds with VARN3D_PROFILE; elsewhere nothing of this is compiled.
#ifdef VARN3D_PROFILE

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace VARN3D {

struct Profile {
    // Of batches as well as vertex by vertex: insertions, doomed (in batches ghosts as well) and
    // created.
    std::uint64_t insertions = 0;
    std::uint64_t hullInsertions = 0;
    std::uint64_t facetTests = 0;
    std::uint64_t longestWalk = 0;
    std::uint64_t sphereTests = 0;
    /// Sphere tests that the insertion's common error bound could not decide.
    std::uint64_t sphereTestsBeyondBound = 0;
    std::uint64_t doomed = 0;
    /// Facets crossed around hull edges, on the way from a hull facet to the next.
    std::uint64_t facetsTurned = 0;
    std::uint64_t created = 0;

    // Of batches only. What is not decided there goes to the predicates, which count by themselves.
    /// Tetrahedra that walks have passed through.
    std::uint64_t tetsPassed = 0;
    /// Looks at tetrahedra from a new vertex that cached spheres have left open.
    std::uint64_t openLooks = 0;

    double secondsStore = 0.0;
    double secondsKernel = 0.0;
    double secondsWalk = 0.0;
    double secondsConflict = 0.0;
    double secondsCreation = 0.0;
    /// Of those for the conflict: looking for the part of the hull that a vertex sees.
    double secondsHull = 0.0;

    void countWalk(std::uint64_t steps) {
        facetTests += steps;
        longestWalk = std::max(longestWalk, steps);
    }
};

/// This thread's counters.
inline Profile& profile() {
    static thread_local Profile counters;
    return counters;
}

/// Adds the time of its scope to one of the profile's seconds.
class ProfileTimer {
  public:
    explicit ProfileTimer(double& seconds) : total(seconds) {}
    ~ProfileTimer() {
        total += std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }
    ProfileTimer(const ProfileTimer&) = delete;
    ProfileTimer& operator=(const ProfileTimer&) = delete;

  private:
    double& total;
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

}  // namespace VARN3D

#define VARN3D_COUNT(counter, amount) \
    (::VARN3D::profile().counter += static_cast<std::uint64_t>(amount))
#define VARN3D_COUNT_WALK(steps) ::VARN3D::profile().countWalk(static_cast<std::uint64_t>(steps))
#define VARN3D_TIME(phase) const ::VARN3D::ProfileTimer timerOfThisPhase(::VARN3D::profile().phase)

#else

#define VARN3D_COUNT(counter, amount) static_cast<void>(0)
#define VARN3D_COUNT_WALK(steps) static_cast<void>(0)
#define VARN3D_TIME(phase) static_cast<void>(0)

#endif
