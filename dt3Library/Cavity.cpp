#include "dt3Library/Cavity.h"

#include <cmath>
#include <cstdint>
#include <iomanip>
#include <iostream>
#include <limits>

#include "dt3Library/EngineCheck.h"
#include "dt3Library/FloatingPoint.h"
#include "dt3Library/Profile.h"
#include "dt3Library/prefetch.h"

namespace VARN3D {

namespace {

/// The corners 1, 2, 3 of the new tetrahedron on facet ith of an old one, seen from inside.
constexpr int INNER_FACET[4][3] = {{1, 2, 3}, {0, 3, 2}, {0, 1, 3}, {0, 2, 1}};
/// The same seen from outside.
constexpr int OUTER_FACET[4][3] = {{1, 3, 2}, {0, 2, 3}, {0, 3, 1}, {0, 1, 2}};

constexpr std::uint8_t HIGHEST_BIT[16] = {0, 0, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3, 3, 3, 3, 3};

inline std::uintptr_t addressOf(const Point3* p) {
    return reinterpret_cast<std::uintptr_t>(p);
}

/// All corners' addresses in one: taking three of them out leaves the fourth.
inline std::uintptr_t mixedCorners(const Tet3* tet) {
    return addressOf(MeshAccess::corner(tet, 0)) ^ addressOf(MeshAccess::corner(tet, 1)) ^
           addressOf(MeshAccess::corner(tet, 2)) ^ addressOf(MeshAccess::corner(tet, 3));
}

}  // namespace

Cavity::Cavity(const GeomTest3& geomTest, TetRecycler& recycler)
    : predicates(geomTest),
      tets(recycler),
      evaluateFacets(bPortableKernel ? testFacetsOneByOne : fastestFacetSphereKernel()) {
    rows.resize(256);
    vertices.resize(256);
    boundary.resize(256);
    stack.reserve(256);
}

void Cavity::begin(Point3* p) {
    newVertex = p;
    firstNumber += numRows;
    numRows = 0;
    maxX = maxY = maxZ = maxLift = 0.0;
    tets.swapLists();
}

// ---- Rows and bounds ---------------------------------------------------------------------------

/// For a vertex that has not been met yet this is no number in use.
inline std::uint32_t Cavity::numberIfMet(Point3* vertex) const {
    return MeshAccess::cavityNumber(vertex) - firstNumber;
}

inline int Cavity::numberOf(Point3* vertex) {
    const std::uint32_t number = numberIfMet(vertex);
    return number < numRows ? static_cast<int>(number) : addRow(vertex);
}

int Cavity::addRow(Point3* vertex) {
    const double x = vertex->x() - newVertex->x();
    const double y = vertex->y() - newVertex->y();
    const double z = vertex->z() - newVertex->z();
    const double lift = x * x + y * y + z * z;
    if (numRows == rows.size()) {
        rows.resize(2 * rows.size());
        vertices.resize(rows.size());
    }
    rows[numRows] = {x, y, z, lift};
    vertices[numRows] = vertex;
    MeshAccess::cavityNumber(vertex) = firstNumber + numRows;
    const double sizeX = std::fabs(x);
    const double sizeY = std::fabs(y);
    const double sizeZ = std::fabs(z);
    maxX = maxX < sizeX ? sizeX : maxX;
    maxY = maxY < sizeY ? sizeY : maxY;
    maxZ = maxZ < sizeZ ? sizeZ : maxZ;
    maxLift = maxLift < lift ? lift : maxLift;
    return static_cast<int>(numRows++);
}

/// The determinants below are Shewchuk's first stage, so his bounds hold with every term of the
/// permanent replaced by the product of the largest components: 24 terms of the sphere test.
/// Differences too large for that leave everything to the predicates.
void Cavity::updateBounds() {
    constexpr double MAX_LIFT = GeomTest3::MAX_DIFFERENCE * GeomTest3::MAX_DIFFERENCE;
    if (!(maxLift < MAX_LIFT)) {
        sphereBound = orientationBound = std::numeric_limits<double>::infinity();
        return;
    }
    orientationBound = predicates.getOrientationBound(maxX, maxY, maxZ);
    sphereBound = 32.0 * predicates.getConstants().isperrboundA * (maxX * maxY * maxZ) * maxLift +
                  GeomTest3::UNDERFLOW_GUARD;
}

inline SphereTest Cavity::evaluate(Tet3* tet) {
    VARN3D_COUNT(sphereTests, 1);
    const std::uint32_t rowsBefore = numRows;
    int number[4];
    for (int i = 0; i < 4; ++i) number[i] = numberOf(MeshAccess::corner(tet, i));
    if (numRows != rowsBefore) updateBounds();
    return evaluateSphereTest(*rowOf(number[0]), *rowOf(number[1]), *rowOf(number[2]),
                              *rowOf(number[3]));
}

inline bool Cavity::isInConflict(Tet3* tet) {
    const double determinant = evaluate(tet).determinant;
    if (determinant > sphereBound) return false;
    if (determinant < -sphereBound) return true;
    VARN3D_COUNT(sphereTestsBeyondBound, 1);
    return predicates.sphereInclusionTest(tet, newVertex) != SIC_OUTSIDE;
}

inline void Cavity::doom(Tet3* tet) {
    VARN3D_COUNT(doomed, 1);
    MeshAccess::visited(tet) = true;
    tets.release(tet);
}

// ---- A vertex inside the hull ------------------------------------------------------------------

Tet3* Cavity::refillFrom(Tet3* start) {
    {
        VARN3D_TIME(secondsConflict);
        growRegionAndBoundary(start);
    }
    VARN3D_TIME(secondsCreation);
    Tet3* last = fillBoundary();
    const std::size_t numStoredTCS = glue();
    if (numStoredTCS != 0)
        std::cout << "numStoredTCS after insertVertex: " << numStoredTCS << std::endl;
    engineCheck(numStoredTCS == 0, "numStoredTCS==0", 920);
    return last;
}

void Cavity::growRegionAndBoundary(Tet3* start) {
    numBoundary = 0;
    stack.clear();
    engineCheck(isInConflict(start), "predicates.sphereInclusionTest(pStartTet,pVtx)==SIC_INSIDE",
                574);
    doom(start);
    pushDoomed(start);
    while (!stack.empty()) {
        const Doomed current = stack.back();
        stack.pop_back();
        visitNeighbours(current);
    }
}

/// All corners must have been met.
inline void Cavity::pushDoomed(Tet3* tet) {
    Doomed doomed{tet, {}};
    for (int i = 0; i < 4; ++i)
        doomed.number[i] = static_cast<int>(numberIfMet(MeshAccess::corner(tet, i)));
    stack.push_back(doomed);
}

/// Evaluates the tests of all four neighbours before it decides any, also of those that need none:
/// their number is hard to predict, and a processor that guesses it wrongly loses more time.
inline void Cavity::visitNeighbours(const Doomed& current) {
    const std::uintptr_t mixed = mixedCorners(current.tet);
    const std::uint32_t rowsBefore = numRows;
    Tet3* neighbours[4];
    int beyond[4];
    unsigned inRegion = 0;
    unsigned onHull = 0;
    Point3* beyondVertices[4];
    unsigned unmet = 0;
    for (int i = 3; i >= 0; --i) {
        Tet3* neighbour = MeshAccess::neighbour(current.tet, i);
        neighbours[i] = neighbour;
        beyond[i] = current.number[i];
        if (neighbour == nullptr) {
            onHull |= 1U << i;
            continue;
        }
        inRegion |= (MeshAccess::visited(neighbour) ? 1U : 0U) << i;
        const std::uintptr_t facet = mixed ^ addressOf(MeshAccess::corner(current.tet, i));
        auto* vertex = reinterpret_cast<Point3*>(mixedCorners(neighbour) ^ facet);
        beyondVertices[i] = vertex;
        const std::uint32_t number = numberIfMet(vertex);
        beyond[i] = static_cast<int>(number);
        unmet |= (number < rowsBefore ? 0U : 1U) << i;
    }
    // Afterwards, so that no wrong guess here delays the loads above. Two may be the same vertex.
    while (unmet != 0) {
        const unsigned i = HIGHEST_BIT[unmet];
        unmet ^= 1U << i;
        beyond[i] = numberOf(beyondVertices[i]);
    }
    if (numRows != rowsBefore) updateBounds();

    const SphereRow* const cornerRows[4] = {rowOf(current.number[0]), rowOf(current.number[1]),
                                            rowOf(current.number[2]), rowOf(current.number[3])};
    const SphereRow* const beyondRows[4] = {rowOf(beyond[0]), rowOf(beyond[1]), rowOf(beyond[2]),
                                            rowOf(beyond[3])};
    FacetSphereTests tests;
    evaluateFacets(cornerRows, beyondRows, ~inRegion, tests);

    const unsigned conflicts =
        decideConflicts(current.tet, ~(inRegion | onHull) & 15U, tests.conflict);

    // Writes every facet, and keeps those that belong to the boundary.
    if (numBoundary + 4 > boundary.size()) boundary.resize(2 * boundary.size());
    BoundaryFacet* end = boundary.data() + numBoundary;
    const unsigned inner = inRegion | conflicts;
    for (int i = 3; i >= 0; --i) {
        const int* corners = INNER_FACET[i];
        *end = {
            current.tet,
            neighbours[i],
            tests.orientation[i],
            {current.number[corners[0]], current.number[corners[1]], current.number[corners[2]]},
            i};
        end += ~inner >> i & 1U;
    }
    numBoundary = static_cast<std::size_t>(end - boundary.data());

    for (unsigned rest = conflicts; rest != 0;) {
        const unsigned i = HIGHEST_BIT[rest];
        rest ^= 1U << i;
        Tet3* neighbour = neighbours[i];
        for (int k = 0; k < 4; ++k) prefetchRecord(MeshAccess::neighbour(neighbour, k));
        doom(neighbour);
        pushDoomed(neighbour);
    }
}

/// Which of the candidates, given as bits by facet, are in conflict.
inline unsigned Cavity::decideConflicts(const Tet3* tet, unsigned candidates,
                                        const double conflict[4]) const {
    unsigned inside = 0;
    unsigned outside = 0;
    for (int i = 0; i < 4; ++i) {
        inside |= (conflict[i] < -sphereBound ? 1U : 0U) << i;
        outside |= (conflict[i] > sphereBound ? 1U : 0U) << i;
    }
    inside &= candidates;
    VARN3D_COUNT(sphereTests, (candidates & 1U) + (candidates >> 1 & 1U) + (candidates >> 2 & 1U) +
                                  (candidates >> 3));
    const unsigned undecided = candidates & ~(inside | outside);
    if (undecided == 0) return inside;
    for (int i = 0; i < 4; ++i) {
        if ((undecided >> i & 1U) == 0) continue;
        VARN3D_COUNT(sphereTestsBeyondBound, 1);
        if (predicates.sphereInclusionTest(MeshAccess::neighbour(tet, i), newVertex) != SIC_OUTSIDE)
            inside |= 1U << i;
    }
    return inside;
}

Tet3* Cavity::fillBoundary() {
    gluing.begin(numRows);
    std::uint32_t label = MeshAccess::reserveLabels(numBoundary);
    Tet3* last = nullptr;
    for (std::size_t i = 0; i < numBoundary; ++i) {
        const BoundaryFacet& facet = boundary[i];
        Point3* b = vertexOf(facet.number[0]);
        Point3* c = vertexOf(facet.number[1]);
        Point3* d = vertexOf(facet.number[2]);
        if (!(facet.orientation > orientationBound)) checkOrientation(newVertex, b, c, d);
        VARN3D_COUNT(created, 1);
        last = tets.take();
        MeshAccess::fill(last, label++, newVertex, b, c, d);
        gluing.add(last, facet.number[0], facet.number[1], facet.number[2]);
        if (facet.outer != nullptr)
            registerTets(last, 0, facet.outer,
                         MeshAccess::indexOfNeighbour(facet.outer, facet.inner));
    }
    return last;
}

// ---- A vertex outside the hull -----------------------------------------------------------------

void Cavity::grow(const std::vector<Tet3*>& vSeeds, std::vector<Tet3*>& vStaying,
                  std::vector<Tet3*>& vDoomed) {
    for (Tet3* seed : vSeeds) {
        if (isInConflict(seed)) {
            doom(seed);
            vDoomed.push_back(seed);
        } else {
            vStaying.push_back(seed);
        }
    }
    std::vector<Tet3*> pending(vDoomed);
    while (!pending.empty()) {
        Tet3* tet = pending.back();
        pending.pop_back();
        for (int ith = 0; ith < 4; ++ith) {
            Tet3* neighbour = MeshAccess::neighbour(tet, ith);
            if (neighbour == nullptr || MeshAccess::visited(neighbour)) continue;
            if (!isInConflict(neighbour)) continue;
            doom(neighbour);
            vDoomed.push_back(neighbour);
            pending.push_back(neighbour);
        }
    }
    // Every vertex of a new tetrahedron has been met by now.
    gluing.begin(numRows);
}

Tet3* Cavity::fanOverHull(const std::vector<Tet3*>& vStaying) {
    if (vStaying.empty()) return nullptr;
    Tet3* pNewTet = nullptr;
    for (Tet3* hullTet : vStaying) {
        engineCheck(!MeshAccess::visited(hullTet), "!pCHTet->hasBeenVisited", 1104);
        for (int ith = 0; ith < 4; ++ith) {
            if (MeshAccess::neighbour(hullTet, ith) != nullptr) continue;
            const Orientation3 orient = predicates.getOrientation3(hullTet, ith, newVertex);
            if (orient == ORIENTATION3_POSITIVE || orient == ORIENTATION3_COPLANAR) continue;
            engineCheck(orient == ORIENTATION3_NEGATIVE, "orient==ORIENTATION3_NEGATIVE", 1112);
            // The facet was just seen from outside, so the new tetrahedron is positive.
            const int* corners = OUTER_FACET[ith];
            pNewTet = newTet(MeshAccess::reserveLabels(1), MeshAccess::corner(hullTet, corners[0]),
                             MeshAccess::corner(hullTet, corners[1]),
                             MeshAccess::corner(hullTet, corners[2]));
            registerTets(pNewTet, 0, hullTet, ith);
        }
    }
    engineCheck(pNewTet != nullptr, "pNewTet!=0", 1130);
    return pNewTet;
}

Tet3* Cavity::retetrahedralise(const std::vector<Tet3*>& vDoomed) {
    if (vDoomed.empty()) {
        std::cout << "Warning: vDoomedTets() without input tets, returning NULL" << std::endl;
        engineCheck(false, "false", 1012);
    }
    Tet3* pNewTet = nullptr;
    for (Tet3* doomed : vDoomed) {
        engineCheck(MeshAccess::visited(doomed), "pDoomedTet->hasBeenVisited", 1020);
        for (int ith = 0; ith < 4; ++ith) {
            Tet3* pOppTet = MeshAccess::neighbour(doomed, ith);
            if (pOppTet != nullptr && MeshAccess::visited(pOppTet)) continue;
            // A facet that p sees from outside or edge-on can't carry a tetrahedron.
            if (predicates.getOrientation3(doomed, ith, newVertex) != ORIENTATION3_POSITIVE)
                continue;
            const int* corners = INNER_FACET[ith];
            pNewTet = newTet(MeshAccess::reserveLabels(1), MeshAccess::corner(doomed, corners[0]),
                             MeshAccess::corner(doomed, corners[1]),
                             MeshAccess::corner(doomed, corners[2]));
            if (pOppTet != nullptr)
                registerTets(pNewTet, 0, pOppTet, MeshAccess::indexOfNeighbour(pOppTet, doomed));
        }
    }
    engineCheck(pNewTet != nullptr, "pNewTet!=0", 1060);
    return pNewTet;
}

// ---- Creation and linking ----------------------------------------------------------------------

/// A new tetrahedron of p and three other vertices, without check.
Tet3* Cavity::newTet(std::uint32_t label, Point3* b, Point3* c, Point3* d) {
    VARN3D_COUNT(created, 1);
    Tet3* tet = tets.take();
    MeshAccess::fill(tet, label, newVertex, b, c, d);
    gluing.add(tet, numberOf(b), numberOf(c), numberOf(d));
    return tet;
}

std::size_t Cavity::glue() {
    return gluing.glue();
}

void Cavity::checkOrientation(Point3* a, Point3* b, Point3* c, Point3* d) const {
    const Orientation3 orientation = predicates.getOrientation3(a, b, c, d);
    if (orientation == ORIENTATION3_POSITIVE) return;
    const bool negative = orientation == ORIENTATION3_NEGATIVE;
    std::cout << "Dt3::createTet(), ERROR: "
              << (negative ? "ORIENTATION3_NEGATIVE" : "ORIENTATION3_COPLANAR")
              << " ORIENTATION OF: " << std::endl;
    std::cout << std::setprecision(15);
    for (const Point3* corner : {a, b, c, d}) std::cout << *corner << std::endl;
    engineCheck(!negative, "false", 980);
    std::cout << "..probably a legal situaion but observe!" << std::endl;
}

Tet3* Cavity::createTet(Point3* a, Point3* b, Point3* c, Point3* d) {
    checkOrientation(a, b, c, d);
    Tet3* ret = tets.take();
    engineCheck(ret != nullptr, "ret!=0", 990);
    ret->setProperties(a, b, c, d);
    return ret;
}

void Cavity::registerTets(Tet3* fromTet, int ith, Tet3* toTet, int jth) {
    engineCheck(range03(ith), "range03(ith)", 940);
    engineCheck(range03(jth), "range03(jth)", 941);
    engineCheck(toTet != nullptr, "toTet!=0", 942);
    if (fromTet == toTet)
        std::cout << "register tets has been called with fromTet==toTet==" << toTet;
    engineCheck(fromTet != toTet, "fromTet!=toTet", 945);
    MeshAccess::neighbour(toTet, jth) = fromTet;
    MeshAccess::neighbour(fromTet, ith) = toTet;
}

}  // namespace VARN3D
