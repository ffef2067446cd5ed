#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "dt3Library/Varn_3D.h"
#include "tests/support/CaptureOutput.h"
#include "tests/support/Exact.h"
#include "tests/support/Failures.h"
#include "tests/support/PointSets.h"

// The answers of PointLocator against a look at everything, in exact arithmetic.

namespace {

using namespace VARN3D;
using namespace support;

struct QueryInput {
    const char* name;
    Points (*make)();
    /// Of all coordinates, in this order.
    double scale = 1.0;
    double offset = 0.0;
};

std::ostream& operator<<(std::ostream& out, const QueryInput& input) {
    return out << input.name;
}

const QueryInput INPUTS[] = {
    {"random", [] { return uniform(60, 1, 0, 4); }},
    {"lattice", [] { return lattice(40, 4, 4, 4, 2); }, 4},
    {"grid", [] { return grid(3, 4, 3); }, 4},
    {"cospherical", [] { return integerSphere(41); }, 4},
    {"roundSphere", [] { return sphere(60, 3); }},
    {"flatBox", [] { return lattice(40, 6, 6, 2, 4); }, 4},
    {"skewSegments", [] { return skewSegments(10); }, 4},
    {"oneTetrahedron",
     [] {
         return Points{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
     },
     4},
    {"farFromTheOrigin", [] { return lattice(40, 4, 4, 4, 5); }, 0x1p-30, 1e6},
    {"tiny", [] { return uniform(40, 6); }, 1e-310},
    {"tinyLattice", [] { return lattice(40, 4, 4, 4, 7); }, 4e-320},
    {"huge", [] { return uniform(40, 8, -1, 1); }, 1e300},
    {"hugeLattice", [] { return lattice(40, 4, 4, 4, 9); }, 1e300},
    {"coplanar", [] { return planar(30, 6, 10); }},
    {"onePoint",
     [] {
         return Points{{1, 2, 3}};
     }},
    {"empty", [] { return Points{}; }},
};

Point3 sumOf(const Point3& a, const Point3& b, double factor) {
    return {(a.x() + b.x()) * factor, (a.y() + b.y()) * factor, (a.z() + b.z()) * factor};
}

class Queries : public testing::TestWithParam<QueryInput> {
  protected:
    Queries() : points(GetParam().make()) {
        const auto placed = [](double c) { return c * GetParam().scale + GetParam().offset; };
        for (Point3& p : points) p.exchange(placed(p.x()), placed(p.y()), placed(p.z()));
        outputOf([&] {
            mesh.insert(points, handles);
            if (mesh.is3D()) mesh.getTetrahedra(tets);
        });
        center = points.empty() ? Point3(0, 0, 0) : points[points.size() / 2];
    }

    /// Mostly on elements of the mesh as far as doubles allow, and in their order at random, so
    /// that some follow their predecessors closely and others don't.
    Points queries() {
        Random r(11);
        Points result = points + Points{{0, 0, 0}};
        const auto any = [&] {
            return points.empty() ? center : points[std::size_t(r.below(int(points.size())))];
        };
        for (int i = 0; i < 100; ++i) {
            const Point3 middle = sumOf(any(), any(), 0.5);
            result.push_back(middle);
            result.push_back(sumOf(middle, any(), 0.5));
            result.push_back(sumOf(middle, sumOf(any(), any(), 0.5), 0.5));
            // Beyond the hull, or far beyond.
            const Vector3 outwards = any() - center;
            result.push_back(any() + outwards);
            result.push_back(result.back() + Vector3(40 * outwards.x, 9 * outwards.y, 0));
            if (tets.empty()) continue;
            const Tet3* tet = tets[std::size_t(r.below(int(tets.size())))];
            const Point3 onEdge = sumOf(*tet->getCorner(r.below(2)), *tet->getCorner(2), 0.5);
            result.push_back(onEdge);
            result.push_back(sumOf(onEdge, *tet->getCorner(3), 0.5));
        }
        return shuffled(result, 12);
    }

    static int side(const Tet3* tet, int i, const Point3& p) {
        Point3 corners[4];
        for (int k = 0; k < 4; ++k) corners[k] = *tet->getCorner(k);
        corners[i] = p;
        return exactOrientation(corners[0], corners[1], corners[2], corners[3]);
    }

    /// The facets of a tetrahedron in whose planes the point lies; all, and one more, if the point
    /// lies outside.
    static std::vector<int> facetsAt(const Tet3* tet, const Point3& p) {
        std::vector<int> facets;
        for (int i = 0; i < 4; ++i) {
            const int s = side(tet, i, p);
            if (s < 0) return {0, 1, 2, 3, 4};
            if (s == 0) facets.push_back(i);
        }
        return facets;
    }

    Points points;
    Point3 center;
    Varn_3D mesh;
    std::vector<Point3*> handles;
    std::vector<Tet3*> tets;
};

TEST_P(Queries, Locate) {
    PointLocator locator(mesh);
    for (const Point3& p : queries()) {
        const Location found = locator.locate(p);
        std::size_t numFacets = 5;
        for (const Tet3* tet : tets) numFacets = std::min(numFacets, facetsAt(tet, p).size());
        constexpr LocationKind KINDS[] = {LocationKind::INSIDE,  LocationKind::ON_FACET,
                                          LocationKind::ON_EDGE, LocationKind::AT_VERTEX,
                                          LocationKind::OUTSIDE, LocationKind::OUTSIDE};
        ASSERT_EQ(found.kind, KINDS[numFacets]);
        ASSERT_EQ(found.tet == nullptr, tets.empty());
        if (tets.empty()) continue;
        const std::vector<int> facets = facetsAt(found.tet, p);
        ASSERT_EQ(facets.size(), numFacets);
        if (found.kind == LocationKind::OUTSIDE) {
            ASSERT_EQ(found.tet->getOppTet(found.opp3), nullptr);
            ASSERT_LT(side(found.tet, found.opp3, p), 0);
        }
        if (found.kind == LocationKind::ON_FACET || found.kind == LocationKind::ON_EDGE) {
            std::vector<int> named = {found.opp3};
            if (found.opp2 >= 0) named.push_back(found.opp2);
            ASSERT_THAT(named, testing::UnorderedElementsAreArray(facets));
        }
        ASSERT_EQ(found.vertex != nullptr, found.kind == LocationKind::AT_VERTEX);
        if (found.vertex != nullptr)
            ASSERT_TRUE(*found.vertex == p && found.tet->hasVertex(found.vertex));
    }
}

TEST_P(Queries, NearestVertex) {
    PointLocator locator(mesh);
    for (const Point3& p : queries()) {
        const Point3* expected = points.empty() ? nullptr : handles[0];
        for (const Point3* vertex : handles)
            if (exactDistanceOrder(*vertex, *expected, p) < 0) expected = vertex;
        ASSERT_EQ(locator.nearestVertex(p), expected);
    }
}

TEST_P(Queries, ConflictRegion) {
    PointLocator locator(mesh);
    for (const Point3& p : queries()) {
        std::vector<Tet3*> expected;
        const auto isAt = [&p](const Tet3* tet) { return tet->hasVertex(p); };
        if (std::none_of(tets.begin(), tets.end(), isAt)) {
            for (Tet3* tet : tets)
                if (exactInSphere(*tet->getCorner(0), *tet->getCorner(1), *tet->getCorner(2),
                                  *tet->getCorner(3), p) > 0)
                    expected.push_back(tet);
        }
        std::vector<Tet3*> region;
        locator.conflictRegion(p, region);
        ASSERT_THAT(region, testing::UnorderedElementsAreArray(expected));
    }
}

/// A cell's corners lie on no vertex's side of it, its facets are the other cells' too, and a
/// bounded one is a polyhedron by Euler's formula.
TEST_P(Queries, VoronoiCells) {
    std::map<std::pair<const Point3*, const Point3*>, std::size_t> numCorners;
    const std::set<Point3*> vertices(handles.begin(), handles.end());
    for (const Point3* vertex : vertices) {
        if (tets.empty()) {
            outputOf([&] { EXPECT_THROW(getVoronoiCell(mesh, vertex), VarnException); });
            continue;
        }
        const VoronoiCell cell = getVoronoiCell(mesh, vertex);
        std::set<Point3> corners;
        std::size_t numHalfEdges = 0;
        for (const VoronoiFacet& facet : cell.facets) {
            numCorners[{vertex, facet.neighbour}] = facet.corners.size();
            const std::set<Point3> own(facet.corners.begin(), facet.corners.end());
            numHalfEdges += facet.corners.size();
            corners.insert(own.begin(), own.end());
            ASSERT_GE(facet.corners.size(), facet.bBounded ? 3U : 1U);
            ASSERT_TRUE(facet.bBounded || !cell.bBounded);
            for (const Point3& corner : facet.corners) {
                const auto distance = [&corner](const Point3* to) {
                    return std::hypot(corner.x() - to->x(), corner.y() - to->y(),
                                      corner.z() - to->z());
                };
                const double size = std::fabs(corner.x()) + std::fabs(corner.y()) +
                                    std::fabs(corner.z()) + distance(vertex);
                const double rounding = 1e-14 * size + 5e-323;
                ASSERT_NEAR(distance(facet.neighbour), distance(vertex), rounding);
                for (const Point3* other : vertices)
                    ASSERT_GE(distance(other), distance(vertex) - rounding);
            }
        }
        ASSERT_EQ(std::isinf(cell.volume), !cell.bBounded || GetParam().scale == 1e300);
        if (!cell.bBounded || GetParam().scale < 1e-290) continue;
        ASSERT_EQ(2 * (corners.size() + cell.facets.size()), numHalfEdges + 4);
    }
    for (const auto& [pair, count] : numCorners) {
        const auto other = numCorners.find({pair.second, pair.first});
        ASSERT_TRUE(other != numCorners.end() && other->second == count);
    }
}

INSTANTIATE_TEST_SUITE_P(, Queries, testing::ValuesIn(INPUTS),
                         [](const auto& test) { return std::string(test.param.name); });

/// Random points and their images in the walls of a box: the points' cells fill the box.
TEST(Voronoi, CellsFillABox) {
    const Points inside = uniform(100, 1);
    Points all = inside;
    for (const Point3& p : inside) {
        for (const double wall : {0.0, 2.0}) {
            all.emplace_back(wall - p.x(), p.y(), p.z());
            all.emplace_back(p.x(), wall - p.y(), p.z());
            all.emplace_back(p.x(), p.y(), wall - p.z());
        }
    }
    Varn_3D mesh;
    std::vector<Point3*> handles;
    outputOf([&] { mesh.insert(all, handles); });
    double volume = 0.0;
    for (std::size_t i = 0; i < inside.size(); ++i)
        volume += getVoronoiCell(mesh, handles[i]).volume;
    EXPECT_NEAR(volume, 1.0, 1e-13);
}

TEST(Voronoi, IsOfVerticesOfTheMeshOnly) {
    Varn_3D mesh, other;
    std::vector<Point3*> handles, others;
    outputOf([&] {
        mesh.insert(uniform(60, 1), handles);
        other.insert(uniform(60, 1), others);
    });
    const Point3 copy(*handles[0]);
    const std::vector<const Point3*> strangers = {nullptr, &copy, others[0]};
    for (const Point3* vertex : strangers) {
        const std::string message =
            outputOf([&] { EXPECT_THROW(getVoronoiCell(mesh, vertex), VarnException); });
        EXPECT_THAT(message, testing::HasSubstr("[ mesh has pVtx failed ]"));
    }
    EXPECT_FALSE(getVoronoiCell(mesh, handles[0]).facets.empty());
}

TEST(PointLocator, SeesWhatIsInserted) {
    Varn_3D mesh;
    PointLocator locator(mesh);
    EXPECT_EQ(locator.nearestVertex({0, 0, 0}), nullptr);
    std::vector<Point3*> vertices;
    // Vertices that wait, a first tetrahedron that leaves some waiting, and two batches.
    for (const Points& points : {planar(20, 9, 1), Points{{3, 3, 50}}, uniform(9, 2, -9, 9),
                                 uniform(900, 3, -9, 9), uniform(30, 4, -99, 99)}) {
        if (points.size() == 900)
            outputOf([&] { mesh.insert(points); });
        else
            for (const Point3& p : points) outputOf([&] { mesh.insert(p); });
        vertices.clear();
        mesh.getVertices(vertices);
        for (const Point3& p : uniform(100, 5, -30, 30)) {
            const Point3* nearest = locator.nearestVertex(p);
            const auto distance = [&](const Point3* v) {
                return std::hypot(v->x() - p.x(), v->y() - p.y(), v->z() - p.z());
            };
            for (const Point3* v : vertices)
                ASSERT_LE(distance(nearest), distance(v) * (1 + 1e-15));
            const Location location = locator.locate(p);
            ASSERT_EQ(location.kind != LocationKind::OUTSIDE, mesh.locate(p) != nullptr);
        }
    }
}

TEST(PointLocator, RefusesWhatIsNotFinite) {
    Varn_3D mesh;
    outputOf([&] { mesh.insert(uniform(20, 1)); });
    PointLocator moved(mesh);
    PointLocator locator(std::move(moved));
    const Point3 bad(0, std::numeric_limits<double>::quiet_NaN(), 0);
    const std::string rest = ", ERROR: point 0 has a non-finite coordinate\n\n" +
                             checkReport("std::isfinite", "dt3Library/Dt3.cpp:70");
    EXPECT_EQ(failureOf([&] { locator.locate(bad); }), "\n      PointLocator::locate()" + rest);
    EXPECT_EQ(failureOf([&] { locator.nearestVertex(bad); }),
              "\n      PointLocator::nearestVertex()" + rest);
    std::vector<Tet3*> region;
    EXPECT_EQ(failureOf([&] { locator.conflictRegion(bad, region); }),
              "\n      PointLocator::conflictRegion()" + rest);
    EXPECT_EQ(locator.locate({0.5, 0.5, 0.5}).kind, LocationKind::INSIDE);
}

}  // namespace
