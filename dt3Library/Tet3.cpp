#include "dt3Library/Tet3.h"

#include <cstdlib>

#include "dt3Library/Edge3.h"
#include "dt3Library/Facet3.h"
#include "dt3Library/GeomTest3.h"
#include "dt3Library/base/EngineCheck.h"
#include "dt3Library/base/facets.h"
#include "dt3Library/base/messages.h"
#include "dt3Library/base/vectors.h"
#include "dt3Library/predicates/FloatingPoint.h"
#include "dt3Library/predicates/FloatingPointScope.h"

namespace VARN3D {

namespace {

std::int32_t takeLabel() {
    return Tet3::runningLabel.fetch_add(1, std::memory_order_relaxed);
}

const void* address(const void* p) {
    return p;
}

}  // namespace

std::atomic<std::int32_t> Tet3::runningLabel{0};

Tet3::Tet3() : label(takeLabel()) {
    messageStream() << "Tet default constructor (is actually not called)" << std::endl;
}

Tet3::Tet3(const Tet3& /*other*/) {
    messageStream() << "CCTOR of Tet3" << std::endl;
}

Tet3& Tet3::operator=(const Tet3& other) {
    hasBeenVisited = other.hasBeenVisited;
    label = other.label;
    for (int i = 0; i < 4; ++i) {
        aVertexPointer[i] = other.aVertexPointer[i];
        aOppTets[i] = other.aOppTets[i];
    }
    customIndex = other.customIndex;
    return *this;
}

void Tet3::failRange03(int ith) {
    engineCheck(range03(ith), checks::CORNER_INDEX);
    std::abort();  // only called with an index out of range
}

void Tet3::setProperties(Point3* pI, Point3* pJ, Point3* pK, Point3* pL) {
    engineCheck(pI != nullptr && pJ != nullptr && pK != nullptr && pL != nullptr,
                checks::ALL_CORNERS);
    label = takeLabel();
    Point3* const corners[4] = {pI, pJ, pK, pL};
    for (int i = 0; i < 4; ++i) {
        aVertexPointer[i] = corners[i];
        aOppTets[i] = nullptr;
        corners[i]->setOneTet(this);
    }
    hasBeenVisited = false;
    customIndex = -1;
}

// ---- Corners -----------------------------------------------------------------------------------

void Tet3::setCorner(int ith, Point3* p) {
    engineCheck(range03(ith), checks::CORNER_TO_SET);
    aVertexPointer[ith] = p;
}

void Tet3::getCorners(Point3*& p0, Point3*& p1, Point3*& p2, Point3*& p3) const {
    p0 = aVertexPointer[0];
    p1 = aVertexPointer[1];
    p2 = aVertexPointer[2];
    p3 = aVertexPointer[3];
}

int Tet3::getIntraTetIndex(const Point3* pp) const {
    for (int i = 0; i < 3; ++i)
        if (aVertexPointer[i] == pp) return i;
    engineCheck(aVertexPointer[3] == pp, checks::IS_CORNER);
    return 3;
}

bool Tet3::hasVertex(const Point3* p) const {
    for (const Point3* corner : aVertexPointer)
        if (corner == p) return true;
    return false;
}

bool Tet3::hasVertex(const Point3& p) const {
    for (const Point3* corner : aVertexPointer)
        if (corner != nullptr && *corner == p) return true;
    return false;
}

Point3 Tet3::getCircumcenter() const {
    for (const Point3* corner : aVertexPointer)
        engineCheck(corner != nullptr, checks::BOX_OF_CORNERS);
    const Point3& a = *aVertexPointer[0];
    const Vector3 b = *aVertexPointer[1] - a;
    const Vector3 c = *aVertexPointer[2] - a;
    const Vector3 d = *aVertexPointer[3] - a;
    const Vector3 cd = cross(c, d);
    const Vector3 db = cross(d, b);
    const Vector3 bc = cross(b, c);
    const double bb = dot(b, b);
    const double cc = dot(c, c);
    const double dd = dot(d, d);
    const double scale = 0.5 / dot(b, cd);
    return a + Vector3((bb * cd.x + cc * db.x + dd * bc.x) * scale,
                       (bb * cd.y + cc * db.y + dd * bc.y) * scale,
                       (bb * cd.z + cc * db.z + dd * bc.z) * scale);
}

// ---- Neighbours --------------------------------------------------------------------------------

Tet3* Tet3::getOppTet(const Point3* p) const {
    return aOppTets[getIntraTetIndex(p)];
}

void Tet3::setOppTet(int ith, Tet3* pC) {
    if (pC == this) {
        messageStream() << "this=" << address(this) << ", pC=" << address(pC) << std::endl << *pC;
        printWarning("Tet3::setOppTet()",
                     "trying to set *this as neighbor of *this, ith=" + std::to_string(ith));
    }
    engineCheck(this != pC, checks::NO_OWN_NEIGHBOUR);
    engineCheck(range03(ith), checks::NEIGHBOUR_TO_SET);
    aOppTets[ith] = pC;
}

int Tet3::getIntraTetIndex(const Tet3* pNeig) const {
    for (int i = 0; i < 4; ++i)
        if (aOppTets[i] == pNeig) return i;
    messageStream() << "Tet3::getIntraTetIndex went wrong: ";
    if (pNeig != nullptr) messageStream() << *pNeig;
    messageStream() << ", this is " << *this << std::endl;
    std::exit(1);
}

int Tet3::getIntraTetIndexInOppTet(int ith) const {
    const Tet3* pOpp = getOppTet(ith);
    engineCheck(pOpp != nullptr, checks::INDEX_IN_NEIGHBOUR);
    return pOpp->getIntraTetIndex(this);
}

Point3* Tet3::getOppVtxInOppTet(int ith, bool bNullAllowed) const {
    const Tet3* pOpp = getOppTet(ith);
    if (pOpp != nullptr) return pOpp->aVertexPointer[pOpp->getIntraTetIndex(this)];
    if (!bNullAllowed) {
        printError("Tet3::getOppVtxInOppTet", "no neighbor tet");
        engineFail("no neighbour tetrahedron", checks::HAS_NEIGHBOUR);
    }
    return nullptr;
}

int Tet3::getIntraTetIndexInOppTetForReg(const Tet3* pOther, int ith) const {
    engineCheck(range03(ith), checks::FACET_TO_REGISTER);
    const auto isOnFacet = [pOther, ith](const Point3* p) {
        for (int k = 0; k < 4; ++k)
            if (k != ith && pOther->aVertexPointer[k] == p) return true;
        return false;
    };
    for (int i = 0; i < 3; ++i)
        if (!isOnFacet(aVertexPointer[i])) return i;
    engineCheck(!isOnFacet(aVertexPointer[3]), checks::CORNER_OFF_FACET[ith]);
    return 3;
}

bool Tet3::haveCommonFacet(Tet3* pT0, int opp0, Tet3* pT1, int opp1) {
    int indices0[3];
    int indices1[3];
    pT0->getFacetIndices(opp0, indices0[0], indices0[1], indices0[2]);
    pT1->getFacetIndices(opp1, indices1[0], indices1[1], indices1[2]);
    bool bCommon = true;
    for (const int i : indices0) {
        bool bFound = false;
        for (const int j : indices1) bFound = bFound || pT0->getCorner(i) == pT1->getCorner(j);
        bCommon = bCommon && bFound;
    }
    if (bCommon) return true;
    messageStream() << "Tet3::haveCommonFacet() ERROR" << std::endl;
    messageStream() << *pT0 << std::endl << "...with index " << opp0 << std::endl;
    messageStream() << indices0[0] << "," << indices0[1] << "," << indices0[2] << std::endl;
    messageStream() << *pT1 << std::endl << "...with index " << opp1 << std::endl;
    messageStream() << indices1[0] << "," << indices1[1] << "," << indices1[2] << std::endl;
    std::exit(1);
}

int Tet3::debug_getOppTetIndex(int ith) const {
    if (getOppTet(ith) == nullptr) return -1;
    messageStream() << "Tet3::debug_getTetIndex(): Not implemented yet" << std::endl;
    return 0;
}

// ---- Facets and edges --------------------------------------------------------------------------

Facet3 Tet3::getFacet(int ith) {
    return Facet3(this, ith);
}

void Tet3::getFacetIndices(int opp3, int& a, int& b, int& c) const {
    engineCheck(range03(opp3), checks::FACET_INDEX);
    a = INNER_FACET[opp3][0];
    b = INNER_FACET[opp3][1];
    c = INNER_FACET[opp3][2];
}

Edge3 Tet3::getEdge(int opp3ICI, int opp2ICI) {
    if (opp3ICI == opp2ICI)
        printError("Tet3::getEdge()", "opp3ICI==opp2ICI=" + std::to_string(opp3ICI));
    engineCheck(opp3ICI != opp2ICI, checks::EDGE_OF_TWO);
    return Edge3(this, opp3ICI, opp2ICI);
}

std::pair<int, int> Tet3::getEdgeIndices(int i, int j) {
    return {OUTER_FACET[i][j], OUTER_FACET[i][(j + 1) % 3]};
}

// ---- Output ------------------------------------------------------------------------------------

std::ostream& operator<<(std::ostream& out, const Tet3& tet) {
    const FloatingPointScope scope;
    Point3 *p0, *p1, *p2, *p3;
    tet.getCorners(p0, p1, p2, p3);
    const bool bHasCorners = !tet.hasVertex(static_cast<const Point3*>(nullptr));
    const char* const orientationName =
        bHasCorners ? getOrientationName(GeomTest3().getOrientation3(p0, p1, p2, p3)) : "none";
    out << "Tetrahedron (ID=" << tet.label << "), (this=" << address(&tet)
        << "): hasBeenVisited=" << (tet.hasBeenVisited ? 1 : 0) << ", ownOri=" << orientationName
        << std::endl;
    for (int ith = 0; ith < 4; ++ith) {
        const Point3* corner = tet.aVertexPointer[ith];
        const Tet3* opposite = tet.aOppTets[ith];
        out << "ith=" << ith << ", vertex (" << address(corner) << "): ";
        if (corner != nullptr) out << *corner;
        out << "  oppTet=" << address(opposite) << (opposite == nullptr ? " (NULL)" : "")
            << std::endl;
    }
    return out;
}

}  // namespace VARN3D
