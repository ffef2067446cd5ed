#pragma once

#include "dt3Library/tools.h"

namespace VARN3D {

/// A check of the engine: the condition as a failure reports it, and a line number. The number
/// stays the same in every version, so that a report from any of them names the same check; it
/// says nothing of where the check stands in the source.
struct EngineCheck {
    const char* condition;
    int number;
};

/// All of them.
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

}  // namespace checks

}  // namespace VARN3D

/// Reports and throws unless the condition holds. A macro, so that no code of it can be shared
/// between files that are compiled for different processors.
#define engineCheck(holds, check) \
    varnAssertAt(holds, (check).condition, "dt3Library/Dt3.cpp", (check).number)

/// A check that has failed, with the reason for the exception.
#define engineFail(reason, check) \
    ::VARN3D::conditionFailed((check).condition, "dt3Library/Dt3.cpp", (check).number, reason)
