#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace bench {

using Position = std::array<double, 3>;

/// A file of raw double triples, mapped into memory so that releasing it gives its pages back and
/// no engine is spared an allocation by what the reading left behind.
class PointFile {
  public:
    explicit PointFile(const std::string& path);
    PointFile(PointFile&& other) noexcept
        : first(std::exchange(other.first, nullptr)), count(std::exchange(other.count, 0)) {}
    PointFile& operator=(PointFile&&) = delete;
    ~PointFile() { release(); }

    std::size_t size() const { return count; }
    const Position* begin() const { return first; }
    const Position* end() const { return first + count; }
    const Position& operator[](std::size_t i) const { return first[i]; }
    void release();

  private:
    const Position* first = nullptr;
    std::size_t count = 0;
};

/// What one process is asked to do.
struct Job {
    PointFile points;
    /// The points come in this many equal batches, in the file's order; 0: one by one, but for the
    /// first `head`, which come as a batch.
    std::size_t batches = 1;
    std::size_t head = 0;
    /// Points to look for in the finished mesh, in this order.
    std::vector<Position> queries;
    /// Whether the engine shall also check its whole mesh, outside the measured time.
    bool fullCheck = false;

    /// The bounds [first, last) of a batch.
    std::pair<std::size_t, std::size_t> batch(std::size_t which, std::size_t size) const {
        return {size * which / batches, size * (which + 1) / batches};
    }
};

/// One pass over the queries: its time in seconds, negative when the engine has no such query, and
/// a sum over the answers in which all engines agree.
struct QueryPass {
    double seconds = -1.0;
    double sum = 0.0;
};

/// What one process found. Times are in seconds; negative: not measured.
struct Report {
    double seconds = -1.0;
    double cpuSeconds = -1.0;
    double listTetrahedra = -1.0;
    double listVertices = -1.0;
    double indexedMesh = -1.0;
    /// @{
    /// Each query on its own, and each from where the last one ended. The sums are of the points in
    /// the hull, and of the squared distances to the nearest vertices.
    QueryPass locate;
    QueryPass locateOn;
    QueryPass nearest;
    QueryPass nearestOn;
    /// @}
    /// Growth of the resident memory over the state with the engine's input in place, at its peak.
    std::size_t peakBytes = 0;
    std::size_t tetrahedra = 0;
    /// The points of the mesh: equal input points are one.
    std::size_t vertices = 0;
    double volume = 0.0;
    /// False when the engine itself found a fault; `fault` then says which.
    bool valid = true;
    std::string fault;
    /// Members of a JSON object: the engine's account of its own work.
    std::string profile;

    void addTetrahedron(const double* a, const double* b, const double* c, const double* d);
    void reject(const std::string& why);
};

/// Measures time and memory of the triangulation between construction and `stop`.
class Measurement {
  public:
    /// To be constructed when the engine's input is in place and the file is released.
    Measurement();
    void stop(Report& report) const;

  private:
    std::size_t residentBefore;
    double cpuStart;
    std::chrono::steady_clock::time_point start;
};

/// The process's own time so far, which other work on the machine disturbs less.
double cpuSeconds();

template <typename Action>
double secondsOf(Action&& action) {
    const double start = cpuSeconds();
    action();
    return cpuSeconds() - start;
}

template <typename Answer>
QueryPass passOver(const std::vector<Position>& queries, Answer&& answer) {
    QueryPass pass;
    pass.seconds = secondsOf([&] {
        for (const Position& query : queries) pass.sum += answer(query);
    });
    return pass;
}

inline double squaredDistance(const Position& a, const Position& b) {
    const Position d = {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
    return d[0] * d[0] + d[1] * d[1] + d[2] * d[2];
}

/// The engine's name, and its part of the work; each driver program defines both.
extern const char* const ENGINE_NAME;
void triangulate(Job& job, Report& report);

}  // namespace bench
