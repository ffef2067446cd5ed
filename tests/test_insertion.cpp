#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <iomanip>
#include <limits>
#include <set>
#include <sstream>

#include "dt3Library/Dt3.h"
#include "dt3Library/GeomTest3.h"
#include "dt3Library/Varn_3D.h"
#include "dt3Library/base/MeshAccess.h"
#include "dt3Library/engine/Cavity.h"
#include "support/CaptureOutput.h"
#include "support/MeshDigest.h"
#include "support/MeshOracle.h"
#include "support/PointSets.h"

namespace {

using namespace VARN3D;
using namespace support;

const std::string EMPTY_LIST = "Attention: triangulate has got an empty vector\n";
const std::string NOT_IN_MESH =
    "\n      Dt3::getTetsAroundVertex(), ERROR: pVtx does not belong to the triangulation\n\n";

TEST(Insertion, singlesLeaveWaitingVerticesPendingUntilTheyComeAgain) {
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

TEST(Insertion, messages) {
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
    tets.push_back(nullptr);
    EXPECT_THAT(outputOf([&] { EXPECT_THROW(mesh.getTetrahedra(tets), VarnException); }),
                testing::StartsWith("\n      Varn, , ERROR: Condition [ vTet.empty() failed ]\n\n"
                                    "      dt3Library/Dt3.cpp:"));
}

TEST(Insertion, withoutStartTriangulateEndsTheProcess) {
    Dt3 engine(nullptr);
    std::vector<Point3*> list;
    EXPECT_DEATH(
        {
            exchangeMessageStream(&std::cerr);
            engine.triangulate(list, nullptr);
        },
        "goToHell, ERROR:  reason: pLastTet==NULL in Dt3::triangulate");
}

TEST(Insertion, pointsThatAreNotFiniteChangeNothing) {
    Varn_3D mesh;
    Points points = lattice(20, 5, 5, 5, 1);
    std::vector<Point3*> handles;
    outputOf([&] { mesh.insert(points, handles); });
    const std::uint64_t before = meshDigest(mesh, handles);
    const auto expectRefusal = [&](const std::string& position, const std::string& output) {
        EXPECT_THAT(output,
                    testing::StartsWith("\n      Dt3::insert(), ERROR: point " + position +
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
        }
    }
}

TEST(Insertion, tetrahedraAreCheckedWhenTheyAreMade) {
    const GeomTest3 predicates;
    TetRecycler recycler;
    Cavity cavity(predicates, recycler);
    Point3 a(0, 0, 0), b(1, 0, 0), c(0, 1, 0), d(0, 0, 0.1), e(1, 1, 0);
    const auto report = [](const char* kind, const std::vector<const Point3*>& corners) {
        std::ostringstream out;
        out << "Dt3::createTet(), ERROR: ORIENTATION3_" << kind << " ORIENTATION OF: \n"
            << std::setprecision(15);
        for (const Point3* p : corners) out << *p << "\n";
        return out.str();
    };
    const std::string failed = "\n      Varn, , ERROR: Condition [ ";
    EXPECT_THAT(
        outputOf([&] { EXPECT_THROW(cavity.createTet(&b, &a, &c, &d), VarnException); }),
        testing::StartsWith(report("NEGATIVE", {&b, &a, &c, &d}) + failed + "false failed ]\n"));
    EXPECT_EQ(outputOf([&] { EXPECT_NE(cavity.createTet(&a, &b, &c, &e), nullptr); }),
              report("COPLANAR", {&a, &b, &c, &e}) + "..probably a legal situaion but observe!\n");
}

// The records of doomed tetrahedra are used again, but not while the insertion still reads them.
TEST(Insertion, recordsAreUsedAgainFromTheNextInsertionOn) {
    Varn_3D mesh;
    std::set<Tet3*> everLive;
    std::set<Tet3*> live;
    for (Point3 p : uniform(400, 1)) {
        const std::int32_t firstNew = Tet3::runningLabel;
        outputOf([&] { mesh.insert(p); });
        std::vector<Tet3*> tets;
        if (mesh.is3D()) mesh.getTetrahedra(tets);
        for (Tet3* tet : tets)
            EXPECT_TRUE(MeshAccess::label(tet) < firstNew || live.count(tet) == 0);
        live = {tets.begin(), tets.end()};
        everLive.insert(tets.begin(), tets.end());
    }
    EXPECT_LT(everLive.size(), live.size() + 200);
}

// Labels count up through the life of the process, and pass 2^31 in a long one.
TEST(Insertion, meshesAreTheSameWhereLabelsWrapAround) {
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

TEST(Insertion, largeFlatInputNeedsNoSearch) {
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
    EXPECT_FALSE(batch.is3D());
    EXPECT_FALSE(singles.is3D());
    // The first point off the plane ends the waiting.
    Point3 apex(0, 0, 1);
    EXPECT_EQ(outputOf([&] { singles.insert(apex); }), EMPTY_LIST);
    EXPECT_TRUE(singles.is3D());
}

// One vertex waits and one point of the batch is a repetition: as many vertices as points.
TEST(Insertion, batchTakesInAWaitingVertexThatARepetitionHides) {
    Varn_3D mesh;
    std::vector<Point3*> handles;
    outputOf([&] {
        Point3 first(5, 5, 5);
        handles.push_back(mesh.insert(first));
        std::vector<Point3> batch{{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 0}};
        std::vector<Point3*> batchHandles;
        mesh.insert(batch, batchHandles);
        handles.insert(handles.end(), batchHandles.begin(), batchHandles.end());
    });
    ASSERT_TRUE(mesh.is3D());
    for (const Point3* handle : handles) EXPECT_NE(handle->getOneTet(), nullptr);
}

}  // namespace
