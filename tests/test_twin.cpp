#include <gtest/gtest.h>

#include <map>
#include <ostream>

#include "dt3Library/Varn_3D.h"
#include "support/CaptureOutput.h"
#include "support/MeshDigest.h"
#include "support/PlainEngine.h"
#include "support/PointSets.h"

namespace {

using namespace VARN3D;
using namespace support;

/// The library and its plain twin, given the same insertions.
class Twins {
  public:
    void batch(Points points) {
        std::vector<Point3*> found;
        outputOf([&] { mesh.insert(points, found); });
        compareHandles(found, twin.insert(points));
    }
    void singles(const Points& points) {
        for (Point3 p : points) {
            Point3* handle = nullptr;
            outputOf([&] { handle = mesh.insert(p); });
            compareHandles({handle}, {twin.insert(p)});
        }
    }
    void expectSameLabels() const {
        EXPECT_TRUE(labelledMesh(mesh, firstLabel) == twin.labelledMesh());
    }
    void expectSameMesh() const {
        EXPECT_TRUE(plainMesh(labelledMesh(mesh, firstLabel)) == plainMesh(twin.labelledMesh()));
        for (const auto& [vertex, handle] : handles)
            EXPECT_EQ(twin.isPending(vertex), handle->getOneTet() == nullptr);
    }

  private:
    void compareHandles(const std::vector<Point3*>& found, const std::vector<int>& vertices) {
        ASSERT_EQ(found.size(), vertices.size());
        for (std::size_t i = 0; i < found.size(); ++i)
            EXPECT_EQ(handles.emplace(vertices[i], found[i]).first->second, found[i]);
    }

    PlainEngine twin;
    Varn_3D mesh;
    const std::int32_t firstLabel = Tet3::runningLabel;
    std::map<int, Point3*> handles;
};

/// A box around everything below, so that later points are inside the hull.
Points frame(double halfWidth) {
    Points corners;
    for (const double x : {-1.0, 1.0})
        for (const double y : {-1.0, 1.0})
            for (const double z : {-1.0, 1.0})
                corners.emplace_back(x * halfWidth, y * halfWidth * 1.01, z * halfWidth * 1.03);
    return corners;
}

// The sizes around powers of two are where another level of the insertion order begins.
class UniformBatch : public testing::TestWithParam<std::size_t> {};
TEST_P(UniformBatch, sameLabels) {
    Twins twins;
    twins.batch(uniform(GetParam(), 100 + GetParam()));
    twins.expectSameLabels();
    twins.expectSameMesh();
}
INSTANTIATE_TEST_SUITE_P(Twin, UniformBatch,
                         testing::Values(1, 3, 4, 5, 15, 16, 17, 31, 32, 33, 64, 65, 257, 1000,
                                         5000));

// One walk leads to the next in a batch, so even points on facets and edges end in one tetrahedron.
struct NamedSet {
    const char* name;
    Points points;
    friend void PrintTo(const NamedSet& set, std::ostream* out) { *out << set.name; }
};
class AnyBatch : public testing::TestWithParam<NamedSet> {};
TEST_P(AnyBatch, sameLabels) {
    Twins twins;
    twins.batch(GetParam().points);
    twins.expectSameLabels();
    twins.expectSameMesh();
}
class AnySingles : public testing::TestWithParam<NamedSet> {};
TEST_P(AnySingles, sameMesh) {
    Twins twins;
    twins.singles(GetParam().points);
    twins.expectSameMesh();
}
const NamedSet SETS[] = {
    {"gaussian", gaussian(1500, 1)},
    {"lattice", lattice(400, 6, 6, 6, 2)},
    {"flatLattice", lattice(300, 30, 30, 2, 3)},
    {"sortedGrid", grid(7, 7, 7)},
    {"shuffledGrid", shuffled(grid(8, 8, 8, 0.1), 4)},
    {"sphere", sphere(800, 5)},
    {"integerSphere", shuffled(integerSphere(81), 6) + integerSphere(9)},
    {"helix", helix(120)},
    {"skewSegments", skewSegments(40)},
    {"planeThenApex", planar(40, 5, 7) + Points{Point3(2, 2, 50)}},
    {"apexFirst", Points{Point3(2, 2, 50)} + planar(300, 20, 8)},
    {"oneFarOutlier", uniform(300, 9) + Points{Point3(1e9, -3, 1e-9)}},
    {"lastBits", uniform(200, 10, 1.0, 1.0 + 0x1p-48)},
};
const auto nameOfSet = [](const testing::TestParamInfo<NamedSet>& info) { return info.param.name; };
INSTANTIATE_TEST_SUITE_P(Twin, AnyBatch, testing::ValuesIn(SETS), nameOfSet);
INSTANTIATE_TEST_SUITE_P(Twin, AnySingles, testing::ValuesIn(SETS), nameOfSet);

TEST(Twin, insertionsInsideTheHullHaveTheSameLabelsWhereverTheWalkStarts) {
    Twins twins;
    twins.batch(frame(10.0) + uniform(200, 21));
    twins.expectSameLabels();
    twins.batch(gaussian(500, 22));
    twins.expectSameLabels();
    twins.singles(uniform(300, 23, -4.0, 5.0));
    twins.batch(uniform(700, 24, -5.0, 5.0));
    twins.expectSameLabels();
    twins.expectSameMesh();
}

// Where the insertion order leads to long walks, the library starts them elsewhere; beyond the hull
// they then end at another facet.
TEST(Twin, longWalksDontChangeTheMesh) {
    Points slab = uniform(1500, 25);
    for (Point3& p : slab) p.exchange(p.x() * 1e-3, p.y(), p.z());
    for (const Points& points : {helix(700), slab}) {
        Twins twins;
        twins.batch(points);
        twins.expectSameMesh();
    }
}

TEST(Twin, growingBoxes) {
    Twins twins;
    for (int i = 0; i < 6; ++i) {
        twins.batch(uniform(60, 30 + static_cast<std::uint64_t>(i), -(1 << 2 * i), 1 << 3 * i));
        twins.singles(uniform(20, 40 + static_cast<std::uint64_t>(i), -(1 << 2 * i), 1 << 3 * i));
        twins.expectSameMesh();
    }
}

TEST(Twin, repeatedAndMixedLatticeInsertions) {
    for (std::uint64_t seed = 0; seed < 20; ++seed) {
        Twins twins;
        twins.singles(lattice(seed % 7, 3, 3, 3, seed));
        twins.batch(lattice(30, 4, 4, 4, seed + 50));
        twins.expectSameMesh();
        twins.batch(lattice(30, 6, 5, 4, seed + 100));
        twins.singles(lattice(20, 7, 5, 3, seed + 150));
        twins.expectSameMesh();
    }
}

}  // namespace
