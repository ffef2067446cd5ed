#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "dt3Library/Ball3.h"
#include "dt3Library/Dt3.h"
#include "dt3Library/Visualizer3.h"
#include "dt3Library/base/MeshAccess.h"
#include "tests/support/CaptureOutput.h"
#include "tests/support/Failures.h"
#include "tests/support/PointSets.h"

namespace {

using namespace VARN3D;
using namespace support;

template <class... Parts>
std::string text(const Parts&... parts) {
    std::ostringstream out;
    (out << ... << parts);
    return out.str();
}

std::string contentOf(const std::string& fileName) {
    std::ifstream in(fileName);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

std::string coordinates(const Point3& p) {
    return text(p.x(), " ", p.y(), " ", p.z(), "\n");
}

// The shapes of a Geomview file.
std::string tetFigure(const Tet3& tet, const std::string& color) {
    std::string figure;
    for (int i = 0; i < 4; ++i) {
        figure += "{\nOFF\n3 1 0\n";
        for (int j = 0; j < 4; ++j)
            if (j != i) figure += coordinates(*tet.getCorner(j));
        figure += "3 0 1 2 " + color + "\n}\n";
    }
    return figure;
}

std::string pointFigure(const Point3& p, int size, const std::string& color) {
    return text("LIST\n{\nappearance{linewidth ", size, "}\nVECT\n1 1 1\n1 \n1 \n") +
           coordinates(p) + color + "\n}\n";
}

std::string listOf(const std::string& figures) {
    return "LIST\n{\n" + figures + "}\n";
}

/// What `show` writes about two tetrahedra, colours in turn from the first one given.
std::string shownFile(const std::vector<Tet3*>& tets, std::size_t firstColor,
                      const Point3* marked) {
    std::string figures;
    for (std::size_t t = 0; t < tets.size(); ++t) {
        figures += tetFigure(*tets[t], Visualizer3::colorArray[(firstColor + t) % 14]);
        for (int i = 0; i < 4; ++i) figures += pointFigure(*tets[t]->getCorner(i), 5, "0 1 0 0.5");
    }
    if (marked != nullptr) figures += pointFigure(*marked, 10, "1 0 0 0.5");
    return listOf(figures);
}

std::size_t colorCursor() {
    const std::string color = Visualizer3::getColor();
    std::size_t i = 0;
    while (color != Visualizer3::colorArray[i]) ++i;
    return i;
}

std::string banner(const std::string& message) {
    const std::string rule = std::string(message.length() + 36, '*') + "\n";
    return "\n\n" + rule + rule + std::string(16, ' ') + message + "\n" + rule + rule;
}

std::string head(std::size_t numTets, bool bSpheres) {
    return text("\n\n** CheckValidity at [ here]: Number of tetrahedra: ", numTets,
                "\n   with --checkvisited\n   ", bSpheres ? "with" : "without",
                " --checkSphereInc\n   vTets.size()=", numTets, "\n");
}

const std::string PASSED = "** CheckValidity at (here) has been finished, seems OK\n\n";

std::string openedFile(const std::string& name) {
    return "Visualizer, writing " + name + "\n  Writing " + name + "\n";
}

std::string failedCheck(const std::string& condition, int line) {
    return support::checkReport(condition, text("dt3Library/Dt3.cpp:", line));
}

/// Two tetrahedra on either side of a triangle, in a directory of its own for the dump files.
class Validity : public testing::Test {
  protected:
    void SetUp() override {
        directory = std::filesystem::path(testing::TempDir()) /
                    ("varn3d_validity_" + std::to_string(::getpid()));
        std::filesystem::create_directories(directory);
        std::filesystem::current_path(directory);
        Points points = {{0, 0, 0}, {4, 0, 0}, {0, 4, 0}, {1, 1, 3}, {1, 1, -3}};
        outputOf([&] { engine.insert(points, handles); });
        engine.getAllTetrahedra(tets);
        ASSERT_EQ(tets.size(), 2U);
        while (tets[0]->getOppTet(shared) != tets[1]) ++shared;
    }
    void TearDown() override {
        std::filesystem::current_path(directory.parent_path());
        std::filesystem::remove_all(directory);
    }
    std::string check(bool bSpheres, bool bExpected) {
        return outputOf([&] { EXPECT_EQ(engine.checkValidity("here", bSpheres), bExpected); });
    }
    /// The only dump file so far, removed.
    std::string takeDump(const std::string& ending, std::string& content) {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator("."))
            names.push_back(entry.path().filename().string());
        if (names.size() != 1) return "not one file";
        EXPECT_TRUE(testing::internal::RE::FullMatch(names[0], "[0-9]{5}_" + ending)) << names[0];
        content = contentOf(names[0]);
        std::filesystem::remove(names[0]);
        return names[0];
    }

    std::filesystem::path directory;
    Dt3 engine;
    std::vector<Point3*> handles;
    std::vector<Tet3*> tets;
    /// Index of the shared facet in the first tetrahedron.
    int shared = 0;
};

TEST_F(Validity, SoundMeshesPass) {
    EXPECT_EQ(check(true, true), head(2, true) + PASSED);
    EXPECT_EQ(check(false, true), head(2, false) + PASSED);
    // A listed vertex that equals one of the mesh is replaced by it, and nothing changes.
    Point3 equal(*handles[2]);
    std::vector<Point3*> list{&equal};
    engine.triangulate(list, tets[0]);
    EXPECT_EQ(list[0], handles[2]);
    EXPECT_EQ(check(true, true), head(2, true) + PASSED);
    const Dt3 empty;
    EXPECT_EQ(outputOf([&] { EXPECT_TRUE(empty.checkValidity("here", true)); }),
              "Dt3::getAllTetrahedra(), oneTet==NULL\n" + head(0, true) + PASSED);
}

TEST_F(Validity, AMarkLeftBehindIsAnError) {
    for (Tet3* tet : tets) {
        MeshAccess::visited(tet) = true;
        EXPECT_EQ(support::failureOf([&] { engine.checkValidity("here", false); }),
                  head(2, false) +
                      "\n      Dt3::CheckValidity(), ERROR: pcurrentTet->hasBeenvisited=true\n\n" +
                      text(*tet) + "\n" + failedCheck("false", 1410));
        MeshAccess::visited(tet) = false;
    }
    EXPECT_EQ(check(true, true), head(2, true) + PASSED);
}

TEST_F(Validity, InsertionsBesideAMarkFail) {
    const double z = tets[0]->getCorner(shared)->z();
    const Points points = {{1.02, 1.03, 0.9 * z}};  // in tets[0], beside its own corner
    const auto failure = [&] {
        return outputOf([&] { EXPECT_THROW(engine.insert(points[0]), VarnException); });
    };
    for (Tet3* tet : tets) MeshAccess::visited(tet) = true;
    EXPECT_EQ(failure(), failedCheck("!pLastTet->hasBeenVisited", 350));
    std::vector<Point3*> more;
    EXPECT_EQ(outputOf([&] { EXPECT_THROW(engine.insert(points, more), VarnException); }),
              "numPoints=1\n" + failedCheck("!pCurTet->hasBeenVisited", 789));
    // A marked neighbour is taken for one of the region, and three facets find no partner.
    MeshAccess::visited(tets[0]) = false;
    for (Point3* handle : handles) handle->setOneTet(tets[0]);
    EXPECT_EQ(failure(),
              "numStoredTCS after insertVertex: 3\n" + failedCheck("numStoredTCS==0", 920));
}

TEST_F(Validity, AVertexOnTheWrongSideIsReportedAndDumped) {
    for (const auto& [z, side] : {std::pair(2.0, "positive"), std::pair(0.0, "coplanar")}) {
        Tet3* tet = tets[0];
        Point3* vertex = tet->getOppVtxInOppTet(shared, false);
        const double before = vertex->z();
        vertex->exchange(1, 1, before < 0 ? z : -z);
        const std::size_t color = colorCursor();
        const std::string output = check(false, false);
        std::string dump;
        const std::string name = takeDump("negSideBug.list", dump);
        EXPECT_EQ(output, head(2, false) + banner("ERROR: checkValidity at [here]") +
                              text("Dt3::checkValidity, HUH, vertex ", vertex,
                                   " should be on the negative side, tet=\n", *tet,
                                   "oppIndex=", shared, ", Vertex=", vertex, "=", *vertex,
                                   "\ncheckValidity: ", side, "\n  Dt3::show(): vTets.size()=2\n") +
                              openedFile(name));
        EXPECT_EQ(dump, shownFile(tets, color, vertex));
        vertex->exchange(1, 1, before);
    }
    EXPECT_EQ(check(true, true), head(2, true) + PASSED);
}

TEST_F(Validity, AVertexInASphereIsReportedAndDumped) {
    Tet3* tet = tets[0];
    Point3* vertex = tet->getOppVtxInOppTet(shared, false);
    vertex->exchange(1, 1, vertex->z() / 4);
    EXPECT_EQ(check(false, true), head(2, false) + PASSED);
    const std::string output = check(true, false);
    std::string dump;
    const std::string name = takeDump("sphereIncBug.list", dump);
    EXPECT_EQ(output, head(2, true) + banner("checkValidity: ERROR ERROR ERROR") +
                          text("Dt3::checkValidity, HUH - sphereIncTest failed: \n", *tet,
                               ", Vertex=", vertex, "=", *vertex, "\n") +
                          openedFile(name));
    const Point3 centre = tet->getCircumcenter();
    const Ball3 ball(centre.x(), centre.y(), centre.z(), 8 + centre.z() * centre.z());
    EXPECT_EQ(dump, listOf(tetFigure(*tet, "1 0 0 0.5") + pointFigure(*vertex, 8, "1 1 1 0.5") +
                           text("{\nappearance { +edge -face }\nSPHERE ", ball.getRadius(), " ",
                                centre.x(), " ", centre.y(), " ", centre.z(), "\n}\n")));
}

TEST_F(Validity, OneWayLinksEndTheProcess) {
    for (std::size_t t = 0; t < 2; ++t) {
        Tet3*& link = MeshAccess::neighbour(tets[t], tets[t]->getIntraTetIndex(tets[1 - t]));
        Tet3* const before = link;
        link = nullptr;
        EXPECT_EXIT(
            {
                exchangeMessageStream(&std::cerr);
                engine.checkValidity("here", true);
            },
            testing::ExitedWithCode(1), "Tet3::getIntraTetIndex went wrong: ");
        link = before;
    }
}

TEST_F(Validity, CrossedLinksAreFoundWhereverTheyAre) {
    Dt3 larger;
    std::vector<Point3*> largerHandles;
    std::vector<Tet3*> all;
    outputOf([&] { larger.insert(gaussian(12, 1), largerHandles); });
    larger.getAllTetrahedra(all);
    int numCrossed = 0;
    outputOf([&] {
        for (Tet3* tet : all)
            for (int i = 0; i < 4; ++i)
                for (int j = 0; j < i; ++j) {
                    Tet3*& a = MeshAccess::neighbour(tet, i);
                    Tet3*& b = MeshAccess::neighbour(tet, j);
                    if (a == nullptr || b == nullptr) continue;
                    ++numCrossed;
                    std::swap(a, b);
                    EXPECT_FALSE(larger.checkValidity("crossed", false));
                    std::swap(a, b);
                }
        EXPECT_TRUE(larger.checkValidity("mended", true));
    });
    EXPECT_GT(numCrossed, 20);
}

TEST_F(Validity, PrintsAndShowsTheMesh) {
    EXPECT_EQ(
        outputOf([&] { engine.print("all of it"); }),
        text("\n\n**** Dt3::print(all of it), numTets=2\n", *tets[0], "\n\n", *tets[1], "\n\n"));
    for (Point3* marked : {handles[3], static_cast<Point3*>(nullptr)}) {
        const std::size_t color = colorCursor();
        EXPECT_EQ(outputOf([&] { engine.show("mesh.list", marked); }),
                  "  Dt3::show(): vTets.size()=2\n" + openedFile("mesh.list"));
        EXPECT_EQ(contentOf("mesh.list"), shownFile(tets, color, marked));
    }
}

}  // namespace
