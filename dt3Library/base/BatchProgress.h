#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <utility>

namespace VARN3D {

/// Tells the host now and then how far a batch is, and whether the host wants it to go on.
class BatchProgress {
  public:
    /// Gets how many of how many vertices are in. False stops the batch.
    using Function = std::function<bool(std::size_t done, std::size_t total)>;
    using Duration = std::chrono::steady_clock::duration;

    /// The function isn't called again before this time has passed.
    void setFunction(Function function, Duration between = std::chrono::milliseconds(10)) {
        tellHost = std::move(function);
        leastBetween = between;
    }

    /// To be called at the start of a batch of so many points.
    void begin(std::size_t numPoints) {
        bStopped = false;
        total = numPoints;
        lastTold = Clock::now();
    }
    /// To be called when it is known how many vertices there are to insert.
    void setTotal(std::size_t numVertices) { total = numVertices; }

    /// To be called before each small step. False from when on the host has stopped the batch.
    /// What the host's function throws passes through.
    bool goesOn(std::size_t done) {
        // Reading the clock takes longer than the smallest steps.
        constexpr unsigned STEPS_A_LOOK = 16;
        if (tellHost && ++numSteps % STEPS_A_LOOK == 0 && !bStopped) tell(done);
        return !bStopped;
    }

    /// The same in steps that the host can stop only by an exception.
    void look(std::size_t done) { static_cast<void>(goesOn(done)); }

  private:
    using Clock = std::chrono::steady_clock;

    void tell(std::size_t done) {
        const Clock::time_point now = Clock::now();
        if (now - lastTold < leastBetween) return;
        bStopped = !tellHost(done, total);
        lastTold = Clock::now();
    }

    Function tellHost;
    Duration leastBetween{};
    std::size_t total = 0;
    unsigned numSteps = 0;
    bool bStopped = false;
    Clock::time_point lastTold;
};

}  // namespace VARN3D
