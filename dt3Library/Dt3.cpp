#include "dt3Library/Dt3.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <iostream>

#include "dt3Library/Iterators.h"
#include "dt3Library/Visualizer3.h"
#include "dt3Library/base/EngineCheck.h"
#include "dt3Library/base/Profile.h"
#include "dt3Library/engine/InsertionOrder.h"
#include "dt3Library/kernel/BatchInsertion.h"
#include "dt3Library/predicates/FloatingPoint.h"

namespace VARN3D {

namespace {

/// How many table entries on either side of a point are searched for a tetrahedron. Vertices
/// without one (stored before the mesh existed) can be many; behind them the most recent
/// tetrahedron serves as well.
constexpr std::size_t ENTRIES_SEARCHED = 32;

double squaredDistance(const Point3& a, const Point3& b) {
    const Vector3 d = a - b;
    return d.x * d.x + d.y * d.y + d.z * d.z;
}

bool isFinite(const Point3& p) {
    return std::isfinite(p.x()) && std::isfinite(p.y()) && std::isfinite(p.z());
}

/// How many of the next `untested` facets, counted round from `facet`, certainly have the point on
/// their inner side before the first that may not.
int countInnerFacets(const FacetSides& sides, int facet, int untested) {
    static constexpr std::uint8_t LOWEST_BIT[16] = {4, 0, 1, 0, 2, 0, 1, 0, 3, 0, 1, 0, 2, 0, 1, 0};
    const unsigned others =
        (sides.notInner << 4 | sides.notInner) >> facet & ((1U << untested) - 1U);
    return others == 0 ? untested : LOWEST_BIT[others];
}

void printNothingToInsert() {
    std::cout << "Attention: triangulate has got an empty vector" << std::endl;
}

void requireFinite(const Point3& point, std::size_t position, const char* who) {
    if (isFinite(point)) return;
    printError(who, "point " + std::to_string(position) + " has a non-finite coordinate");
    engineCheck(false, "std::isfinite", 70);
}

/// Sets a flag when an exception leaves its scope.
class FailureNote {
  public:
    explicit FailureNote(bool& bTheFlag) : bFlag(bTheFlag) {}
    ~FailureNote() {
        if (std::uncaught_exceptions() > numBefore) bFlag = true;
    }
    FailureNote(const FailureNote&) = delete;
    FailureNote& operator=(const FailureNote&) = delete;

  private:
    bool& bFlag;
    const int numBefore = std::uncaught_exceptions();
};

}  // namespace

Dt3::Dt3(Varn_3D* pTheOwner, const KernelSteps& theSteps)
    : cavity(predicates, tets), pOwner(pTheOwner), kernelSteps(theSteps) {}

// ---- Insertion ---------------------------------------------------------------------------------

void Dt3::insert(const std::vector<Point3>& vInputPoints, std::vector<Point3*>& vUserHandles) {
    for (std::size_t i = 0; i < vInputPoints.size(); ++i)
        requireFinite(vInputPoints[i], i, "Dt3::insert()");
    if (bVerbose)
        std::cout << std::endl << "Dt3::insert(vector,vector) has been called" << std::endl;
    if (!vUserHandles.empty()) {
        printWarning("Dt3::insert()", "vUserHandles is not empty as it should be");
        vUserHandles.clear();
    }
    const std::size_t n = vInputPoints.size();
    std::cout << "numPoints=" << n << std::endl;
    if (n == 0) return;

    std::vector<Point3*> vNew;
    const HC3::Mark mark = store.mark();
    const AffineSpan spanBefore = span;
    try {
        {
            VARN3D_TIME(secondsStore);
            store.insert(vInputPoints, vUserHandles, vNew);
        }
        takeInLeftOver(vNew);
        if (bFullDimensional)
            insertLaterBatch(vNew);
        else if (spansSpace(vNew))
            insertFirstBatch(vNew, n);
        else
            vNew.clear();
    } catch (...) {
        // The batch is as if it had never been.
        store.rewind(mark);
        span = spanBefore;
        vUserHandles.clear();
        throw;
    }
    if (!vNew.empty()) {
        const FailureNote note(bFailed);
        triangulate(vNew, startTetNear(*vNew.front()));
    }
    bFailed = false;
}

/// Inserts a batch that is large against the mesh, and empties its list. A small one is left to be
/// inserted vertex by vertex.
void Dt3::insertLaterBatch(std::vector<Point3*>& vNew) {
    if (vNew.empty()) {
        printNothingToInsert();
    } else if (BatchInsertion::pays(vNew.size(), store.getNumVertices() - vNew.size())) {
        insertAtOnce(vNew, startTetNear(*vNew.front()));
    }
}

/// Makes the first tetrahedron, if there can be one, and inserts all vertices.
void Dt3::insertFirstBatch(std::vector<Point3*>& vNew, std::size_t numPoints) {
    Tet3* first = startUp();
    if (first == nullptr) {
        vNew.clear();
        return;
    }
    try {
        // Earlier calls may have left vertices waiting, and some points may be equal; both at once
        // can leave as many vertices as points.
        if (vNew.size() != numPoints || store.getNumVertices() != numPoints)
            store.listForInsertion(vNew);
        insertAtOnce(vNew, first);
    } catch (...) {
        for (int i = 0; i < 4; ++i) MeshAccess::corner(first, i)->setOneTet(nullptr);
        tets.reset();
        pRecentTet = nullptr;
        bFullDimensional = false;
        throw;
    }
}

void Dt3::insertAtOnce(std::vector<Point3*>& vVertices, const Tet3* pStart) {
    VARN3D_TIME(secondsKernel);
    pRecentTet = BatchInsertion(predicates, kernelSteps, tets, store).run(vVertices, pStart);
    hullTurns.forgetAll();
}

Point3* Dt3::insert(const Point3& point) {
    requireFinite(point, 0, "Dt3::insert()");
    const FailureNote note(bFailed);
    auto [pVtx, pLastTet] = store.insertOne(point, bFullDimensional ? ENTRIES_SEARCHED : 0);
    if (bFullDimensional) {
        if (pLastTet == nullptr) pLastTet = pRecentTet;
        engineCheck(!MeshAccess::visited(pLastTet), "!pLastTet->hasBeenVisited", 350);
        Point3* slot = pVtx;
        insertVertex(slot, pLastTet);
        return pVtx;
    }
    if (!spansSpace({pVtx})) return pVtx;
    Tet3* first = startUp();
    if (first == nullptr || store.getNumVertices() <= 4) return pVtx;
    // Vertices that waited for the first tetrahedron go on waiting: only a batch takes them in.
    std::vector<Point3*> nothing;
    triangulate(nothing, first);
    return pVtx;
}

/// If an insertion has failed since the last complete batch, lists what it may have left waiting
/// as new as well.
void Dt3::takeInLeftOver(std::vector<Point3*>& vNew) const {
    if (!bFailed) return;
    std::vector<Point3*> vVertices;
    store.getVertices(vVertices);
    vNew.clear();
    for (Point3* vertex : vVertices)
        if (vertex->getOneTet() == nullptr) vNew.push_back(vertex);
}

void Dt3::triangulate(std::vector<Point3*>& vVertices, Tet3* pLastTet) {
    if (pLastTet == nullptr) goToHell("pLastTet==NULL in Dt3::triangulate");
    if (vVertices.empty()) {
        printNothingToInsert();
        return;
    }
    // Only lists that are short beside the mesh come here: some vertex of the mesh is nearer to the
    // next one than the last one of the list.
    pRecentTet = pLastTet;
    InsertionOrder order(vVertices.size());
    for (std::size_t position; order.next(position);) {
        Point3*& pVtx = vVertices[position];
        insertVertex(pVtx, startTetNear(*pVtx));
    }
}

Tet3* Dt3::insertVertex(Point3*& pVtx, Tet3* pCurTet) {
    engineCheck(!MeshAccess::visited(pCurTet), "!pCurTet->hasBeenVisited", 789);
    const int located = locateConflictTet(pVtx, pCurTet);
    return insertLocated(pVtx, pCurTet, located);
}

/// Inserts a vertex that has been located in (or beyond a facet of) pCurTet.
Tet3* Dt3::insertLocated(Point3*& pVtx, Tet3* pCurTet, int locateResult) {
    engineCheck(locateResult != LOCATION_STOPPED, "locateResult!=-99", 802);
    VARN3D_COUNT(insertions, 1);
    Tet3* pRet = nullptr;
    if (locateResult == LOCATED_VERTEX) {
        pRet = insertDuplicate(pVtx, pCurTet, locateResult);
    } else if (locateResult >= 0) {
        VARN3D_TIME(secondsHull);
        pRet = insertOutsideHull(pVtx, pCurTet, locateResult);
        engineCheck(pRet != nullptr, "pRet!=0", 817);
        engineCheck(!MeshAccess::visited(pRet), "!pRet->hasBeenVisited", 818);
    } else {
        engineCheck(locateResult == LOCATED_INSIDE, "locateResult==-1", 824);
        pRet = cavity.insertInside(pVtx, pCurTet);
    }
    pRecentTet = pRet;
    return pRet;
}

/// Replaces a vertex that equals a corner of pCurTet by that corner.
Tet3* Dt3::insertDuplicate(Point3*& pVtx, Tet3* pCurTet, int locateResult) const {
    engineCheck(locateResult == LOCATED_VERTEX, "locateResult==-2", 749);
    for (int i = 0; i < 4; ++i) {
        Point3* corner = MeshAccess::corner(pCurTet, i);
        if (!(*corner == *pVtx)) continue;
        pVtx = corner;
        return pCurTet;
    }
    printError("insertVertex()", "Proxy not found");
    return nullptr;
}

Tet3* Dt3::startTetNear(const Point3& point) {
    Tet3* near = store.findStartTet(point, ENTRIES_SEARCHED);
    return near != nullptr ? near : pRecentTet;
}

// ---- Start-up ----------------------------------------------------------------------------------

/// Whether all vertices, with the new ones, span space; until then there is nothing to search.
bool Dt3::spansSpace(const std::vector<Point3*>& vNew) {
    for (const Point3* vertex : vNew) span.extend(vertex, predicates);
    return span.getDimension() == 3;
}

/// Makes the first tetrahedron of the first four vertices, in the store's order, that are not
/// coplanar. Null if all are.
Tet3* Dt3::startUp() {
    engineCheck(!bFullDimensional, "!bFullDimensional", 89);
    std::vector<Point3*> vVertices;
    store.getVertices(vVertices);
    Point3* simplex[4];
    if (!findStartUpSimplex(vVertices, simplex)) return nullptr;
    if (predicates.getOrientation3(simplex[0], simplex[1], simplex[2], simplex[3]) ==
        ORIENTATION3_NEGATIVE)
        std::swap(simplex[0], simplex[1]);
    const Orientation3 ori =
        predicates.getOrientation3(simplex[0], simplex[1], simplex[2], simplex[3]);
    engineCheck(ori == ORIENTATION3_POSITIVE, "ori==ORIENTATION3_POSITIVE", 115);
    pRecentTet = cavity.createTet(simplex[0], simplex[1], simplex[2], simplex[3]);
    bFullDimensional = true;
    return pRecentTet;
}

/// The lexicographically first quadruple of positions that is not coplanar. Affinely independent
/// sets are a matroid, so taking the first vertex that raises the dimension each time finds it.
/// O(n).
bool Dt3::findStartUpSimplex(const std::vector<Point3*>& vVertices, Point3* simplex[4]) const {
    int dimension = -1;
    AffineSpan found;
    for (Point3* vertex : vVertices) {
        found.extend(vertex, predicates);
        if (found.getDimension() == dimension) continue;
        simplex[++dimension] = vertex;
        if (dimension == 3) return true;
    }
    return false;
}

// ---- Location ----------------------------------------------------------------------------------

/// A walk that grows long (flat tetrahedra can lead it astray, mostly along the hull of elongated
/// sets) begins anew beside the point before the watchdog would stop it.
int Dt3::locateConflictTet(const Point3* pVtx, Tet3*& pStartTet) const {
    if (pStartTet == nullptr) goToHell("locateConflictTet");
    int located = walk(pVtx, pStartTet, MAX_STEPS / 10);
    if (located == LOCATION_STOPPED) {
        located = locateAtNearestVertex(*pVtx, pStartTet);
        if (located == LOCATION_STOPPED) located = walk(pVtx, pStartTet, MAX_STEPS);
    }
    if (located == LOCATION_STOPPED) stopWalk(pStartTet);
    return located;
}

/// Looks for the point at the vertex nearest to it. Returns the index of a hull facet there that
/// the point lies beyond; else LOCATION_STOPPED, and a tetrahedron at that vertex to walk from.
int Dt3::locateAtNearestVertex(const Point3& point, Tet3*& pTet) const {
    const Point3* nearest = nullptr;
    std::vector<Tet3*> star;
    findNearestStar(point, pTet, nearest, star);
    pTet = star.front();
    for (Tet3* tet : star) {
        bool bFacing = true;  // the point lies in the tetrahedron as seen from the vertex
        for (int i = 0; i < 4; ++i) {
            if (MeshAccess::corner(tet, i) == nearest) continue;
            if (predicates.getOrientation3(tet, i, &point) != ORIENTATION3_NEGATIVE) continue;
            bFacing = false;
            if (MeshAccess::neighbour(tet, i) != nullptr) continue;
            pTet = tet;
            return i;
        }
        if (bFacing) pTet = tet;
    }
    return LOCATION_STOPPED;
}

/// Goes from vertex to neighbouring vertex as long as that comes nearer to the point; in a Delaunay
/// mesh this ends at the vertex nearest of all. Yields it and the tetrahedra around it.
void Dt3::findNearestStar(const Point3& point, Tet3* pTet, const Point3*& pNearest,
                          std::vector<Tet3*>& star) {
    Point3* centre = MeshAccess::corner(pTet, 0);
    double distance = squaredDistance(*centre, point);
    while (pNearest != centre) {
        pNearest = centre;
        star.clear();
        getTetsAroundVertex(centre, star);
        for (const Tet3* tet : star) {
            for (int i = 0; i < 4; ++i) {
                Point3* corner = MeshAccess::corner(tet, i);
                const double cornerDistance = squaredDistance(*corner, point);
                if (!(cornerDistance < distance)) continue;
                distance = cornerDistance;
                centre = corner;
            }
        }
    }
}

/// The watchdog's report. It also moves one step at random, for a caller who tries again.
void Dt3::stopWalk(Tet3*& pTet) {
    Tet3* neighbour = MeshAccess::neighbour(pTet, std::rand() % 4);
    if (neighbour != nullptr) pTet = neighbour;
    std::cout << "watchDog: bad point" << std::endl;
}

/// A visibility walk (Devillers, Pion and Teillaud, Walking in a triangulation, 2002): it crosses
/// the first facet that has the point on its outer side. After maxSteps facets it gives up.
int Dt3::walk(const Point3* pVtx, Tet3*& pStartTet, int maxSteps) const {
    VARN3D_TIME(secondsWalk);
    FacetSides sides = predicates.seeFacets(pStartTet, pVtx);
    int facet = 0;
    int untested = 4;
    bool bEntered = false;
    int located = LOCATION_STOPPED;
    int steps = 0;
    for (;;) {
        const int numInner = countInnerFacets(sides, facet, untested);
        facet = (facet + numInner) % 4;
        untested -= numInner;
        steps += numInner + (untested > 0 ? 1 : 0);
        if (steps > maxSteps) break;
        if (untested == 0) {
            if (bEntered) checkEntry(pStartTet, facet, pVtx, sides);
            located = LOCATED_INSIDE;
            break;
        }
        const Orientation3 side = sides.orientation[facet] < -sides.bound
                                      ? ORIENTATION3_NEGATIVE
                                      : predicates.getOrientation3(pStartTet, facet, pVtx);
        if (side == ORIENTATION3_NEGATIVE) {
            Tet3* next = MeshAccess::neighbour(pStartTet, facet);
            if (next == nullptr) {
                located = facet;
                break;
            }
            facet = (MeshAccess::indexOfNeighbour(next, pStartTet) + 1) % 4;
            pStartTet = next;
            sides = predicates.seeFacets(pStartTet, pVtx);
            bEntered = true;
            untested = 3;  // the facet just crossed has the point on its inner side
            continue;
        }
        if (side == ORIENTATION3_COPLANAR) {
            located = examineCoplanar(pVtx, pStartTet, facet);
            if (located != LOCATION_STOPPED) break;
        }
        facet = (facet + 1) % 4;
        --untested;
    }
    VARN3D_COUNT_WALK(steps);
    return located;
}

/// What must hold where a walk ends inside; only a mesh broken from outside violates it. The walk
/// has tested all facets but the one it came in by; that the sphere holds the point is left to
/// those who go on from here.
void Dt3::checkEntry(const Tet3* pStartTet, int entry, const Point3* pVtx,
                     const FacetSides& sides) const {
    static const char* const CONDITIONS[4] = {
        "predicates.getOrientation3(pStartTet,0,pVtx)==ORIENTATION3_POSITIVE",
        "predicates.getOrientation3(pStartTet,1,pVtx)==ORIENTATION3_POSITIVE",
        "predicates.getOrientation3(pStartTet,2,pVtx)==ORIENTATION3_POSITIVE",
        "predicates.getOrientation3(pStartTet,3,pVtx)==ORIENTATION3_POSITIVE"};
    if (sides.orientation[entry] > sides.bound) return;
    const Orientation3 side = predicates.getOrientation3(pStartTet, entry, pVtx);
    engineCheck(side == ORIENTATION3_POSITIVE, CONDITIONS[entry], 570 + entry);
}

/// The point lies in the plane of a facet: finds out whether it lies in the tetrahedron. Returns
/// LOCATION_STOPPED when it does not, and the walk must go on.
int Dt3::examineCoplanar(const Point3* pVtx, Tet3*& pStartTet, int facet) const {
    for (int i = 0; i < 4; ++i)
        if (*pVtx == *MeshAccess::corner(pStartTet, i)) return LOCATED_VERTEX;

    int numPositive = 0;
    int numCoplanar = 0;
    int hullFacet = LOCATED_INSIDE;
    int secondCoplanar = facet;
    for (int k = 0; k < 4; ++k) {
        const Orientation3 side = predicates.getOrientation3(pStartTet, k, pVtx);
        if (side == ORIENTATION3_NEGATIVE) return LOCATION_STOPPED;
        if (side == ORIENTATION3_POSITIVE) {
            ++numPositive;
            continue;
        }
        ++numCoplanar;
        if (MeshAccess::neighbour(pStartTet, k) == nullptr) hullFacet = k;
        if (k != facet) secondCoplanar = k;
    }
    if (numPositive == 3) return hullFacet;
    engineCheck(numPositive == 2, "numPositive==2", 560);
    engineCheck(numCoplanar == 2, "numCoplanar==2", 561);
    return circulateToHull(pStartTet, facet, secondCoplanar);
}

/// The point lies on the edge opposite two corners: looks for a hull facet at that edge.
int Dt3::circulateToHull(Tet3*& pStartTet, int opp3ICI, int opp2ICI) {
    TetAroundEdgeIterator around(pStartTet->getEdge(opp3ICI, opp2ICI));
    do {
        if (around.nextIsNull()) {
            pStartTet = *around;
            const int outIndex = around.getOpp2Index();
            engineCheck(pStartTet->getOppTet(outIndex) == nullptr,
                        "pStartTet->getOppTet(outIndex)==0", 580);
            return outIndex;
        }
        ++around;
    } while (*around != pStartTet);
    return LOCATED_INSIDE;
}

Tet3* Dt3::locate(const Point3& point) {
    requireFinite(point, 0, "Dt3::locate()");
    if (!bFullDimensional) return nullptr;
    const Point3 p(point);
    Tet3* tet = startTetNear(p);
    const int located = locateConflictTet(&p, tet);
    return located == LOCATED_INSIDE || located == LOCATED_VERTEX ? tet : nullptr;
}

// ---- Insertion outside the hull ----------------------------------------------------------------

Tet3* Dt3::insertOutsideHull(Point3* pVtx, Tet3* pCurTet, int opp3ICI) {
    engineCheck(pCurTet != nullptr, "pCurTet!=0", 1201);
    engineCheck(opp3ICI > -1, "opp3ICI>-1", 1202);
    VARN3D_COUNT(hullInsertions, 1);
    collectVisibleHullTets(pVtx, pCurTet, opp3ICI);
    return cavity.insertOutside(pVtx, vVisible);
}

/// Gathers in vVisible, each once, the tetrahedra with a hull facet that the point sees, starting
/// at one of them and going from facet to facet over the hull's edges.
void Dt3::collectVisibleHullTets(const Point3* pVtx, Tet3* pCurTet, int opp3ICI) {
    vVisible.clear();
    hullEdges.clear();
    seenEdges.clear();
    seenTets.clear();

    const auto addFacet = [this](Tet3* tet, int opp3, bool bAlways) {
        for (int k = 0; k < 4; ++k) {
            if (k == opp3) continue;
            const HullEdge edge(tet, opp3, k);
            const bool bNew = seenEdges.insert(edge.low(), edge.high());
            if (bNew || bAlways) hullEdges.push_back(edge);
        }
        if (seenTets.insert(tet, nullptr)) vVisible.push_back(tet);
    };
    addFacet(pCurTet, opp3ICI, true);
    while (!hullEdges.empty()) {
        HullEdge edge = hullEdges.back();
        hullEdges.pop_back();
        hullTurns.turn(edge);
        engineCheck(MeshAccess::neighbour(edge.tet, edge.opp2) == nullptr,
                    "pCurTet->getOppTet(opp2ICI)==0", 1250);
        if (predicates.getOrientation3(edge.tet, edge.opp2, pVtx) == ORIENTATION3_NEGATIVE)
            addFacet(edge.tet, edge.opp2, false);
    }
}

// ---- Queries -----------------------------------------------------------------------------------

void Dt3::getAllTetrahedra(std::vector<Tet3*>& vTet) const {
    engineCheck(vTet.empty(), "vTet.empty()", 1300);
    if (!bFullDimensional) {
        std::cout << "Dt3::getAllTetrahedra(), oneTet==NULL" << std::endl;
        return;
    }
    tets.listLive(vTet);
}

void Dt3::getTetsAroundVertex(Point3* pVtx, std::vector<Tet3*>& vTets) {
    if (pVtx->getOneTet() == nullptr) {
        printError("Dt3::getTetsAroundVertex()", "pVtx does not belong to the triangulation");
        return;
    }
    PointerPairSet visited;
    std::vector<Tet3*> pending;
    const auto visit = [&](Tet3* tet) {
        if (!visited.insert(tet, nullptr)) return;
        vTets.push_back(tet);
        pending.push_back(tet);
    };
    visit(pVtx->getOneTet());
    while (!pending.empty()) {
        const Tet3* current = pending.back();
        pending.pop_back();
        const int k = current->getIntraTetIndex(pVtx);
        for (int i = 0; i < 4; ++i) {
            Tet3* neighbour = MeshAccess::neighbour(current, i);
            if (i != k && neighbour != nullptr) visit(neighbour);
        }
    }
}

// ---- Validity and dumps ------------------------------------------------------------------------

namespace {

/// Writes a label and the plain name of an orientation.
void printOrientation(const std::string& label, Orientation3 orientation) {
    std::cout << label << ": ";
    if (orientation == ORIENTATION3_POSITIVE) std::cout << "positive";
    if (orientation == ORIENTATION3_NEGATIVE) std::cout << "negative";
    if (orientation == ORIENTATION3_COPLANAR) std::cout << "coplanar";
    std::cout << std::endl;
}

}  // namespace

/// The marks are checked whatever `checkVisited` says.
bool Dt3::checkValidity(const std::string& location, bool /*checkVisited*/,
                        bool checkSphereInc) const {
    std::vector<Tet3*> vTets;
    getAllTetrahedra(vTets);
    std::cout << "\n\n** CheckValidity at [ " << location
              << "]: Number of tetrahedra: " << vTets.size() << std::endl;
    std::cout << "   with --checkvisited" << std::endl;
    std::cout << (checkSphereInc ? "   with --checkSphereInc" : "   without --checkSphereInc")
              << std::endl;
    std::cout << "   vTets.size()=" << vTets.size() << std::endl;
    for (Tet3* tet : vTets)
        if (!checkTet(location, tet, checkSphereInc)) return false;
    std::cout << "** CheckValidity at (" << location << ") has been finished, seems OK" << std::endl
              << std::endl;
    return true;
}

bool Dt3::checkTet(const std::string& location, Tet3* pTet, bool checkSphereInc) const {
    if (MeshAccess::visited(pTet)) {
        printError("Dt3::CheckValidity()", "pcurrentTet->hasBeenvisited=true");
        std::cout << *pTet << std::endl;
        engineCheck(false, "false", 1410);
    }
    for (int ith = 0; ith < 4; ++ith) {
        const Tet3* neighbour = pTet->getOppTet(ith);
        if (neighbour == nullptr) continue;
        Point3* pVtx = neighbour->getCorner(neighbour->getIntraTetIndex(pTet));
        if (pVtx == nullptr) continue;
        const Orientation3 orientation = predicates.getOrientation3(pTet, ith, pVtx);
        if (orientation != ORIENTATION3_NEGATIVE) {
            reportNegativeSide(location, pTet, ith, pVtx, orientation);
            return false;
        }
        if (checkSphereInc && predicates.sphereInclusionTest(pTet, pVtx) == SIC_INSIDE) {
            reportSphere(pTet, pVtx);
            return false;
        }
    }
    return true;
}

void Dt3::reportNegativeSide(const std::string& location, Tet3* pTet, int ith, Point3* pVtx,
                             Orientation3 orientation) const {
    printBanner("ERROR: checkValidity at [" + location + "]");
    std::cout << "Dt3::checkValidity, HUH, vertex " << pVtx
              << " should be on the negative side, tet=" << std::endl;
    std::cout << *pTet << "oppIndex=" << ith << ", Vertex=" << pVtx << "=" << *pVtx << std::endl;
    printOrientation("checkValidity", orientation);
    show(getNextDumpPrefix() + "negSideBug.list", pVtx);
}

void Dt3::reportSphere(Tet3* pTet, Point3* pVtx) {
    printBanner("checkValidity: ERROR ERROR ERROR");
    std::cout << "Dt3::checkValidity, HUH - sphereIncTest failed: " << std::endl;
    std::cout << *pTet << ", Vertex=" << pVtx << "=" << *pVtx << std::endl;
    Visualizer3 visualizer(getNextDumpPrefix() + "sphereIncBug.list");
    visualizer.writeTet(pTet, "1 0 0 0.5");
    visualizer.writePoints({*pVtx}, 8, "1 1 1 0.5");
    const Point3 centre = pTet->getCircumcenter();
    const Vector3 radius = *pTet->getCorner(0) - centre;
    visualizer.writeBall(centre, radius.x * radius.x + radius.y * radius.y + radius.z * radius.z);
    visualizer.close();
}

void Dt3::show(const std::string& filename, Point3* pVertex) const {
    std::vector<Tet3*> vTets;
    getAllTetrahedra(vTets);
    std::cout << "  Dt3::show(): vTets.size()=" << vTets.size() << std::endl;
    Visualizer3 visualizer(filename);
    for (Tet3* tet : vTets) {
        visualizer.writeTet(tet, Visualizer3::getNextColor());
        for (int i = 0; i < 4; ++i) visualizer.writePoints({*tet->getCorner(i)}, 5, "0 1 0 0.5");
    }
    if (pVertex != nullptr) visualizer.writePoints({*pVertex}, 10, "1 0 0 0.5");
    visualizer.close();
}

void Dt3::print(const std::string& label) const {
    std::vector<Tet3*> vTets;
    getAllTetrahedra(vTets);
    std::cout << "\n\n**** Dt3::print(" << label << "), numTets=" << vTets.size() << std::endl;
    for (const Tet3* tet : vTets) std::cout << *tet << std::endl << std::endl;
}

}  // namespace VARN3D
