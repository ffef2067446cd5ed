#include "driver.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <stdexcept>

namespace bench {

namespace {

/// A line "NAME:   1234 kB" of the process's status, in bytes. The status counts the memory of this
/// program alone; the peak that getrusage knows begins with that of the process that started it.
std::size_t statusBytes(const std::string& name) {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word) {
        if (word == name + ":") {
            std::size_t kilobytes = 0;
            status >> kilobytes;
            return kilobytes * 1024;
        }
    }
    throw std::runtime_error("no " + name + " in /proc/self/status");
}

void forgetPeak() {
    std::ofstream("/proc/self/clear_refs") << "5";
}

std::string escaped(const std::string& text) {
    std::string result;
    for (const char c : text) {
        if (c == '"' || c == '\\') result += '\\';
        result += static_cast<unsigned char>(c) < 0x20 ? ' ' : c;
    }
    return result;
}

void print(const char* name, const QueryPass& pass) {
    std::printf("\"%s\": %.9f, \"%sSum\": %.17g, ", name, pass.seconds, name, pass.sum);
}

void print(const Report& report, std::size_t points) {
    std::printf(
        "{\"engine\": \"%s\", \"points\": %zu, \"seconds\": %.9f, \"cpuSeconds\": %.9f, "
        "\"listTetrahedra\": %.9f, \"listVertices\": %.9f, \"indexedMesh\": %.9f, ",
        ENGINE_NAME, points, report.seconds, report.cpuSeconds, report.listTetrahedra,
        report.listVertices, report.indexedMesh);
    print("locate", report.locate);
    print("locateOn", report.locateOn);
    print("nearest", report.nearest);
    print("nearestOn", report.nearestOn);
    std::printf(
        "\"peakBytes\": %zu, \"tetrahedra\": %zu, \"vertices\": %zu, \"volume\": %.17g, "
        "\"valid\": %s, \"fault\": \"%s\", \"profile\": {%s}}\n",
        report.peakBytes, report.tetrahedra, report.vertices, report.volume,
        report.valid ? "true" : "false", escaped(report.fault).c_str(), report.profile.c_str());
}

std::size_t parsedCount(const char* text) {
    char* end = nullptr;
    const unsigned long long value = std::strtoull(text, &end, 10);
    if (end == text || *end != '\0') throw std::runtime_error(std::string("no count: ") + text);
    return static_cast<std::size_t>(value);
}

Job parsedJob(int argc, char** argv) {
    if (argc < 2) {
        throw std::runtime_error(
            "usage: POINTS [--batches COUNT | --singles-after COUNT] [--queries POINTS] [--check]");
    }
    Job job{PointFile(argv[1]), 1, 0, {}, false};
    for (int i = 2; i < argc; ++i) {
        const std::string option = argv[i];
        if (option == "--singles-after" && i + 1 < argc) {
            job.batches = 0;
            job.head = parsedCount(argv[++i]);
        } else if (option == "--check") {
            job.fullCheck = true;
        } else if (option == "--batches" && i + 1 < argc) {
            job.batches = parsedCount(argv[++i]);
        } else if (option == "--queries" && i + 1 < argc) {
            const PointFile queries(argv[++i]);
            job.queries.assign(queries.begin(), queries.end());
        } else {
            throw std::runtime_error("unknown option " + option);
        }
    }
    if (job.points.size() == 0 && !job.queries.empty())
        throw std::runtime_error("queries need points to be asked of");
    return job;
}

}  // namespace

double cpuSeconds() {
    timespec now;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

PointFile::PointFile(const std::string& path) {
    const int file = open(path.c_str(), O_RDONLY);
    struct stat info = {};
    if (file < 0 || fstat(file, &info) != 0) throw std::runtime_error("cannot read " + path);
    count = static_cast<std::size_t>(info.st_size) / sizeof(Position);
    if (count > 0) {
        void* memory = mmap(nullptr, count * sizeof(Position), PROT_READ, MAP_PRIVATE, file, 0);
        if (memory == MAP_FAILED) throw std::runtime_error("cannot map " + path);
        first = static_cast<const Position*>(memory);
    }
    close(file);
}

void PointFile::release() {
    if (first != nullptr) munmap(const_cast<Position*>(first), count * sizeof(Position));
    first = nullptr;
    count = 0;
}

void Report::addTetrahedron(const double* a, const double* b, const double* c, const double* d) {
    std::array<const double*, 4> corners = {a, b, c, d};
    // Edges along a path sorted on the longest axis are as short as they can be, so that a
    // tetrahedron between far clusters does not lose its volume to rounding.
    int axis = 0;
    double extent = -1.0;
    for (int i = 0; i < 3; ++i) {
        const auto [low, high] = std::minmax({a[i], b[i], c[i], d[i]});
        if (high - low > extent) {
            extent = high - low;
            axis = i;
        }
    }
    std::sort(corners.begin(), corners.end(),
              [axis](const double* p, const double* q) { return p[axis] < q[axis]; });
    std::array<Position, 3> edges;
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t k = 0; k < 3; ++k) edges[i][k] = corners[i + 1][k] - corners[i][k];
    const auto& [u, v, w] = edges;
    const double determinant = u[0] * (v[1] * w[2] - v[2] * w[1]) -
                               u[1] * (v[0] * w[2] - v[2] * w[0]) +
                               u[2] * (v[0] * w[1] - v[1] * w[0]);
    volume += std::abs(determinant) / 6.0;
    ++tetrahedra;
}

void Report::reject(const std::string& why) {
    valid = false;
    fault = why;
}

Measurement::Measurement() {
    forgetPeak();
    residentBefore = statusBytes("VmRSS");
    cpuStart = cpuSeconds();
    start = std::chrono::steady_clock::now();
}

void Measurement::stop(Report& report) const {
    report.seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    report.cpuSeconds = cpuSeconds() - cpuStart;
    report.peakBytes = statusBytes("VmHWM") - residentBefore;
}

}  // namespace bench

int main(int argc, char** argv) {
    try {
        bench::Job job = bench::parsedJob(argc, argv);
        const std::size_t points = job.points.size();
        bench::Report report;
        bench::triangulate(job, report);
        bench::print(report, points);
        return report.valid ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 2;
    }
}
