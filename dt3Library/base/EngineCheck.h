#pragma once

#include "dt3Library/tools.h"

namespace VARN3D {

/// A check of the engine: the condition as a failure reports it, and a file with a line number.
/// No version changes them or uses them again, so that a report always names the same check; they
/// say nothing of where the check stands in the source.
struct EngineCheck {
    const char* condition;
    int number;
    const char* file = "dt3Library/Dt3.cpp";
};

/// All of them, but for those of the pools, which hosts compile: the failures stand in their
/// header.
namespace checks {

// What callers ask for.
constexpr EngineCheck FINITE_COORDINATES{"std::isfinite", 70};
constexpr EngineCheck EMPTY_LIST{"vTet.empty()", 1300};
constexpr EngineCheck POINTS_HAVE_NUMBERS{"numbers.areComplete()", 1500};
constexpr EngineCheck TETRAHEDRA_HAVE_NUMBERS{"live.size()<=INT32_MAX", 1501};

// The first tetrahedron.
constexpr EngineCheck NO_TETRAHEDRON_YET{"!bFullDimensional", 89};
constexpr EngineCheck START_IS_POSITIVE{"ori==ORIENTATION3_POSITIVE", 115};

// Walks, which only a mesh broken from outside leads astray.
constexpr EngineCheck SINGLE_STARTS_IN_MESH{"!pLastTet->hasBeenVisited", 350};
constexpr EngineCheck WALK_STARTS_IN_MESH{"!pCurTet->hasBeenVisited", 789};
constexpr EngineCheck WALK_ENDS{"locateResult!=-99", 802};
constexpr EngineCheck AT_MOST_ON_AN_EDGE{"numPositive==2", 560};
constexpr EngineCheck INSIDE_OF_FACET[4] = {
    {"predicates.getOrientation3(pStartTet,0,pVtx)==ORIENTATION3_POSITIVE", 570},
    {"predicates.getOrientation3(pStartTet,1,pVtx)==ORIENTATION3_POSITIVE", 571},
    {"predicates.getOrientation3(pStartTet,2,pVtx)==ORIENTATION3_POSITIVE", 572},
    {"predicates.getOrientation3(pStartTet,3,pVtx)==ORIENTATION3_POSITIVE", 573}};
constexpr EngineCheck START_IN_CONFLICT{
    "predicates.sphereInclusionTest(pStartTet,pVtx)==SIC_INSIDE", 574};

// Insertion.
constexpr EngineCheck CAVITY_IS_CLOSED{"numStoredTCS==0", 920};
constexpr EngineCheck NOT_NEGATIVE{"false", 980};
constexpr EngineCheck CAVITY_HAS_FACETS{"pNewTet!=0", 1060};
constexpr EngineCheck EDGE_COMES_TO_HULL{"pCurTet->getOppTet(opp2ICI)==0", 1250};

// The validity check.
constexpr EngineCheck NO_MARK_LEFT{"false", 1410};

// The facade.
constexpr EngineCheck FACADE_HAS_ENGINE{"pDt3!=NULL", 19, "dt3Library/Varn_3D.cpp"};
constexpr EngineCheck CELL_OF_OWN_VERTEX{"mesh has pVtx", 155, "dt3Library/voronoi.cpp"};
constexpr EngineCheck CELL_OF_MESH_VERTEX{"pVtx->getOneTet()!=NULL", 154, "dt3Library/voronoi.cpp"};

// Tetrahedra and the names of their parts.
constexpr EngineCheck CORNER_INDEX{"range03(ith)", 51, "dt3Library/Tet3.cpp"};
constexpr EngineCheck CORNER_TO_SET{"range03(ith)", 72, "dt3Library/Tet3.cpp"};
constexpr EngineCheck IS_CORNER{"aVertexPointer[3]==pp", 86, "dt3Library/Tet3.cpp"};
constexpr EngineCheck BOX_OF_CORNERS{"corner!=NULL", 103, "dt3Library/Tet3.cpp"};
constexpr EngineCheck NO_OWN_NEIGHBOUR{"this!=pC", 132, "dt3Library/Tet3.cpp"};
constexpr EngineCheck NEIGHBOUR_TO_SET{"range03(ith)", 133, "dt3Library/Tet3.cpp"};
constexpr EngineCheck ALL_CORNERS{"(pI!=NULL && pJ!=NULL && pK!=NULL && pL!=NULL)", 140,
                                  "dt3Library/Tet3.cpp"};
constexpr EngineCheck INDEX_IN_NEIGHBOUR{"pOpp!=NULL", 148, "dt3Library/Tet3.cpp"};
constexpr EngineCheck HAS_NEIGHBOUR{"false", 157, "dt3Library/Tet3.cpp"};
constexpr EngineCheck FACET_TO_REGISTER{"false", 163, "dt3Library/Tet3.cpp"};
constexpr EngineCheck CORNER_OFF_FACET[4] = {
    {"pd!=p1 && pd!=p2 && pd!=p3", 174, "dt3Library/Tet3.cpp"},
    {"pd!=p0 && pd!=p2 && pd!=p3", 175, "dt3Library/Tet3.cpp"},
    {"pd!=p0 && pd!=p1 && pd!=p3", 176, "dt3Library/Tet3.cpp"},
    {"pd!=p0 && pd!=p1 && pd!=p2", 177, "dt3Library/Tet3.cpp"}};
constexpr EngineCheck FACET_INDEX{"range03(opp3)", 211, "dt3Library/Tet3.cpp"};
constexpr EngineCheck EDGE_OF_TWO{"opp3ICI!=opp2ICI", 220, "dt3Library/Tet3.cpp"};
constexpr EngineCheck EDGE_INDEX{"range03(ith)", 25, "dt3Library/Edge3.cpp"};
constexpr EngineCheck FACET3_INDEX{"range03(opp3)", 9, "dt3Library/Facet3.cpp"};
constexpr EngineCheck FACET3_CORNER{"range02(ith)", 13, "dt3Library/Facet3.cpp"};
constexpr EngineCheck FACET3_EDGE{"range02(ith)", 18, "dt3Library/Facet3.cpp"};
constexpr EngineCheck PAYLOAD_FREE{"storedPayload==NULL", 60, "dt3Library/Iterators.h"};
constexpr EngineCheck PAYLOAD_SET{"storedPayload!=NULL", 65, "dt3Library/Iterators.h"};
constexpr EngineCheck PAYLOAD_INDEX_FREE{"storedPayloadICI==-1", 70, "dt3Library/Iterators.h"};
constexpr EngineCheck PAYLOAD_INDEX_SET{"storedPayloadICI!=-1", 75, "dt3Library/Iterators.h"};

// Predicates, values and the store.
constexpr EngineCheck ORIENTATION_HAS_NAME{"false", 34, "dt3Library/GeomTest3.cpp"};
constexpr EngineCheck ORIENTATION_CORNER{"range03(ith)", 88, "dt3Library/GeomTest3.h"};
constexpr EngineCheck TRIANGLE_CORNER{"i>-1 && i<3", 22, "dt3Library/Triangle3.h"};
constexpr EngineCheck TRIANGLE_OF_CORNERS{"corner!=NULL", 54, "dt3Library/Triangle3.cpp"};
constexpr EngineCheck KEY_LENGTH{"false", 37, "dt3Library/HC3.cpp"};
constexpr EngineCheck KEYS_HAVE_GRID{"bValid", 43, "dt3Library/HC3.cpp"};
constexpr EngineCheck NO_HANDLES_YET{"vUserHandles.empty()", 101, "dt3Library/HC3.cpp"};
constexpr EngineCheck RANGE_OF_NUMBERS{"min<max", 39, "dt3Library/testDataGenerators.cpp"};
constexpr EngineCheck RANGE_OF_POINTS{"min<max", 47, "dt3Library/testDataGenerators.cpp"};

}  // namespace checks

}  // namespace VARN3D

/// Reports and throws unless the condition holds. A macro, so that no code of it can be shared
/// between files that are compiled for different processors.
#define engineCheck(holds, check) \
    varnAssertAt(holds, (check).condition, (check).file, (check).number)

/// A check that has failed, with the reason for the exception.
#define engineFail(reason, check) \
    ::VARN3D::conditionFailed((check).condition, (check).file, (check).number, reason)
