#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <vector>

#include "dt3Library/Varn_3D.h"
#include "dt3Library/store/PointNumbers.h"
#include "tests/support/CaptureOutput.h"
#include "tests/support/Exact.h"
#include "tests/support/MeshDigest.h"
#include "tests/support/PointSets.h"

namespace {

using namespace VARN3D;
using namespace support;
using Number = std::int32_t;

/// A triangulation, and all points in the order in which they have gone in.
struct Host {
    Varn_3D mesh;
    Points points;
    Handles handles;

    void batch(const Points& batchPoints) {
        Handles batchHandles;
        outputOf([&] { mesh.insert(batchPoints, batchHandles); });
        add(batchPoints, batchHandles);
    }
    void coordinates(const Points& batchPoints) {
        std::vector<double> xyz;
        for (const Point3& p : batchPoints) xyz.insert(xyz.end(), {p.x(), p.y(), p.z()});
        Handles batchHandles;
        outputOf([&] { mesh.insert(xyz.data(), batchPoints.size(), batchHandles); });
        add(batchPoints, batchHandles);
    }
    void singles(const Points& singlePoints) {
        Handles singleHandles;
        outputOf([&] {
            for (const Point3& p : singlePoints) singleHandles.push_back(mesh.insert(p));
        });
        add(singlePoints, singleHandles);
    }
    void add(const Points& more, const Handles& moreHandles) {
        points = points + more;
        handles.insert(handles.end(), moreHandles.begin(), moreHandles.end());
    }
};

std::map<Coordinates, Number> firstOfEach(const Points& points) {
    std::map<Coordinates, Number> first;
    for (std::size_t i = 0; i < points.size(); ++i)
        first.emplace(coordinatesOf(points[i]), static_cast<Number>(i));
    return first;
}

void expectHull(const IndexedMesh& indexed, const Host& host, const std::vector<Facet3>& facets) {
    std::multiset<std::array<Number, 3>> listed;
    for (const Facet3& facet : facets) {
        int k[3];
        facet.getTet()->getFacetIndices(facet.getOpp3Index(), k[0], k[1], k[2]);
        EXPECT_EQ(facet.getTet()->getOppTet(facet.getOpp3Index()), nullptr);
        const auto number = [&](int i) { return facet.getTet()->getCorner(k[i])->getIndex(); };
        listed.insert({number(0), number(1), number(2)});
    }
    EXPECT_EQ(listed, std::multiset(indexed.hull.begin(), indexed.hull.end()));
    std::set<std::array<Number, 2>> edges;
    for (const auto& f : indexed.hull) {
        const auto& p = [&](std::size_t i) { return host.points[static_cast<std::size_t>(f[i])]; };
        for (const Point3* q : host.handles)
            if (q->getOneTet() != nullptr) ASSERT_GE(exactOrientation(p(0), p(2), p(1), *q), 0);
        for (std::size_t i = 0; i < 3; ++i) edges.insert({f[i], f[(i + 1) % 3]});
    }
    EXPECT_EQ(edges.size(), 3 * indexed.hull.size());
    for (const auto& [a, b] : edges) EXPECT_EQ(edges.count({b, a}), 1U);  // it is closed
}

/// Compares everything that numbers tell with the points and the records.
void expectNumbers(const Host& host) {
    const auto first = firstOfEach(host.points);
    std::vector<std::array<Number, 2>> duplicates;
    std::size_t waiting = 0;
    for (std::size_t i = 0; i < host.points.size(); ++i) {
        const Number number = first.at(coordinatesOf(host.points[i]));
        EXPECT_EQ(host.handles[i]->getIndex(), number);
        if (number != static_cast<Number>(i))
            duplicates.push_back({static_cast<Number>(i), number});
        else if (host.handles[i]->getOneTet() == nullptr)
            ++waiting;
    }
    const IndexedMesh indexed = host.mesh.getIndexedMesh();
    EXPECT_EQ(indexed.duplicates, duplicates);
    EXPECT_EQ(host.mesh.getNumVertices(), first.size());
    EXPECT_EQ(host.mesh.getNumWaiting(), waiting);

    std::vector<Tet3*> tets;
    outputOf([&] { host.mesh.getTetrahedra(tets); });
    EXPECT_EQ(host.mesh.getNumTetrahedra(), tets.size());
    ASSERT_EQ(indexed.tetrahedra.size(), tets.size());
    ASSERT_EQ(indexed.neighbours.size(), tets.size());
    for (std::size_t t = 0; t < tets.size(); ++t)
        for (int i = 0; i < 4; ++i) {
            const auto k = static_cast<std::size_t>(i);
            EXPECT_EQ(indexed.tetrahedra[t][k], tets[t]->getCorner(i)->getIndex());
            const Number other = indexed.neighbours[t][k];
            EXPECT_EQ(other < 0 ? nullptr : tets.at(static_cast<std::size_t>(other)),
                      tets[t]->getOppTet(i));
        }
    std::vector<Facet3> facets;
    host.mesh.getHullFacets(facets);
    expectHull(indexed, host, facets);
}

TEST(Numbers, AreThoseOfTheFirstPointsWhateverWayTheyGoIn) {
    for (std::uint64_t seed = 0; seed < 6; ++seed) {
        Random random(seed);
        Host host;
        if (seed % 3 == 0) host.singles(planar(12, 3, seed));
        for (int step = 0; step < 5; ++step) {
            const auto size = static_cast<std::size_t>(random.below(step == 2 ? 150 : 40));
            Points points = lattice(size, 6, 5, 4, 10 * seed + static_cast<unsigned>(step));
            for (Point3& p : points) p.setIndex(77);  // the host's, of no meaning here
            switch (random.below(3)) {
                case 0:
                    host.batch(points);
                    break;
                case 1:
                    host.coordinates(points);
                    break;
                default:
                    host.singles(points);
            }
            expectNumbers(host);
        }
    }
}

// More than eight points in a cell, and zeros of both signs.
TEST(Numbers, CrowdedCellsKeepTheFirst) {
    Host host;
    Points points = lattice(400, 4, 4, 4, 5);
    for (std::size_t i = 0; i < points.size(); i += 3)
        points[i].exchange(-0.0 * points[i].x() + points[i].x(), points[i].y() * 1.0,
                           points[i].z() == 0.0 ? -0.0 : points[i].z());
    for (Point3& p : points) p.exchange(p.x() * 1e-9, p.y() * 1e-9, p.z() * 1e-9);
    points.emplace_back(1e6, 1, 1);
    host.batch(points);
    expectNumbers(host);
    host.coordinates(reversed(points));
    expectNumbers(host);
}

TEST(Numbers, TheHostsOwnLeaveTheMeshAlone) {
    Host host;
    host.batch(lattice(200, 5, 5, 5, 1));
    const IndexedMesh before = host.mesh.getIndexedMesh();
    for (Point3* vertex : host.handles) vertex->setIndex(vertex->getIndex() % 7);
    const Point3 copy(*host.handles[8]);
    EXPECT_EQ(copy.getIndex(), host.handles[8]->getIndex());
    const IndexedMesh after = host.mesh.getIndexedMesh();
    EXPECT_EQ(after.tetrahedra, before.tetrahedra);
    EXPECT_EQ(after.hull, before.hull);
    // Points from a mesh in which they had numbers.
    Host other;
    Points points;
    for (const Point3* vertex : host.handles) points.push_back(*vertex);
    other.batch(reversed(points));
    expectNumbers(other);
}

// The large blocks that a process allocates first come from another place than those that it takes
// later, which gives the blocks of either mesh another order of addresses.
TEST(Numbers, FollowTheInsertionsAndNotTheMemory) {
    const auto meshOfSingles = [] {
        Host host;
        host.batch(uniform(500, 1));
        host.singles(uniform(8000, 2));
        return host.mesh.getIndexedMesh();
    };
    Host().batch(grid(2, 2, 2));  // the first of a process has another margin than all others
    const IndexedMesh first = meshOfSingles();
    const IndexedMesh second = meshOfSingles();
    EXPECT_TRUE(first.tetrahedra == second.tetrahedra);
    EXPECT_TRUE(first.neighbours == second.neighbours);
    EXPECT_TRUE(first.hull == second.hull);
}

TEST(Numbers, RefusedPointsHaveNone) {
    Host host;
    Handles none;
    const double bad[] = {0, 0, 0, 1, 2, HUGE_VAL};
    outputOf([&] {
        EXPECT_THROW(host.mesh.insert(bad, 2, none), VarnException);
        EXPECT_THROW(host.mesh.insert(Point3(bad[5], 0, 0)), VarnException);
        host.mesh.insert(nullptr, 0, none);
    });
    host.batch(grid(2, 2, 2));
    expectNumbers(host);
}

TEST(Numbers, EndAtTheLastOf32Bits) {
    PointNumbers numbers((std::uint64_t{1} << 31) - 1);
    Point3 vertex(0, 0, 0);
    EXPECT_EQ(PointNumbers::numberAt(numbers.count(1)), INT32_MAX);
    EXPECT_TRUE(numbers.areComplete());
    const PointNumbers::Mark mark = numbers.mark();
    const std::uint64_t place = numbers.count(1);
    EXPECT_EQ(PointNumbers::numberAt(place), PointNumbers::NONE);
    EXPECT_FALSE(numbers.areComplete());
    numbers.addDuplicates(place - 1, {&vertex, &vertex}, 0);
    EXPECT_THAT(numbers.getDuplicates(),
                testing::ElementsAre(std::array<Number, 2>{INT32_MAX, -1}));
    numbers.rewind(mark);
    EXPECT_TRUE(numbers.areComplete());
    EXPECT_TRUE(numbers.getDuplicates().empty());
}

}  // namespace
