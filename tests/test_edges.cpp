#include <algorithm>
#include <set>
#include <sstream>
#include <vector>

#include "dt3Library/Varn_3D.h"
#include "tests/support/Failures.h"

using namespace VARN3D;
using support::checkReport;
using support::failureOf;
using support::outputOf;

namespace {

/// A small mesh with inner and outer edges and facets of many degrees.
class MeshHandles : public ::testing::Test {
  protected:
    MeshHandles() {
        std::vector<Point3> points;
        generateRandomPoints(40, 0.0, 1.0, points, 17);
        outputOf([&] { mesh.insert(points); });
        mesh.getTetrahedra(tets);
    }

    template <class Visitor>
    void forEachEdge(Visitor visit) const {
        for (Tet3* tet : tets)
            for (int i = 0; i < 4; ++i)
                for (int j = 0; j < 4; ++j)
                    if (i != j) visit(Edge3(tet, i, j));
    }

    std::set<Tet3*> tetsAround(const Edge3& edge) const {
        std::set<Tet3*> star;
        for (Tet3* tet : tets)
            if (tet->hasVertex(edge.getSourceVtx()) && tet->hasVertex(edge.getTargetVtx()))
                star.insert(tet);
        return star;
    }

    Varn_3D mesh;
    std::vector<Tet3*> tets;
};

/// The tetrahedra that a circulator meets until it comes back or leaves the mesh.
std::vector<Tet3*> circulate(const Edge3& edge, bool& bClosed) {
    std::vector<Tet3*> met;
    TetAroundEdgeIterator it(edge);
    const TetAroundEdgeIterator start(it);
    do {
        met.push_back(*it);
        bClosed = !it.nextIsNull();
        if (!bClosed) break;
        EXPECT_EQ((*it)->getOppTet(it.getOpp2Index()), it.previewNextTet());
        ++it;
        EXPECT_TRUE(it.getEdge() == edge);
        EXPECT_EQ((*it)->getOppTet(it.getOpp3Index()), met.back());
    } while (it != start);
    return met;
}

}  // namespace

TEST_F(MeshHandles, EdgesRunAsTheirFacetDoesAndTurnRoundWithTheirIndices) {
    std::set<Edge3> edges;
    std::set<std::pair<Point3*, Point3*>> vertexPairs;
    forEachEdge([&](const Edge3& edge) {
        const int opp3 = edge.getOpp3Index();
        const int opp2 = edge.getOpp2Index();
        int facet[3];
        edge.getTet()->getFacetIndices(opp3, facet[0], facet[1], facet[2]);
        const auto position = std::find(facet, facet + 3, opp2) - facet;
        EXPECT_EQ(edge.getSourceIndex(), facet[(position + 1) % 3]);
        EXPECT_EQ(edge.getTargetIndex(), facet[(position + 2) % 3]);
        EXPECT_EQ(edge.getSourceVtx(), edge.getTet()->getCorner(edge.getSourceIndex()));

        const Edge3 reversed = edge.getTet()->getEdge(opp2, opp3);
        EXPECT_EQ(reversed.getSourceIndex(), edge.getTargetIndex());
        EXPECT_EQ(reversed.getTargetIndex(), edge.getSourceIndex());
        EXPECT_TRUE(reversed == edge);
        EXPECT_FALSE(reversed < edge || edge < reversed);
        edges.insert(edge);
        const auto endsOf = [](const Edge3& e) -> std::pair<Point3*, Point3*> {
            return std::minmax(e.getSourceVtx(), e.getTargetVtx());
        };
        vertexPairs.insert(endsOf(edge));
        for (int i = 1; i < 4; ++i) {
            const Edge3 other(edge.getTet(), opp3, (opp3 + i) % 4);
            EXPECT_EQ(other == edge, endsOf(other) == endsOf(edge));
        }
    });
    EXPECT_EQ(edges.size(), vertexPairs.size());
}

TEST_F(MeshHandles, CirculatorsMeetTheStarOfAnEdge) {
    int numInner = 0;
    int numOuter = 0;
    forEachEdge([&](const Edge3& edge) {
        bool bClosed;
        std::vector<Tet3*> met = circulate(edge, bClosed);
        const std::size_t numOneWay = met.size();
        if (!bClosed) {
            const Edge3 reversed(edge.getTet(), edge.getOpp2Index(), edge.getOpp3Index());
            const std::vector<Tet3*> otherWay = circulate(reversed, bClosed);
            EXPECT_FALSE(bClosed);
            met.insert(met.end(), otherWay.begin() + 1, otherWay.end());
        }
        (bClosed ? numInner : numOuter)++;
        const std::set<Tet3*> star = tetsAround(edge);
        EXPECT_EQ(met.size(), star.size()) << numOneWay;
        EXPECT_EQ(std::set<Tet3*>(met.begin(), met.end()), star);
    });
    EXPECT_GT(numInner, 0);
    EXPECT_GT(numOuter, 0);
}

TEST_F(MeshHandles, FacetsEqualTheirOtherSideOnly) {
    for (Tet3* tet : tets)
        for (int i = 0; i < 4; ++i) {
            const Facet3 facet = tet->getFacet(i);
            for (Tet3* other : tets)
                for (int j = 0; j < 4; ++j) {
                    const bool bSame = (other == tet && j == i) ||
                                       (tet->getOppTet(i) == other && other->getOppTet(j) == tet);
                    EXPECT_EQ(facet == Facet3(other, j), bSame);
                    EXPECT_EQ(facet != Facet3(other, j), !bSame);
                }
        }
}

TEST_F(MeshHandles, IndicesAreChecked) {
    Tet3* tet = tets.front();
    const int corners[4][3] = {{1, 3, 2}, {0, 2, 3}, {0, 3, 1}, {0, 1, 2}};
    for (int opp3 = 0; opp3 < 4; ++opp3)
        for (int ith = 0; ith < 3; ++ith) {
            EXPECT_EQ(Facet3(tet, opp3).getIntraTetIndex(ith), corners[opp3][ith]);
            const Edge3 edge = Facet3(tet, opp3).getEdge(ith);
            EXPECT_EQ(edge.getOpp3Index(), opp3);
            EXPECT_EQ(edge.getOpp2Index(), corners[opp3][ith]);
        }
    const Facet3 facet(tet, 2);
    for (const int ith : {-1, 3}) {
        EXPECT_EQ(failureOf([&] { facet.getIntraTetIndex(ith); }),
                  checkReport("range02(ith)", "dt3Library/Facet3.cpp:13"));
        EXPECT_EQ(failureOf([&] { facet.getEdge(ith); }),
                  checkReport("range02(ith)", "dt3Library/Facet3.cpp:18"));
    }
    for (const int opp3 : {-1, 4})
        EXPECT_EQ(failureOf([&] { tet->getFacet(opp3); }),
                  checkReport("range03(opp3)", "dt3Library/Facet3.cpp:9"));
    const std::pair<int, int> noEdges[] = {{4, 0}, {0, 4}, {-1, 0}, {0, -1}, {2, 2}};
    for (const auto& [opp3, opp2] : noEdges)
        EXPECT_THAT(failureOf([&, i = opp3, j = opp2] { Edge3(tet, i, j); }),
                    ::testing::HasSubstr("Condition [ range03(ith) failed ]"));
}

TEST_F(MeshHandles, PayloadIsSetOnceAndItsIndexIsNotCopied) {
    TetAroundEdgeIterator it(Edge3(tets.front(), 0, 1));
    const auto report = [](const std::string& condition, const std::string& number) {
        return checkReport(condition, "dt3Library/Iterators.h:" + number);
    };
    EXPECT_EQ(failureOf([&] { it.getPayload(); }), report("storedPayload!=NULL", "65"));
    EXPECT_EQ(failureOf([&] { it.getPayloadICI(); }), report("storedPayloadICI!=-1", "75"));
    it.setPayload(tets.back());
    it.setPayloadICI(2);
    EXPECT_EQ(failureOf([&] { it.setPayload(tets.back()); }), report("storedPayload==NULL", "60"));
    EXPECT_EQ(failureOf([&] { it.setPayloadICI(3); }), report("storedPayloadICI==-1", "70"));
    EXPECT_EQ(it.getPayloadICI(), 2);

    const TetAroundEdgeIterator copy(it);
    EXPECT_EQ(copy.getPayload(), tets.back());
    EXPECT_EQ(failureOf([&] { copy.getPayloadICI(); }), report("storedPayloadICI!=-1", "75"));
}

TEST_F(MeshHandles, Output) {
    Tet3* tet = tets.front();
    const Edge3 edge(tet, 1, 0);
    std::ostringstream expected, printed;
    expected << "Edge (pTet" << tet << "): \nopp3ICI=1, " << tet->getCorner(1) << "\nopp2ICI=0, "
             << tet->getCorner(0) << "\nsrcICI=3, " << tet->getCorner(3) << "\ntrgICI=2, "
             << tet->getCorner(2) << "\n";
    printed << edge;
    EXPECT_EQ(printed.str(), expected.str());
    const std::string rule = "-----------------------------------\n";
    EXPECT_EQ(outputOf([&] { TetAroundEdgeIterator(edge).debug(); }),
              rule + "# This is a TetAroundEdgeIterator:\n" + expected.str() + rule + "\n");
}
