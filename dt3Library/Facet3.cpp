#include "dt3Library/Facet3.h"

#include "dt3Library/Edge3.h"
#include "dt3Library/base/EngineCheck.h"

namespace VARN3D {

Facet3::Facet3(Tet3* pTheTet, int opp3) : pTet(pTheTet), opp3ICI(opp3) {
    engineCheck(range03(opp3), checks::FACET3_INDEX);
}

int Facet3::getIntraTetIndex(int ith) const {
    engineCheck(range02(ith), checks::FACET3_CORNER);
    return Tet3::getEdgeIndices(opp3ICI, ith).first;
}

Edge3 Facet3::getEdge(int ith) const {
    engineCheck(range02(ith), checks::FACET3_EDGE);
    return Edge3(pTet, opp3ICI, getIntraTetIndex(ith));
}

bool Facet3::operator==(const Facet3& other) const {
    if (pTet == other.pTet && opp3ICI == other.opp3ICI) return true;
    const Tet3* neighbour = pTet->getOppTet(opp3ICI);
    return neighbour != nullptr && neighbour == other.pTet &&
           neighbour->getIntraTetIndex(pTet) == other.opp3ICI;
}

}  // namespace VARN3D
