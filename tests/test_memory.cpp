#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <new>
#include <streambuf>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "dt3Library/Varn_3D.h"
#include "dt3Library/base/MeshAccess.h"
#include "tests/support/CaptureOutput.h"
#include "tests/support/MeshDigest.h"
#include "tests/support/PointSets.h"

// Memory that runs out: every allocation of a succession of insertions fails in turn. The linker
// sends the library's calls of malloc, calloc and realloc here (--wrap), and the operators replace
// the standard ones.

namespace {

long allocationsUntilFailure = -1;  // -1: none fails
/// The standard library asked for memory that it can do without.
bool bTolerated = false;

bool failsNow() {
    if (allocationsUntilFailure < 0) return false;
    return allocationsUntilFailure-- == 0;
}

void* required(void* memory) {
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

}  // namespace

extern "C" {
void* __real_malloc(std::size_t size);
void* __wrap_malloc(std::size_t size) {
    return failsNow() ? nullptr : __real_malloc(size);
}
void* __real_calloc(std::size_t number, std::size_t size);
void* __wrap_calloc(std::size_t number, std::size_t size) {
    return failsNow() ? nullptr : __real_calloc(number, size);
}
void* __real_realloc(void* memory, std::size_t size);
void* __wrap_realloc(void* memory, std::size_t size) {
    return failsNow() ? nullptr : __real_realloc(memory, size);
}
}

void* operator new(std::size_t size) {
    return required(failsNow() ? nullptr : __real_malloc(size == 0 ? 1 : size));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    if (!failsNow()) return __real_malloc(size == 0 ? 1 : size);
    bTolerated = true;
    return nullptr;
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    const auto unit = static_cast<std::size_t>(alignment);
    return required(failsNow() ? nullptr : std::aligned_alloc(unit, (size / unit + 1) * unit));
}
// Inlined, they look to the compiler like a free() of what new made.
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    std::free(memory);
}

namespace {

using namespace support;
using VARN3D::Point3;
using VARN3D::Tet3;
using VARN3D::Varn_3D;

/// What an insertion that fails may change: nothing at all, what is stored, or also the mesh, by
/// some of its points.
enum class Changes { NOTHING, STORE, MESH };

struct Insertion {
    Points points;
    bool bSingle;
    Changes changes;
};
using Insertions = std::vector<Insertion>;

Insertions singles(const Points& points) {
    Insertions insertions;
    for (const Point3& p : points) insertions.push_back({{p}, true, Changes::STORE});
    return insertions;
}

/// A batch that is small against the mesh.
Insertions pointByPoint(const Points& points) {
    return {{points, false, Changes::MESH}};
}

Insertions atOnce(const Points& points) {
    return {{points, false, Changes::NOTHING}};
}

using support::operator+;

Insertions operator+(Insertions a, const Insertions& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

struct Case {
    const char* name;
    Insertions (*insertions)();
    friend void PrintTo(const Case& c, std::ostream* out) { *out << c.name; }
};

/// No four on a circle.
Points flat(int n) {
    Points points = momentCurve(n);
    for (Point3& p : points) p.exchange(p.x(), p.y(), 0.0);
    return points;
}

Points rod(std::size_t n) {
    Points points = uniform(n, 6);
    for (Point3& p : points) p.exchange(p.x(), 1000.0 * p.y(), p.z());
    return points;
}

// What is missing after an interrupted batch joins the mesh later than it would have: only points
// in general position have the same mesh then.
const Case CASES[] = {
    {"singles", [] { return singles(uniform(60, 1)); }},
    {"degenerateSingles", [] { return singles(grid(3, 3, 3) + lattice(40, 5, 5, 5, 1)); }},
    {"longHullTurnsAndLargeRegions",
     [] { return singles(momentCurve(50) + lattice(20, 2, 2, 2, 1) + uniform(5, 1)); }},
    {"batches",
     [] {
         return atOnce(uniform(150, 1)) + singles(uniform(30, 2, -1.0, 2.0)) +
                pointByPoint(uniform(40, 3)) + atOnce(uniform(300, 4, -1.0, 2.0)) +
                singles(uniform(30, 5));
     }},
    {"batchesAfterWaiting",
     [] {
         return atOnce(flat(12)) + singles(uniform(1, 2)) + atOnce(uniform(60, 3, -1.0, 2.0)) +
                singles(flat(12));
     }},
    {"firstBatchWithVerticesWaiting",
     [] {
         return singles(flat(9)) +
                atOnce(flat(12) + uniform(40, 3) + uniform(60, 4, 0.5, 0.5 + 1e-9)) +
                singles(uniform(5, 5));
     }},
    {"longWalks", [] { return atOnce(rod(1000)); }},
};

/// All that a host sees, to the last pointer.
struct View {
    using Tetrahedron = std::tuple<const Tet3*, std::array<const void*, 8>, int, int>;
    std::vector<Tetrahedron> tets;
    std::vector<std::pair<const Point3*, const Tet3*>> vertices;
    std::vector<std::array<std::int32_t, 2>> duplicates;
    int dimension;

    explicit View(const Varn_3D& triangulation)
        : duplicates(triangulation.getIndexedMesh().duplicates),
          dimension(triangulation.getDimension()) {
        std::vector<Point3*> points;
        triangulation.getVertices(points);
        for (const Point3* p : points) vertices.emplace_back(p, p->getOneTet());
        std::vector<Tet3*> all = tetsOf(triangulation);
        for (const Tet3* tet : all) {
            std::array<const void*, 8> around;
            for (std::size_t i = 0; i < 4; ++i) {
                around[i] = tet->getCorner(static_cast<int>(i));
                around[i + 4] = tet->getOppTet(static_cast<int>(i));
            }
            tets.emplace_back(tet, around, VARN3D::MeshAccess::label(tet), tet->getCustomIndex());
        }
        EXPECT_EQ(triangulation.getNumTetrahedra(), tets.size());
        EXPECT_EQ(triangulation.getNumVertices(), vertices.size());
        EXPECT_EQ(triangulation.getNumWaiting(),
                  std::count_if(vertices.begin(), vertices.end(),
                                [](const auto& vertex) { return vertex.second == nullptr; }));
    }
    bool operator==(const View& other) const {
        return tets == other.tets && vertices == other.vertices && duplicates == other.duplicates &&
               dimension == other.dimension;
    }
};

void setCustomIndices(const Varn_3D& triangulation) {
    std::vector<Tet3*> tets = tetsOf(triangulation);
    for (std::size_t i = 0; i < tets.size(); ++i) tets[i]->setCustomIndex(static_cast<int>(i));
}

/// Allocates nothing of its own where there is room for one handle.
void insert(Varn_3D& triangulation, Insertion& insertion, std::vector<Point3*>& handles) {
    handles.clear();
    if (insertion.bSingle)
        handles.push_back(triangulation.insert(insertion.points.front()));
    else
        triangulation.insert(insertion.points, handles);
}

void ask(Varn_3D& triangulation, const Point3& point) {
    std::vector<Point3*> vertices;
    triangulation.getVertices(vertices);
    std::vector<Tet3*> tets = tetsOf(triangulation);
    tets.clear();
    triangulation.getTetsAroundVertex(vertices.front(), tets);
    triangulation.locate(point);
}

/// Whether the operation fails for want of memory where so many allocations succeed; counts those
/// that it makes.
template <class Operation>
bool fails(long& untilFailure, Operation operation) {
    if (untilFailure < 0) {
        operation();
        return false;
    }
    bool bFailed = false;
    allocationsUntilFailure = untilFailure;
    try {
        operation();
    } catch (const std::bad_alloc&) {
        bFailed = true;
    } catch (const VARN3D::VarnException&) {
        bFailed = true;
    }
    untilFailure = std::exchange(allocationsUntilFailure, -1);
    EXPECT_EQ(bFailed, untilFailure < 0 && !std::exchange(bTolerated, false));
    return bFailed;
}

class OutOfMemory : public testing::TestWithParam<Case> {
  protected:
    /// Whether the case ran to its end with the n-th allocation failing (so that there is no n-th).
    bool survives(long n) {
        std::unique_ptr<Varn_3D> triangulation;
        long untilFailure = n;
        if (fails(untilFailure, [&] { triangulation = std::make_unique<Varn_3D>(); })) return false;
        std::vector<Point3*> handles;
        Points points;
        std::size_t numCounted = 0;
        for (Insertion& insertion : insertions) {
            std::vector<Point3*> found(1);
            setCustomIndices(*triangulation);
            const View before(*triangulation);
            if (fails(untilFailure, [&] { insert(*triangulation, insertion, found); })) {
                const View after(*triangulation);
                EXPECT_TRUE(insertion.changes == Changes::MESH || after.tets == before.tets) << n;
                EXPECT_TRUE(insertion.changes != Changes::NOTHING ||
                            (after == before && found.empty()))
                    << n;
                EXPECT_TRUE(triangulation->checkValidity("interrupted", true)) << n;
                // Points count unless their batch has left no trace.
                if (insertion.bSingle || !found.empty()) numCounted += insertion.points.size();
                insert(*triangulation, insertion, found);
            }
            numCounted += insertion.points.size();
            handles.insert(handles.end(), found.begin(), found.end());
            points.insert(points.end(), insertion.points.begin(), insertion.points.end());
        }
        if (fails(untilFailure, [&] { ask(*triangulation, points.front()); }))
            ask(*triangulation, points.front());
        EXPECT_TRUE(sortedMesh(tetsOf(*triangulation)) == mesh) << n;
        EXPECT_TRUE(triangulation->checkValidity("finished", true)) << n;
        EXPECT_TRUE(std::equal(points.begin(), points.end(), handles.begin(), handles.end(),
                               [](const Point3& p, const Point3* handle) { return p == *handle; }))
            << n;
        EXPECT_EQ(triangulation->insert(Point3(-9, -9, -9))->getIndex(), numCounted) << n;
        return untilFailure >= 0;
    }

    Insertions insertions = GetParam().insertions();
    /// In the end, where nothing fails.
    SortedMesh mesh;
};

TEST_P(OutOfMemory, LeavesAMeshToGoOnWith) {
    Varn_3D::setMessageStream(nullptr);  // which allocates nothing
    Varn_3D sound;
    std::vector<Point3*> handles;
    for (Insertion& insertion : insertions) insert(sound, insertion, handles);
    mesh = sortedMesh(tetsOf(sound));
    long n = 0;
    while (!survives(n) && !HasFailure()) ++n;
    EXPECT_GT(n, 20);
    Varn_3D::setMessageStream(&std::cout);
}

INSTANTIATE_TEST_SUITE_P(Every, OutOfMemory, testing::ValuesIn(CASES),
                         testing::PrintToStringParamName());

TEST(Memory, ThatRunsOutIsReported) {
    Varn_3D triangulation;
    std::vector<Point3> points = uniform(150, 1);
    const std::string output = outputOf([&] {
        allocationsUntilFailure = 0;
        EXPECT_THROW(triangulation.insert(points), std::bad_alloc);
        allocationsUntilFailure = -1;
    });
    EXPECT_NE(output.find("      Varn_3D::insert(), ERROR: Out of memory\n"), std::string::npos);
}

}  // namespace
