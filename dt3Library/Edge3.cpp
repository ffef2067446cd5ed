#include "dt3Library/Edge3.h"

#include <functional>
#include <iostream>
#include <utility>

#include "dt3Library/base/EngineCheck.h"
#include "dt3Library/base/facets.h"

namespace VARN3D {

namespace {

/// Of facet opp3, counter-clockwise seen from outside, the corner so many steps after corner opp2.
int cornerAfter(int opp3, int opp2, int steps) {
    constexpr int NO_EDGE = -99;
    for (int k = 0; k < 3; ++k)
        if (INNER_FACET[opp3][k] == opp2) return INNER_FACET[opp3][(k + steps) % 3];
    return NO_EDGE;
}

}  // namespace

Edge3::Edge3(Tet3* pTheTet, int opp3, int opp2) : pTet(pTheTet), opp3ICI(opp3), opp2ICI(opp2) {
    for (const int ith : {opp3, opp2}) engineCheck(range03(ith), checks::EDGE_INDEX);
    pLowVtx = getSourceVtx();
    pHighVtx = getTargetVtx();
    if (std::less<Point3*>()(pHighVtx, pLowVtx)) std::swap(pLowVtx, pHighVtx);
}

int Edge3::getSourceIndex() const {
    return cornerAfter(opp3ICI, opp2ICI, 1);
}

int Edge3::getTargetIndex() const {
    return cornerAfter(opp3ICI, opp2ICI, 2);
}

bool Edge3::operator==(const Edge3& other) const {
    return pLowVtx == other.pLowVtx && pHighVtx == other.pHighVtx;
}

bool Edge3::operator<(const Edge3& other) const {
    const std::less<Point3*> lower;
    if (pLowVtx != other.pLowVtx) return lower(pLowVtx, other.pLowVtx);
    return lower(pHighVtx, other.pHighVtx);
}

std::ostream& operator<<(std::ostream& out, const Edge3& edge) {
    const Tet3* tet = edge.getTet();
    const auto printCorner = [&out, tet](const char* role, int ici) {
        out << role << "=" << ici << ", " << static_cast<const void*>(tet->getCorner(ici))
            << std::endl;
    };
    out << "Edge (pTet" << static_cast<const void*>(tet) << "): " << std::endl;
    printCorner("opp3ICI", edge.getOpp3Index());
    printCorner("opp2ICI", edge.getOpp2Index());
    printCorner("srcICI", edge.getSourceIndex());
    printCorner("trgICI", edge.getTargetIndex());
    return out;
}

}  // namespace VARN3D
