#include "dt3Library/Edge3.h"

#include <functional>
#include <iostream>
#include <utility>

#include "dt3Library/tools.h"

namespace VARN3D {

namespace {

constexpr int NO_EDGE = -99;
constexpr int SOURCE[16] = {NO_EDGE, 2, 3, 1, 3, NO_EDGE, 0, 2, 1, 3, NO_EDGE, 0, 2, 0, 1, NO_EDGE};
constexpr int TARGET[16] = {NO_EDGE, 3, 1, 2, 2, NO_EDGE, 3, 0, 3, 0, NO_EDGE, 1, 1, 2, 0, NO_EDGE};

}  // namespace

Edge3::Edge3(Tet3* pTheTet, int opp3, int opp2) : pTet(pTheTet), opp3ICI(opp3), opp2ICI(opp2) {
    for (const int ith : {opp3, opp2}) varnAssertText(range03(ith), "range03(ith)");
    pLowVtx = getSourceVtx();
    pHighVtx = getTargetVtx();
    if (std::less<Point3*>()(pHighVtx, pLowVtx)) std::swap(pLowVtx, pHighVtx);
}

int Edge3::getSourceIndex() const {
    return SOURCE[opp3ICI * 4 + opp2ICI];
}

int Edge3::getTargetIndex() const {
    return TARGET[opp3ICI * 4 + opp2ICI];
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
