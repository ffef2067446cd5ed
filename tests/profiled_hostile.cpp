#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <string>
#include <vector>

#include "dt3Library/Profile.h"
#include "dt3Library/Varn_3D.h"
#include "tests/support/CaptureOutput.h"
#include "tests/support/PointSets.h"

// Sets that drive engines into wrong meshes, endless walks or quadratic time. Each must give a
// valid mesh, stay far from the walk's watchdog (10000 facets), and do no more work a tetrahedron
// than uniform points do: that is counted, not timed. VARN3D_HOSTILE_SCALE multiplies the sets'
// sizes; with it the table printed is the one in docs/reliability.md.

namespace {

using support::operator+;
using support::Points;
using VARN3D::Point3;
using VARN3D::Profile;
using VARN3D::Varn_3D;

std::size_t scaled(std::size_t n) {
    static const char* const text = std::getenv("VARN3D_HOSTILE_SCALE");
    return text == nullptr ? n : n * static_cast<std::size_t>(std::atoi(text));
}

int scaledSide(int n) {
    const double factor = std::cbrt(static_cast<double>(scaled(1)));
    return static_cast<int>(n * factor);
}

Points box(std::size_t n, double x, double y, double z) {
    Points points = support::uniform(n, 11);
    for (Point3& p : points) p.exchange(p.x() * x, p.y() * y, p.z() * z);
    return points;
}

/// A helix along axis 0, 1 or 2.
Points helixAlong(int axis, std::size_t n) {
    Points points = support::helix(n);
    for (Point3& p : points) {
        if (axis == 0) p.exchange(p.z(), p.x(), p.y());
        if (axis == 1) p.exchange(p.x(), p.z(), p.y());
    }
    return points;
}

Points sorted(Points points) {
    std::sort(points.begin(), points.end());
    return points;
}

Points lastBits(std::size_t n) {
    support::Random r(5);
    return support::generate(n, [&] {
        const double x = 1.0 + r.below(64) * 0x1p-52;
        const double y = 1.0 + r.below(64) * 0x1p-52;
        return Point3(x, y, 1.0 + r.below(64) * 0x1p-52);
    });
}

/// Sixty clusters around the origin, each within a cell of the one before.
Points nestedClusters(std::size_t n) {
    Points points = support::uniform(n, 7);
    for (std::size_t i = 0; i < n; ++i) {
        const double size = std::ldexp(1.0, -12 * static_cast<int>(i % 60));
        points[i] = Point3(points[i].x() * size, points[i].y() * size, points[i].z() * size);
    }
    return points;
}

/// In order: each new point sees hull facets at edges of high degree.
Points momentCurve(int n) {
    Points points;
    for (int i = 0; i < n; ++i) {
        const double t = static_cast<double>(i) / n;
        points.emplace_back(t, t * t, t * t * t);
    }
    return points;
}

enum class Mode { Batch, Singles, FarBatches };

struct Case {
    const char* name;
    Points (*make)();
    Mode mode = Mode::Batch;
};

const Case CASES[] = {
    {"uniform", [] { return support::uniform(scaled(20000), 1); }},
    {"rodX", [] { return box(scaled(20000), 1, 1e-3, 1e-3); }},
    {"rodY", [] { return box(scaled(20000), 1e-3, 1, 1e-3); }},
    {"rodZ", [] { return box(scaled(20000), 1e-3, 1e-3, 1); }},
    {"thinRodY", [] { return box(scaled(20000), 1e-9, 1, 1e-9); }},
    {"slabX", [] { return box(scaled(20000), 1e-3, 1, 1); }},
    {"slabY", [] { return box(scaled(20000), 1, 1e-3, 1); }},
    {"slabZ", [] { return box(scaled(20000), 1, 1, 1e-3); }},
    {"helixX", [] { return helixAlong(0, scaled(20000)); }},
    {"helixY", [] { return helixAlong(1, scaled(20000)); }},
    {"helixZ", [] { return helixAlong(2, scaled(20000)); }},
    {"outlierRandom",
     [] { return support::uniform(scaled(20000), 1) + Points{Point3(1e6, 1e6, 1e6)}; }},
    {"outlierSorted",
     [] { return sorted(support::uniform(scaled(20000), 1)) + Points{Point3(1e9, 0, -1e9)}; }},
    {"nearlyCospherical", [] { return support::sphere(scaled(5000), 1); }},
    {"cospherical", [] { return support::integerSphere(1001 * 25) + Points{Point3(0, 0, 0)}; }},
    {"gridSorted", [] { return support::grid(scaledSide(20), scaledSide(20), scaledSide(20)); }},
    {"gridShuffled",
     [] {
         return support::shuffled(
             support::grid(scaledSide(20), scaledSide(20), scaledSide(20), 0.1), 3);
     }},
    {"skewSegments", [] { return support::skewSegments(200); }},
    {"planeAndApex",
     [] { return support::planar(scaled(20000), 300, 1) + Points{Point3(5, 5, 1e3)}; }},
    {"lineAndTwo",
     [] {
         Points points = box(scaled(5000), 1, 0, 0);
         return points + Points{Point3(0.3, 1, 0), Point3(0.6, 0, 1)};
     }},
    {"duplicates", [] { return support::lattice(scaled(50000), 4, 4, 4, 1); }},
    {"lastBits", [] { return lastBits(scaled(20000)); }},
    {"nestedClusters", [] { return nestedClusters(scaled(20000)); }},
    {"farBatches", [] { return support::uniform(scaled(5000), 1); }, Mode::FarBatches},
    {"rodXSingles", [] { return box(scaled(5000), 1, 1e-3, 1e-3); }, Mode::Singles},
    {"rodYSingles", [] { return box(scaled(5000), 1e-3, 1, 1e-3); }, Mode::Singles},
    {"gridSortedSingles", [] { return support::grid(12, 12, 12); }, Mode::Singles},
    {"outlierSingles",
     [] { return Points{Point3(1e9, 0, -1e9)} + support::uniform(scaled(5000), 1); },
     Mode::Singles},
    {"momentSingles", [] { return momentCurve(300); }, Mode::Singles},
};

void insertAll(Varn_3D& mesh, Points points, Mode mode) {
    if (mode == Mode::Batch) mesh.insert(points);
    if (mode == Mode::Singles)
        for (Point3& p : points) mesh.insert(p);
    if (mode == Mode::FarBatches) {
        for (int i = 0; i < 6; ++i) {
            mesh.insert(points);
            for (Point3& p : points) p.exchange(p.x() * 10 - 1000 * i, p.y() + 100, p.z() * 3);
        }
    }
}

class Hostile : public testing::TestWithParam<Case> {};

TEST_P(Hostile, validAndCheap) {
    const Case& set = GetParam();
    Varn_3D mesh;
    bool bValid = false;
    std::vector<VARN3D::Tet3*> tets;
    support::outputOf([&] {
        insertAll(mesh, set.make(), set.mode);
        mesh.getTetrahedra(tets);
        bValid = mesh.checkValidity(set.name, true);
    });
    EXPECT_TRUE(bValid);

    const Profile& work = VARN3D::profile();
    const auto insertions = static_cast<double>(work.insertions);
    const double walk = static_cast<double>(work.facetTests) / insertions;
    const double created = static_cast<double>(work.created) / insertions;
    const double turned = static_cast<double>(work.facetsTurned) / insertions;
    const double tests = static_cast<double>(work.sphereTests) / static_cast<double>(work.created);
    std::cout << std::fixed << std::setprecision(1) << "| " << set.name << " | " << work.insertions
              << " | " << tets.size() << " | " << created << " | " << walk << " | "
              << work.longestWalk << " | " << turned << " | " << tests << " |" << std::endl;
    EXPECT_LT(work.longestWalk, 2500U) << "the watchdog barks at 10000";
    EXPECT_LT(walk, 20.0 + 3.0 * created) << "facets tested a point, 13 on uniform points";
    EXPECT_LT(turned, 20.0 + 5.0 * created) << "facets crossed around hull edges";
    EXPECT_LT(tests, 4.0) << "sphere tests a created tetrahedron, 1.8 on uniform points";
}

INSTANTIATE_TEST_SUITE_P(Sets, Hostile, testing::ValuesIn(CASES),
                         [](const auto& set) { return std::string(set.param.name); });

}  // namespace
