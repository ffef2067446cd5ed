#include <gtest/gtest.h>

#include <ostream>
#include <set>

#include "dt3Library/Varn_3D.h"
#include "tests/support/CaptureOutput.h"
#include "tests/support/DigestInputs.h"
#include "tests/support/MeshDigest.h"
#include "tests/support/MeshOracle.h"
#include "tests/support/PointSets.h"

namespace {

using namespace VARN3D;
using namespace support;

/// A mesh that keeps what has been inserted, and knows which vertices must be pending: those that
/// waited when a single insertion made the first tetrahedron, until they are inserted again.
class Recorder {
  public:
    void batch(Points input) {
        std::vector<Point3*> found;
        outputOf([&] { mesh.insert(input, found); });
        points = std::move(points) + input;
        handles.insert(handles.end(), found.begin(), found.end());
    }
    void singles(const Points& input) {
        for (Point3 p : input) {
            const bool bWas3D = mesh.is3D();
            outputOf([&] { handles.push_back(mesh.insert(p)); });
            points.push_back(p);
            pending.erase(handles.back());
            if (mesh.is3D() && !bWas3D) {
                const std::set<Point3*> stored(handles.begin(), handles.end());
                for (Point3* v : stored)
                    if (v->getOneTet() == nullptr) pending.insert(v);
                EXPECT_EQ(pending.size() + 4, stored.size());
            }
        }
    }
    std::string findFault() { return findMeshFault(mesh, points, handles, pending.size()); }

    Varn_3D mesh;
    Points points;
    std::vector<Point3*> handles;
    std::set<Point3*> pending;
};

using Mode = void (*)(Recorder&, const Points&);
struct NamedMode {
    const char* name;
    Mode insert;
    friend void PrintTo(const NamedMode& mode, std::ostream* out) { *out << mode.name; }
};

Points part(const Points& points, std::size_t k, std::size_t ofParts) {
    const auto at = [&](std::size_t i) {
        return points.begin() + static_cast<std::ptrdiff_t>(points.size() * i / ofParts);
    };
    return {at(k), at(k + 1)};
}

/// Sharing few cells of any grid over all: near each other, and on all sides of zero.
Points crowdAndOutlier() {
    Points points{{1e12, 3e11, -1e12}};
    for (const double x : {-1.0, -0.0, 1e-310, 1.0})
        for (const double y : {-1e-310, 0.0, 0.7})
            for (const double z : {-3.0, -0.0, 2e-310}) points.emplace_back(x, y, z);
    return shuffled(points, 18);
}

const NamedMode MODES[] = {
    {"batch", [](Recorder& r, const Points& p) { r.batch(p); }},
    {"reversedBatch", [](Recorder& r, const Points& p) { r.batch(reversed(p)); }},
    {"singles", [](Recorder& r, const Points& p) { r.singles(p); }},
    {"threeBatches",
     [](Recorder& r, const Points& p) {
         for (std::size_t k = 0; k < 3; ++k) r.batch(part(p, k, 3));
     }},
    // One vertex waits and one point is a repetition: as many vertices as points in the batch.
    {"singleThenBatchWithARepetition",
     [](Recorder& r, const Points& p) {
         if (p.empty()) return;
         r.singles({p.front()});
         r.batch(Points(p.begin() + 1, p.end()) + Points{p.back()});
     }},
    {"batchThenSingles",
     [](Recorder& r, const Points& p) {
         r.batch(part(p, 0, 2));
         r.singles(part(p, 1, 2));
     }},
    {"singlesThenBatchThenAllAgain",
     [](Recorder& r, const Points& p) {
         r.singles(part(p, 0, 3));
         r.batch(part(p, 1, 3) + part(p, 2, 3));
         r.batch(withSignsOfZerosExchanged(p));
         r.singles(withSignsOfZerosExchanged(p));
     }},
};

class MeshOracle : public testing::TestWithParam<NamedMode> {};
INSTANTIATE_TEST_SUITE_P(Modes, MeshOracle, testing::ValuesIn(MODES),
                         testing::PrintToStringParamName());

// The centre of a shell, inserted late, leaves fewer tetrahedra than there were.
TEST_P(MeshOracle, SmallLatticesAndShells) {
    for (std::uint64_t seed = 0; seed < 40; ++seed) {
        Random r(seed);
        const int n = 4 + r.below(30);
        Points points = lattice(static_cast<std::size_t>(n), 1 + r.below(4), 2 + r.below(3),
                                2 + r.below(4), seed);
        if (seed % 4 == 0) points = sphere(34 + seed, seed) + Points{{0, 0, 0}};
        Recorder recorder;
        GetParam().insert(recorder, points);
        ASSERT_EQ(recorder.findFault(), "") << "seed " << seed << ", " << n << " points";
    }
}

TEST_P(MeshOracle, DegenerateLadder) {
    const struct {
        const char* name;
        Points points;
        bool b3D;
    } ladder[] = {
        {"nothing", {}, false},
        {"one point", uniform(1, 1), false},
        {"two points", uniform(2, 2), false},
        {"three points", uniform(3, 3), false},
        {"four points", uniform(4, 4), true},
        {"one point 40 times", Points(40, Point3(0.1, 0.2, 0.3)), false},
        {"negative zeros", {{0, -0.0, 0}, {-0.0, 0.0, 0.0}, {0, 0, -0.0}}, false},
        {"collinear", lattice(30, 50, 1, 1, 5), false},
        {"collinear in space", {{0, 0, 0}, {3, 6, 9}, {1, 2, 3}, {5, 10, 15}, {2, 4, 6}}, false},
        {"coplanar", planar(30, 6, 6), false},
        {"planar grid", grid(6, 6, 1), false},
        {"line and one point", lattice(30, 50, 1, 1, 7) + Points{{0, 1, 0}}, false},
        {"plane and one point", planar(30, 6, 8) + Points{{1, 1, 1}}, true},
        {"one point and a plane", Points{{1, 1, 1}} + planar(30, 6, 9), true},
        {"two layers", shuffled(grid(4, 4, 2), 10), true},
        {"grid", grid(4, 4, 4), true},
        {"shuffled grid", shuffled(grid(3, 3, 3, 0.1), 11), true},
        {"grid twice", shuffled(grid(3, 3, 3) + grid(3, 3, 3), 12), true},
        {"integer sphere", shuffled(integerSphere(14), 13), true},
        {"sphere and centre", integerSphere(9) + Points{{0, 0, 0}}, true},
        {"nearly a sphere", sphere(25, 14), true},
        {"skew segments", skewSegments(12), true},
        {"helix", helix(25), true},
        {"last bits", uniform(25, 15, 1.0, 1.0 + 0x1p-49), true},
        {"crowd and outlier", crowdAndOutlier(), true},
        {"far apart", uniform(12, 16) + uniform(12, 17, 1e12, 2e12), true},
    };
    for (const auto& [name, points, b3D] : ladder) {
        Recorder recorder;
        GetParam().insert(recorder, points);
        EXPECT_EQ(recorder.findFault(), "") << name;
        EXPECT_EQ(recorder.mesh.is3D(), b3D) << name;
    }
}

}  // namespace
