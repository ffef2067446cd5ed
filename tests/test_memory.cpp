#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <new>
#include <streambuf>
#include <string>
#include <vector>

#include "dt3Library/Varn_3D.h"
#include "tests/support/CaptureOutput.h"
#include "tests/support/PointSets.h"

// Memory that runs out: every allocation of a scenario fails in turn. The linker sends the
// library's calls of malloc here (--wrap), and the operators replace the standard ones.

namespace {

long allocationsUntilFailure = -1;  // -1: none fails

bool failsNow() {
    if (allocationsUntilFailure < 0) return false;
    return allocationsUntilFailure-- == 0;
}

}  // namespace

extern "C" {
void* __real_malloc(std::size_t size);
void* __wrap_malloc(std::size_t size) {
    return failsNow() ? nullptr : __real_malloc(size);
}
}

void* operator new(std::size_t size) {
    void* memory = failsNow() ? nullptr : __real_malloc(size == 0 ? 1 : size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
// Inlined, they look to the compiler like a free() of what new made.
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

namespace {

using VARN3D::Point3;
using VARN3D::Tet3;
using VARN3D::Varn_3D;

/// A host's work on one engine: two batches, single points, queries. What each step returned is
/// kept outside, so that it can be looked at after a failure.
struct Scenario {
    std::vector<Point3> first = support::uniform(150, 1);
    std::vector<Point3> second = support::uniform(150, 2);
    std::vector<Point3> singles = support::uniform(60, 3);
    std::vector<Point3*> firstHandles;
    std::vector<Point3*> singleHandles;
    bool bFirstDone = false;

    void run(Varn_3D& triangulation) {
        triangulation.insert(first, firstHandles);
        bFirstDone = true;
        std::vector<Point3*> secondHandles;
        triangulation.insert(second, secondHandles);
        for (Point3& p : singles) singleHandles.push_back(triangulation.insert(p));
        triangulation.locate(singles.front());
        std::vector<Tet3*> tets;
        triangulation.getTetrahedra(tets);
        tets.clear();
        triangulation.getTetsAroundVertex(firstHandles.front(), tets);
        std::vector<Point3*> vertices;
        triangulation.getVertices(vertices);
    }
};

/// Whether the scenario ran to its end with the n-th allocation failing (so that there is no n-th).
bool survives(long n) {
    Scenario scenario;
    scenario.firstHandles.reserve(scenario.first.size());
    scenario.singleHandles.reserve(scenario.singles.size());
    bool bFailed = false;
    Varn_3D* triangulation = nullptr;
    allocationsUntilFailure = n;
    try {
        triangulation = new Varn_3D;
        scenario.run(*triangulation);
    } catch (const std::bad_alloc&) {
        bFailed = true;
    } catch (const VARN3D::VarnException&) {
        bFailed = true;
    }
    const bool bReached = allocationsUntilFailure < 0;
    allocationsUntilFailure = -1;
    EXPECT_EQ(bFailed, bReached) << "allocation " << n;
    if (scenario.bFirstDone) {
        for (std::size_t i = 0; i < scenario.first.size(); ++i)
            EXPECT_TRUE(*scenario.firstHandles[i] == scenario.first[i]) << n << " " << i;
    }
    for (std::size_t i = 0; i < scenario.singleHandles.size(); ++i)
        EXPECT_TRUE(*scenario.singleHandles[i] == scenario.singles[i]) << n << " " << i;
    delete triangulation;
    return !bFailed;
}

/// Takes the library's messages without allocating anything for them.
class Silence : public std::streambuf {
  public:
    Silence() : previous(std::cout.rdbuf(this)) {}
    ~Silence() override { std::cout.rdbuf(previous); }
    Silence(const Silence&) = delete;
    Silence& operator=(const Silence&) = delete;

  protected:
    int overflow(int c) override { return c; }

  private:
    std::streambuf* previous;
};

TEST(OutOfMemory, EveryAllocationMayFail) {
    const Silence silence;
    long n = 0;
    while (!survives(n) && !HasFailure()) ++n;
    EXPECT_GT(n, 60);
}

TEST(OutOfMemory, IsReported) {
    Varn_3D triangulation;
    std::vector<Point3> points = support::uniform(150, 1);
    const std::string output = support::outputOf([&] {
        allocationsUntilFailure = 0;
        EXPECT_THROW(triangulation.insert(points), std::bad_alloc);
        allocationsUntilFailure = -1;
    });
    EXPECT_NE(output.find("      Varn_3D::insert(), ERROR: Out of memory\n"), std::string::npos);
}

}  // namespace
