#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <memory>
#include <sstream>
#include <vector>

#include "dt3Library/Edge3.h"
#include "dt3Library/Facet3.h"
#include "dt3Library/GeomTest3.h"
#include "dt3Library/Tet3.h"
#include "dt3Library/base/MeshAccess.h"
#include "tests/support/Failures.h"

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

using namespace VARN3D;
using support::checkReport;
using support::failureOf;
using support::outputOf;
using support::printed;
using ::testing::ExitedWithCode;
using ::testing::HasSubstr;

namespace {

const std::string FILE_NAME = "dt3Library/Tet3.cpp:";

std::unique_ptr<Tet3> makeTet() {
    std::unique_ptr<Tet3> tet;
    EXPECT_EQ(outputOf([&] { tet.reset(new Tet3()); }),
              "Tet default constructor (is actually not called)\n");
    return tet;
}

/// The tetrahedron tet over the points 0 to 3, and room for a second one over point 4.
class Tets : public ::testing::Test {
  protected:
    Tets() {
        tet->setProperties(&p[0], &p[1], &p[2], &p[3]);
        stranger->setProperties(&p[4], &p[4], &p[4], &p[4]);
    }
    Point3 p[5] = {{0, 0, 0}, {2, 0, 0}, {0, 2, 0}, {0, 0, 2}, {9, 9, 9}};
    std::unique_ptr<Tet3> tet = makeTet();
    std::unique_ptr<Tet3> stranger = makeTet();
};

using TetsDeathTest = Tets;

}  // namespace

TEST_F(Tets, FacetsAndEdgesFollowTheConventions) {
    const int facets[4][3] = {{1, 2, 3}, {0, 3, 2}, {0, 1, 3}, {0, 2, 1}};
    const GeomTest3 predicates;
    EXPECT_EQ(predicates.getOrientation3(&p[0], &p[1], &p[2], &p[3]), ORIENTATION3_POSITIVE);
    for (int i = 0; i < 4; ++i) {
        int facet[3];
        tet->getFacetIndices(i, facet[0], facet[1], facet[2]);
        EXPECT_TRUE(std::equal(facet, facet + 3, facets[i]));
        EXPECT_EQ(predicates.getOrientation3(tet->getCorner(facet[0]), tet->getCorner(facet[1]),
                                             tet->getCorner(facet[2]), tet->getCorner(i)),
                  ORIENTATION3_NEGATIVE);
        EXPECT_EQ(predicates.getOrientation3(tet.get(), i, tet->getCorner(i)),
                  ORIENTATION3_POSITIVE);
        // The edges are the facet's, chained, and run the other way round.
        for (int j = 0; j < 3; ++j) {
            const auto [first, second] = Tet3::getEdgeIndices(i, j);
            EXPECT_EQ(Tet3::getEdgeIndices(i, (j + 1) % 3).first, second);
            const auto position = std::find(facet, facet + 3, second) - facet;
            ASSERT_LT(position, 3);
            EXPECT_EQ(facet[(position + 1) % 3], first);
        }
    }
    const std::pair<int, int> firstEdges[4] = {{1, 3}, {0, 2}, {0, 3}, {0, 1}};
    for (int i = 0; i < 4; ++i) EXPECT_EQ(Tet3::getEdgeIndices(i, 0), firstEdges[i]);
}

TEST_F(Tets, NewPropertiesReplaceEverything) {
    tet->setOppTet(2, stranger.get());
    tet->setOppTet(3, stranger.get());
    tet->setCustomIndex(5);
    MeshAccess::visited(tet.get()) = true;
    *stranger = *tet;
    EXPECT_EQ(MeshAccess::label(stranger.get()), MeshAccess::label(tet.get()));
    EXPECT_EQ(stranger->getCustomIndex(), 5);
    EXPECT_TRUE(MeshAccess::visited(stranger.get()));
    EXPECT_THAT(printed(*stranger), HasSubstr("hasBeenVisited=1, "));
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(stranger->getCorner(i), &p[i]);
        EXPECT_EQ(stranger->getOppTet(i), i < 2 ? nullptr : stranger.get());
    }

    tet->setProperties(&p[4], &p[3], &p[2], &p[1]);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(tet->getCorner(i), &p[4 - i]);
        EXPECT_EQ(tet->getOppTet(i), nullptr);
        EXPECT_EQ(p[4 - i].getOneTet(), tet.get());
    }
    EXPECT_EQ(tet->getCustomIndex(), -1);
    EXPECT_FALSE(MeshAccess::visited(tet.get()));
}

TEST_F(Tets, CornersAreFoundByAddressOrCoordinates) {
    Point3* corners[4];
    tet->getCorners(corners[0], corners[1], corners[2], corners[3]);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(corners[i], &p[i]);
        EXPECT_EQ(tet->getIntraTetIndex(&p[i]), i);
        EXPECT_TRUE(tet->hasVertex(&p[i]));
        const Point3 copy(p[i]);
        EXPECT_FALSE(tet->hasVertex(&copy));
        EXPECT_TRUE(tet->hasVertex(copy));
    }
    for (const Point3& other : {Point3(2, 0, 1), Point3(2, 1, 0), Point3(1, 0, 0), p[4]})
        EXPECT_FALSE(tet->hasVertex(other));
    EXPECT_FALSE(makeTet()->hasVertex(p[0]));  // without corners
    EXPECT_TRUE(tet->getCircumcenter() == Point3(1, 1, 1));
    tet->setCorner(3, &p[4]);
    EXPECT_EQ(p[4].getOneTet(), stranger.get());
    p[4] = Point3(2, 2, 0);
    EXPECT_FALSE(std::isfinite(tet->getCircumcenter().x()));  // flat
}

TEST_F(Tets, NeighboursMatchAcrossEveryFacetInEveryOrder) {
    for (int ith = 0; ith < 4; ++ith) {
        EXPECT_EQ(tet->getIntraTetIndexInOppTetForReg(tet.get(), ith), ith);
        std::array<Point3*, 4> corners = {&p[0], &p[1], &p[2], &p[3]};
        corners[static_cast<std::size_t>(ith)] = &p[4];
        std::sort(corners.begin(), corners.end());
        do {
            tet->setProperties(&p[0], &p[1], &p[2], &p[3]);
            stranger->setProperties(corners[0], corners[1], corners[2], corners[3]);
            const int back = stranger->getIntraTetIndexInOppTetForReg(tet.get(), ith);
            EXPECT_EQ(stranger->getCorner(back), &p[4]);
            EXPECT_TRUE(Tet3::haveCommonFacet(tet.get(), ith, stranger.get(), back));
            tet->setOppTet(ith, stranger.get());
            stranger->setOppTet(back, tet.get());
            EXPECT_EQ(tet->getIntraTetIndexInOppTet(ith), back);
            EXPECT_EQ(tet->getIntraTetIndex(stranger.get()), ith);
            EXPECT_EQ(tet->getOppVtxInOppTet(ith, false), &p[4]);
            EXPECT_EQ(tet->getOppTet(&p[ith]), stranger.get());
        } while (std::next_permutation(corners.begin(), corners.end()));
    }
    tet->setOppTet(0, nullptr);
    EXPECT_EQ(tet->getOppVtxInOppTet(0, true), nullptr);
    EXPECT_EQ(tet->debug_getOppTetIndex(0), -1);
    EXPECT_EQ(outputOf([&] { EXPECT_EQ(tet->debug_getOppTetIndex(3), 0); }),
              "Tet3::debug_getTetIndex(): Not implemented yet\n");
}

TEST_F(Tets, Output) {
    tet->setOppTet(1, stranger.get());
    std::ostringstream expected;
    expected << "Tetrahedron (ID=" << MeshAccess::label(tet.get()) << "), (this=" << tet.get()
             << "): hasBeenVisited=0, ownOri=ORI3_ORIENTATION3_POSITIVE\n";
    for (int i = 0; i < 4; ++i)
        expected << "ith=" << i << ", vertex (" << &p[i] << "): " << p[i]
                 << "  oppTet=" << tet->getOppTet(i) << (i == 1 ? "\n" : " (NULL)\n");
    EXPECT_EQ(printed(*tet), expected.str());
    EXPECT_THAT(printed(*makeTet()), HasSubstr("ith=3, vertex (0):   oppTet=0 (NULL)\n"));
}

#if defined(__SSE2__)
TEST_F(Tets, OutputIsExactWhileTheHostFlushesDenormals) {
    for (int i = 1; i < 4; ++i)
        p[i].exchange(i == 1 ? 1e-310 : 0, i == 2 ? 1e-310 : 0, i == 3 ? 1e-310 : 0);
    const unsigned hostControl = _mm_getcsr();
    _mm_setcsr(hostControl | 0x8040U);
    const std::string output = printed(*tet);
    EXPECT_EQ(_mm_getcsr() & 0x8040U, 0x8040U);
    _mm_setcsr(hostControl);
    EXPECT_THAT(output, HasSubstr("ownOri=ORI3_ORIENTATION3_POSITIVE\n"));
}
#endif

TEST_F(Tets, FailedChecksNameTheirCondition) {
    int a;
    const struct {
        std::function<void()> operation;
        std::string before, condition, number;
    } rows[] = {
        {[&] { tet->getCorner(-1); }, "", "range03(ith)", "51"},
        {[&] { tet->getCorner(4); }, "", "range03(ith)", "51"},
        {[&] { tet->setCorner(4, &p[0]); }, "", "range03(ith)", "72"},
        {[&] { tet->getOppTet(4); }, "", "range03(ith)", "51"},
        {[&] { tet->setOppTet(-1, nullptr); }, "", "range03(ith)", "133"},
        {[&] { tet->getOppVtxInOppTet(4, true); }, "", "range03(ith)", "51"},
        {[&] { tet->debug_getOppTetIndex(-1); }, "", "range03(ith)", "51"},
        {[&] { tet->getFacetIndices(4, a, a, a); }, "", "range03(opp3)", "211"},
        {[&] { Tet3::haveCommonFacet(tet.get(), 4, tet.get(), 0); }, "", "range03(opp3)", "211"},
        {[&] { tet->getIntraTetIndex(&p[4]); }, "", "aVertexPointer[3]==pp", "86"},
        {[&] { tet->getOppTet(&p[4]); }, "", "aVertexPointer[3]==pp", "86"},
        {[&] { tet->getIntraTetIndexInOppTetForReg(tet.get(), 4); }, "", "false", "163"},
        {[&] { tet->getOppVtxInOppTet(2, false); },
         "\n      Tet3::getOppVtxInOppTet, ERROR: no neighbor tet\n\n", "false", "157"},
        {[&] { tet->getIntraTetIndexInOppTet(2); }, "", "pOpp!=NULL", "148"},
        {[] { makeTet()->getCircumcenter(); }, "", "corner!=NULL", "103"},
        {[&] { tet->getEdge(2, 2); }, "\n      Tet3::getEdge(), ERROR: opp3ICI==opp2ICI=2\n\n",
         "opp3ICI!=opp2ICI", "220"},
        {[&] { tet->setOppTet(7, tet.get()); },
         "this=" + printed(tet.get()) + ", pC=" + printed(tet.get()) + "\n" + printed(*tet) +
             "\n      Tet3::setOppTet(), WARNING: trying to set *this as neighbor of *this, "
             "ith=7\n\n",
         "this!=pC", "132"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(failureOf(row.operation),
                  row.before + checkReport(row.condition, FILE_NAME + row.number));

    const char* const facetConditions[4] = {
        "pd!=p1 && pd!=p2 && pd!=p3", "pd!=p0 && pd!=p2 && pd!=p3", "pd!=p0 && pd!=p1 && pd!=p3",
        "pd!=p0 && pd!=p1 && pd!=p2"};
    for (int ith = 0; ith < 4; ++ith) {
        Point3* const onFacet = &p[(ith + 1) % 4];
        stranger->setProperties(onFacet, onFacet, onFacet, onFacet);
        EXPECT_EQ(failureOf([&] { stranger->getIntraTetIndexInOppTetForReg(tet.get(), ith); }),
                  checkReport(facetConditions[ith], FILE_NAME + std::to_string(174 + ith)));
    }
    for (int missing = 0; missing < 4; ++missing) {
        Point3* c[4] = {&p[0], &p[1], &p[2], &p[3]};
        c[missing] = nullptr;
        EXPECT_EQ(failureOf([&] { tet->setProperties(c[0], c[1], c[2], c[3]); }),
                  checkReport("(pI!=NULL && pJ!=NULL && pK!=NULL && pL!=NULL)", FILE_NAME + "140"));
    }
}

TEST_F(TetsDeathTest, InconsistentNeighboursEndTheProcess) {
    EXPECT_EXIT(
        {
            support::printOnStandardError();
            tet->getIntraTetIndex(stranger.get());
        },
        ExitedWithCode(1),
        HasSubstr("Tet3::getIntraTetIndex went wrong: " + printed(*stranger) + ", this is " +
                  printed(*tet) + "\n"));
    EXPECT_EXIT(
        {
            support::printOnStandardError();
            Tet3::haveCommonFacet(tet.get(), 1, stranger.get(), 3);
        },
        ExitedWithCode(1),
        ::testing::AllOf(HasSubstr("Tet3::haveCommonFacet() ERROR\n" + printed(*tet)),
                         HasSubstr("...with index 1\n0,3,2\n" + printed(*stranger)),
                         HasSubstr("...with index 3\n0,2,1\n")));
    // One common corner is no common facet, nor are two.
    stranger->setProperties(&p[4], &p[3], &p[2], &p[4]);
    EXPECT_EXIT(Tet3::haveCommonFacet(tet.get(), 1, stranger.get(), 3), ExitedWithCode(1), "");
}
