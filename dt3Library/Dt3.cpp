#include "dt3Library/Dt3.h"

#include <array>
#include <exception>

#include "dt3Library/base/EngineCheck.h"
#include "dt3Library/base/MeshAccess.h"
#include "dt3Library/base/Profile.h"
#include "dt3Library/base/messages.h"
#include "dt3Library/engine/InsertionOrder.h"
#include "dt3Library/engine/LiveTets.h"
#include "dt3Library/engine/MeshCheck.h"
#include "dt3Library/engine/hostCalls.h"
#include "dt3Library/engine/meshDumps.h"
#include "dt3Library/engine/startSimplex.h"
#include "dt3Library/kernel/BatchInsertion.h"
#include "dt3Library/predicates/FloatingPoint.h"

namespace VARN3D {

namespace {

/// How many table entries on either side of a point are searched for a tetrahedron. Vertices
/// without one (stored before the mesh existed) can be many; behind them the most recent
/// tetrahedron serves as well.
constexpr std::size_t ENTRIES_SEARCHED = 32;

void printNothingToInsert() {
    messageStream() << "Attention: triangulate has got an empty vector" << std::endl;
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

Dt3::Dt3(const KernelSteps& theSteps)
    : locator(predicates), cavity(predicates, tets), kernelSteps(theSteps) {}

// ---- Insertion ---------------------------------------------------------------------------------

void Dt3::insert(const InputPoints& vInputPoints, std::vector<Point3*>& vUserHandles) {
    for (std::size_t i = 0; i < vInputPoints.size(); ++i)
        requireFinite(vInputPoints[i], i, "Dt3::insert()");
    if (bVerbose)
        messageStream() << std::endl << "Dt3::insert(vector,vector) has been called" << std::endl;
    if (!vUserHandles.empty()) {
        printWarning("Dt3::insert()", "vUserHandles is not empty as it should be");
        vUserHandles.clear();
    }
    ++revision;
    const std::size_t n = vInputPoints.size();
    messageStream() << "numPoints=" << n << std::endl;
    if (n == 0) return;

    progress.begin(n);
    std::vector<Point3*> vNew;
    const HC3::Mark mark = store.mark();
    const AffineSpan spanBefore = span;
    try {
        {
            VARN3D_TIME(secondsStore);
            store.insert(vInputPoints, vUserHandles, vNew, progress);
        }
        // What a failed insertion may have left waiting joins the mesh now.
        if (bFailed) vNew = listWaiting();
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
    insertOneByOne(vNew);
}

/// Inserts a batch that is large against the mesh, and empties its list. A small one is left to be
/// inserted vertex by vertex.
void Dt3::insertLaterBatch(std::vector<Point3*>& vNew) {
    if (vNew.empty())
        printNothingToInsert();
    else if (BatchInsertion::pays(vNew.size(), store.getNumVertices() - vNew.size()))
        insertAtOnce(vNew, pRecentTet);
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
        numInMesh = 0;
        bFullDimensional = false;
        throw;
    }
}

void Dt3::insertAtOnce(std::vector<Point3*>& vVertices, const Tet3* pStart) {
    VARN3D_TIME(secondsKernel);
    BatchInsertion batch(predicates, kernelSteps, tets, store, progress);
    pRecentTet = batch.run(vVertices, pStart);
    numInMesh = batch.getNumVertices();
    cavity.forgetAll();
}

Point3* Dt3::insert(const Point3& point) {
    requireFinite(point, 0, "Dt3::insert()");
    ++revision;
    const FailureNote note(bFailed);
    auto [pVtx, pLastTet] = store.insertOne(point, bFullDimensional ? ENTRIES_SEARCHED : 0);
    if (bFullDimensional) {
        if (pLastTet == nullptr) pLastTet = pRecentTet;
        engineCheck(!MeshAccess::visited(pLastTet), checks::SINGLE_STARTS_IN_MESH);
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

std::size_t Dt3::insertWaiting() {
    const std::size_t numBefore = numInMesh;
    if (getNumWaiting() == 0) return 0;
    ++revision;
    std::vector<Point3*> vWaiting = listWaiting();
    progress.begin(vWaiting.size());
    if (bFullDimensional)
        insertLaterBatch(vWaiting);
    else if (spansSpace(vWaiting))
        insertFirstBatch(vWaiting, 0);
    else
        return 0;
    insertOneByOne(vWaiting);
    return numInMesh - numBefore;
}

/// In the order in which a batch of them would be listed.
std::vector<Point3*> Dt3::listWaiting() const {
    std::vector<Point3*> vVertices;
    store.listForInsertion(vVertices);
    const auto isInMesh = [](const Point3* vertex) { return vertex->getOneTet() != nullptr; };
    vVertices.erase(std::remove_if(vVertices.begin(), vVertices.end(), isInMesh), vVertices.end());
    return vVertices;
}

/// What is left of a batch.
void Dt3::insertOneByOne(std::vector<Point3*>& vNew) {
    if (!vNew.empty()) {
        const FailureNote note(bFailed);
        triangulate(vNew, startTetNear(*vNew.front()));
    }
    bFailed = false;
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
    progress.setTotal(vVertices.size());
    InsertionOrder order(vVertices.size());
    std::size_t done = 0;
    for (std::size_t position; progress.goesOn(done) && order.next(position); ++done) {
        Point3*& pVtx = vVertices[position];
        insertVertex(pVtx, startTetNear(*pVtx));
    }
}

Tet3* Dt3::insertVertex(Point3*& pVtx, Tet3* pCurTet) {
    engineCheck(!MeshAccess::visited(pCurTet), checks::WALK_STARTS_IN_MESH);
    const WalkEnd place = locator.locate(pVtx, pCurTet);
    engineCheck(place.place != WalkEnd::Place::ON_THE_WAY, checks::WALK_ENDS);
    VARN3D_COUNT(insertions, 1);
    if (place.place == WalkEnd::Place::AT_VERTEX) {
        pVtx = MeshAccess::corner(place.tet, place.index);
        pRecentTet = place.tet;
    } else {
        pRecentTet = cavity.insert(pVtx, place);
        ++numInMesh;
    }
    return pRecentTet;
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
    engineCheck(!bFullDimensional, checks::NO_TETRAHEDRON_YET);
    std::vector<Point3*> vVertices;
    store.getVertices(vVertices);
    std::array<Point3*, 4> simplex;
    if (!findStartSimplex(vVertices, predicates, simplex)) return nullptr;
    pRecentTet = cavity.createTet(simplex[0], simplex[1], simplex[2], simplex[3]);
    numInMesh = 4;
    bFullDimensional = true;
    return pRecentTet;
}

// ---- Queries -----------------------------------------------------------------------------------

Tet3* Dt3::locate(const Point3& point) {
    requireFinite(point, 0, "Dt3::locate()");
    if (!bFullDimensional) return nullptr;
    const Point3 p(point);
    const WalkEnd end = locator.locate(&p, startTetNear(p));
    const bool bHeld =
        end.place == WalkEnd::Place::INSIDE || end.place == WalkEnd::Place::AT_VERTEX;
    return bHeld ? end.tet : nullptr;
}

void Dt3::getAllTetrahedra(std::vector<Tet3*>& vTet) const {
    engineCheck(vTet.empty(), checks::EMPTY_LIST);
    if (!bFullDimensional) {
        messageStream() << "Dt3::getAllTetrahedra(), oneTet==NULL" << std::endl;
        return;
    }
    const LiveTets live(tets);
    vTet.reserve(live.size());
    live.forEach([&](Tet3* tet) { vTet.push_back(tet); });
}

void Dt3::getHullFacets(std::vector<Facet3>& vFacets) const {
    LiveTets(tets).forEach([&](Tet3* tet) {
        for (int i = 0; i < 4; ++i)
            if (MeshAccess::neighbour(tet, i) == nullptr) vFacets.emplace_back(tet, i);
    });
}

std::vector<Tet3*> Dt3::listTetrahedra() const {
    std::vector<Tet3*> vTets;
    getAllTetrahedra(vTets);
    return vTets;
}

bool Dt3::checkValidity(const std::string& location, bool checkSphereInc) const {
    return MeshCheck(predicates, listTetrahedra()).run(location, checkSphereInc);
}

void Dt3::show(const std::string& filename, const Point3* pVertex) const {
    showMesh(filename, listTetrahedra(), pVertex);
}

void Dt3::print(const std::string& label) const {
    printMesh(label, listTetrahedra());
}

}  // namespace VARN3D
