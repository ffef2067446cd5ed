#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <climits>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <functional>
#include <iomanip>
#include <limits>
#include <set>
#include <sstream>
#include <type_traits>
#include <utility>

#include "dt3Library/Dt3.h"
#include "dt3Library/GeomTest3.h"
#include "dt3Library/Varn_3D.h"
#include "dt3Library/base/MeshAccess.h"
#include "dt3Library/engine/Cavity.h"
#include "dt3Library/engine/HullTurns.h"
#include "dt3Library/engine/Locator.h"
#include "tests/support/CaptureOutput.h"
#include "tests/support/Failures.h"
#include "tests/support/MeshDigest.h"
#include "tests/support/MeshOracle.h"
#include "tests/support/PointSets.h"

namespace {

using namespace VARN3D;
using namespace support;

const std::string EMPTY_LIST = "Attention: triangulate has got an empty vector\n";
const std::string NOT_IN_MESH =
    "\n      Dt3::getTetsAroundVertex(), ERROR: pVtx does not belong to the triangulation\n\n";

TEST(Insertion, SinglesLeaveWaitingVerticesPendingUntilTheyComeAgain) {
    Varn_3D mesh;
    Points points = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1, 1, 0}, {0, 0, 1}};
    std::vector<Point3*> handles;
    const std::string output = outputOf([&] {
        for (Point3& p : points) handles.push_back(mesh.insert(p));
    });
    EXPECT_EQ(output, EMPTY_LIST);
    std::size_t waiting = 0;
    while (handles[waiting]->getOneTet() != nullptr) ++waiting;
    EXPECT_EQ(findMeshFault(mesh, points, handles, 1), "");

    std::vector<Tet3*> star;
    EXPECT_EQ(outputOf([&] { mesh.getTetsAroundVertex(handles[waiting], star); }), NOT_IN_MESH);
    EXPECT_TRUE(star.empty());

    // A batch takes only new vertices in, a single insertion what it is given.
    std::vector<Point3*> again;
    EXPECT_EQ(outputOf([&] { mesh.insert(points, again); }), "numPoints=5\n" + EMPTY_LIST);
    EXPECT_EQ(again, handles);
    EXPECT_EQ(findMeshFault(mesh, points, handles, 1), "");
    EXPECT_EQ(mesh.insert(points[waiting]), handles[waiting]);
    EXPECT_EQ(findMeshFault(mesh, points, handles, 0), "");
}

TEST(Insertion, Messages) {
    Varn_3D mesh;
    Points none;
    Points one = {{1, 2, 3}};
    std::vector<Point3*> handles;
    std::vector<Tet3*> tets;
    EXPECT_EQ(outputOf([&] { mesh.insert(none, handles); }), "numPoints=0\n");
    EXPECT_EQ(outputOf([&] { mesh.insert(one, handles); }), "numPoints=1\n");
    EXPECT_EQ(outputOf([&] { mesh.insert(one); }), "numPoints=1\n");
    EXPECT_EQ(outputOf([&] { mesh.getTetrahedra(tets); }),
              "Dt3::getAllTetrahedra(), oneTet==NULL\n");
    EXPECT_EQ(outputOf([&] { mesh.getTetsAroundVertex(handles[0], tets); }), NOT_IN_MESH);
    const std::string notEmpty =
        "\n      Dt3::insert(), WARNING: vUserHandles is not empty as it should be\n\n";
    EXPECT_EQ(outputOf([&] { mesh.insert(one, handles); }), notEmpty + "numPoints=1\n");
    EXPECT_EQ(handles.size(), 1U);
    mesh.setVerbosity(true);
    const std::string called = "\nDt3::insert(vector,vector) has been called\n";
    EXPECT_EQ(outputOf([&] { mesh.insert(none, handles); }), called + notEmpty + "numPoints=0\n");
    EXPECT_TRUE(handles.empty());
    mesh.setVerbosity(false);
    EXPECT_EQ(outputOf([&] { mesh.insert(none, handles); }), "numPoints=0\n");

    EXPECT_EQ(outputOf([&] {
                  for (Point3 p : Points{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}) mesh.insert(p);
              }),
              "");
    EXPECT_TRUE(mesh.is3D());
    EXPECT_THAT(outputOf([&] { mesh.checkValidity("here", false); }),
                testing::HasSubstr("without --checkSphereInc\n"));
    EXPECT_THAT(outputOf([&] { mesh.checkValidity("here", true); }),
                testing::HasSubstr(" with --checkSphereInc\n"));
    EXPECT_THAT(outputOf([&] { mesh.print("label"); }),
                testing::StartsWith("\n\n**** Dt3::print(label), numTets=1\nTetrahedron (ID="));
    const std::string file = testing::TempDir() + "varn3d_shown_" + std::to_string(::getpid());
    outputOf([&] { mesh.show(file, &one[0]); });
    std::ostringstream shown;
    shown << std::ifstream(file).rdbuf();
    std::remove(file.c_str());
    EXPECT_THAT(shown.str(), testing::HasSubstr("1 2 3\n1 0 0 0.5\n"));
    tets.push_back(nullptr);
    EXPECT_EQ(failureOf([&] { mesh.getTetrahedra(tets); }),
              checkReport("vTet.empty()", "dt3Library/Dt3.cpp:1300"));
}

TEST(Insertion, WithoutATetrahedronTheProcessEnds) {
    const GeomTest3 predicates;
    const Tet3* const none = nullptr;
    const Point3 p;
    std::vector<Point3*> list;
    const std::pair<std::string, std::function<void()>> cases[] = {
        {"pLastTet==NULL in Dt3::triangulate", [&] { Dt3().triangulate(list, nullptr); }},
        {"locateConflictTet", [&] { Locator(predicates).locate(&p, nullptr); }},
        {"getOrientation3, pC==NULL", [&] { predicates.getOrientation3(none, 2, &p); }}};
    for (const auto& [reason, operation] : cases) {
        const std::string message = "      goToHell, ERROR:  reason: " + reason;
        EXPECT_DEATH((exchangeMessageStream(&std::cerr), operation()), message);
    }
}

TEST(Insertion, PointsThatAreNotFiniteChangeNothing) {
    Varn_3D mesh;
    Points points = lattice(20, 5, 5, 5, 1);
    std::vector<Point3*> handles;
    outputOf([&] { mesh.insert(points, handles); });
    const std::uint64_t before = meshDigest(mesh, handles);
    const auto expectRefusal = [&](const std::string& position, const std::string& output,
                                   const std::string& who = "insert") {
        EXPECT_THAT(output,
                    testing::StartsWith("\n      Dt3::" + who + "(), ERROR: point " + position +
                                        " has a non-finite coordinate\n\n\n      Varn, , ERROR: "
                                        "Condition [ std::isfinite failed ]\n\n"
                                        "      dt3Library/Dt3.cpp:"));
        EXPECT_EQ(findMeshFault(mesh, points, handles), "");
        EXPECT_EQ(meshDigest(mesh, handles), before);
    };
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double bad : {std::nan(""), infinity, -infinity}) {
        for (const Point3& p : {Point3(bad, 0, 0), Point3(0, bad, 0), Point3(0, 0, bad)}) {
            Points batch = {{5, 5, 5}, {6, 6, 6}, p, {bad, bad, bad}};
            std::vector<Point3*> notEmpty = handles;
            expectRefusal(
                "2", outputOf([&] { EXPECT_THROW(mesh.insert(batch, notEmpty), VarnException); }));
            EXPECT_EQ(notEmpty, handles);
            Point3 single = p;
            expectRefusal("0", outputOf([&] { EXPECT_THROW(mesh.insert(single), VarnException); }));
            expectRefusal("0", outputOf([&] { EXPECT_THROW(mesh.locate(p), VarnException); }),
                          "locate");
        }
    }
}

TEST(Insertion, ExceptionsTellTheReason) {
    Varn_3D mesh;
    std::vector<Tet3*> notEmpty(1);
    const auto reasonOf = [](auto operation) {
        std::string reason;
        outputOf([&] {
            try {
                operation();
            } catch (const VarnException& error) {
                const VarnException copy(error);
                reason = copy.getReason();
            }
        });
        return reason;
    };
    EXPECT_EQ(reasonOf([&] {
                  mesh.insert(Points{{0, 0, 0}, {0, 0, std::nan("")}});
              }),
              "point 1 has a non-finite coordinate");
    EXPECT_EQ(reasonOf([&] { mesh.getTetrahedra(notEmpty); }),
              "Condition [ vTet.empty() failed ] at dt3Library/Dt3.cpp:1300");
}

TEST(Insertion, MeshesMove) {
    static_assert(std::is_nothrow_move_constructible_v<Varn_3D> &&
                  std::is_nothrow_move_assignable_v<Varn_3D> &&
                  !std::is_copy_constructible_v<Varn_3D>);
    std::vector<Varn_3D> meshes(2);
    Points points = uniform(60, 1);
    Handles handles, others;
    outputOf([&] {
        meshes[0].insert(points, handles);
        meshes[1].insert(points, others);
    });
    const std::uint64_t digest = meshDigest(meshes[0], handles);
    Varn_3D mesh(std::move(meshes[0]));
    EXPECT_EQ(meshDigest(mesh, handles), digest);
    outputOf([&] { EXPECT_THROW(meshes[0].insert(points), VarnException); });
    meshes[0] = std::move(mesh);
    meshes[1] = std::move(meshes[0]);
    points.emplace_back(2, 2, 2);
    outputOf([&] { handles.push_back(meshes[1].insert(points.back())); });
    EXPECT_EQ(findMeshFault(meshes[1], points, handles), "");
}

TEST(Insertion, TetrahedraAreCheckedWhenTheyAreMade) {
    const GeomTest3 predicates;
    TetRecycler recycler;
    Cavity cavity(predicates, recycler);
    Point3 a(0, 0, 0), b(1, 0, 0), c(0, 1, 0), d(0, 0, 1.0 / 3), e(1, 1, 0);
    const auto report = [](const char* kind, const std::vector<const Point3*>& corners) {
        std::ostringstream out;
        out << "Dt3::createTet(), ERROR: ORIENTATION3_" << kind << " ORIENTATION OF: \n"
            << std::setprecision(15);
        for (const Point3* p : corners) out << *p << "\n";
        return out.str();
    };
    EXPECT_EQ(
        failureOf([&] { cavity.createTet(&b, &a, &c, &d); }),
        report("NEGATIVE", {&b, &a, &c, &d}) + checkReport("false", "dt3Library/Dt3.cpp:980"));
    EXPECT_EQ(outputOf([&] { EXPECT_NE(cavity.createTet(&a, &b, &c, &e), nullptr); }),
              report("COPLANAR", {&a, &b, &c, &e}) + "..probably a legal situaion but observe!\n");
    Tet3* const tet = cavity.createTet(&a, &b, &c, &d);
    Point3 far(9, 9, 9);
    const WalkEnd inside{WalkEnd::Place::INSIDE, tet};
    EXPECT_THAT(outputOf([&] { EXPECT_THROW(cavity.insert(&far, inside), VarnException); }),
                testing::EndsWith("dt3Library/Dt3.cpp:574\n"));
}

void expectValid(Points batch, const Points& singles) {
    Varn_3D mesh;
    outputOf([&] {
        mesh.insert(batch);
        for (Point3 p : singles) mesh.insert(p);
        EXPECT_TRUE(mesh.checkValidity("singles", true));
    });
}

// What neighbours add to the region that they are tested from, a little or much; stars and regions
// of hundreds.
TEST(Insertion, SinglesInGapsAndLargeRegions) {
    for (std::uint64_t seed = 0; seed < 100; ++seed) {
        Random r(seed);
        // Also where the sphere test's products underflow or overflow.
        const int exponents[] = {0, 0, 0, -212 - r.below(6), 201 + r.below(5)};
        const int size = exponents[seed % 5];
        Points points = grid(5, 5, 5, std::ldexp(0.1 * r.below(40) + 0.1, size));
        const auto gap = points.begin() + r.below(125);
        Points singles = generate(12, [&] {
            const double beside = std::ldexp(r.unit() - 0.5, size - 6 - r.below(20));
            return *gap + Vector3(beside, beside * r.bell(), beside * r.bell());
        });
        singles.push_back(*gap);
        points.erase(gap);
        expectValid(points, singles);
    }
    for (std::uint64_t seed = 0; seed < 20; ++seed) {
        const Points points = shuffled(momentCurve(78), seed);
        expectValid({points.begin(), points.begin() + 8}, points);
    }
}

// What is remembered of long turns outlives the tetrahedra where they ended.
TEST(Insertion, RememberedTurnsEndWhereOthersDo) {
    Varn_3D mesh;
    HullTurns turns;
    for (const Point3& p : shuffled(skewSegments(120), 1)) {
        std::vector<Tet3*> tets;
        outputOf([&] { mesh.insert(p), mesh.getTetrahedra(tets); });
        if (mesh.getNumVertices() % 5 != 0) continue;  // meanwhile records are used again
        for (Tet3* tet : tets)
            for (int i = 0; i < 12; ++i) {
                if (i / 3 == i % 4 || tet->getOppTet(i / 3) != nullptr) continue;
                HullEdge expected{tet, i / 3, i % 4}, edge(expected);
                expected.turnToNextHullFacet();
                turns.turn(edge);
                EXPECT_TRUE(edge.tet == expected.tet && edge.opp2 == expected.opp2);
            }
    }
}

// The records of doomed tetrahedra are used again, but not while the insertion still reads them.
TEST(Insertion, RecordsAreUsedAgainFromTheNextInsertionOn) {
    Varn_3D mesh;
    std::set<Tet3*> everLive;
    std::set<Tet3*> live;
    for (Point3 p : uniform(400, 1)) {
        const std::int32_t firstNew = Tet3::runningLabel;
        outputOf([&] { mesh.insert(p); });
        std::vector<Tet3*> tets = tetsOf(mesh);
        for (Tet3* tet : tets)
            EXPECT_TRUE(MeshAccess::label(tet) < firstNew || live.count(tet) == 0);
        live = {tets.begin(), tets.end()};
        everLive.insert(tets.begin(), tets.end());
    }
    EXPECT_LT(everLive.size(), live.size() + 200);
}

// Labels count up through the life of the process, and pass 2^31 in a long one.
TEST(Insertion, MeshesAreTheSameWhereLabelsWrapAround) {
    const Points points = uniform(300, 1);
    const auto meshFromLabel = [&](std::int32_t firstLabel) {
        Varn_3D mesh;
        Points batch = points;
        Handles handles;
        outputOf([&] {
            takeFirstMargin();
            Tet3::runningLabel = firstLabel;
            mesh.insert(batch, handles);
            for (Point3 p : uniform(30, 2, -1.0, 2.0)) handles.push_back(mesh.insert(p));
            EXPECT_TRUE(mesh.checkValidity("wrap", true));
        });
        return std::pair(meshDigest(mesh, handles), labelDigest(mesh, handles, firstLabel));
    };
    const auto expected = meshFromLabel(0);
    for (const std::int32_t firstLabel : {INT_MAX - 1000, INT_MIN, -1000})
        EXPECT_TRUE(meshFromLabel(firstLabel) == expected) << firstLabel;
}

TEST(Insertion, LargeFlatInputNeedsNoSearch) {
    Points flat = planar(100000, 3000, 1);
    Varn_3D batch;
    Varn_3D singles;
    std::vector<Point3*> handles;
    outputOf([&] {
        batch.insert(flat, handles);
        for (Point3& p : flat) singles.insert(p);
    });
    std::vector<Point3*> vertices;
    singles.getVertices(vertices);
    EXPECT_EQ(vertices.size(), std::set<Point3*>(handles.begin(), handles.end()).size());
    EXPECT_FALSE(batch.is3D() || singles.is3D());
    EXPECT_EQ(batch.locate(flat[0]), nullptr);
    // The first point off the plane ends the waiting.
    Point3 apex(0, 0, 1);
    EXPECT_EQ(outputOf([&] { singles.insert(apex); }), EMPTY_LIST);
    EXPECT_TRUE(singles.is3D());
    // Amid those that wait the search for a start ends at the most recent tetrahedron.
    std::vector<Tet3*> tets = tetsOf(singles);
    ASSERT_EQ(tets.size(), 1U);
    Point3 sum(0, 0, 0), amid(flat[17] + Vector3(0.5, 0.5, 2.0));
    for (int i = 0; i < 4; ++i) sum = sum + (*tets[0]->getCorner(i) - Point3(0, 0, 0));
    Point3 centroid(sum.x() / 4, sum.y() / 4, sum.z() / 4);
    outputOf([&] {
        singles.insert(centroid);
        singles.insert(amid);
        EXPECT_TRUE(singles.checkValidity("flat", true));
    });
}

TEST(Insertion, DimensionIsWhatThePointsSpan) {
    Varn_3D mesh;
    std::vector<int> dimensions{mesh.getDimension()};
    outputOf([&] {
        for (const Point3& p :
             Points{{1, 1, 1}, {1, 1, 1}, {2, 2, 2}, {3, 3, 3}, {1, 1, 5}, {0, 0, 9}, {0, 1, 0}}) {
            mesh.insert(p);
            dimensions.push_back(mesh.getDimension());
        }
    });
    EXPECT_THAT(dimensions, testing::ElementsAre(-1, 0, 0, 1, 1, 2, 2, 3));
}

}  // namespace
