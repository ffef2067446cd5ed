#include "dt3Library/Cavity.h"

#include <cmath>
#include <cstdint>
#include <iomanip>
#include <iostream>
#include <limits>

#include "dt3Library/EngineCheck.h"
#include "dt3Library/FloatingPoint.h"
#include "dt3Library/Profile.h"

namespace VARN3D {

namespace {

/// The corners 1, 2, 3 of the new tetrahedron on facet ith of an old one, seen from inside.
constexpr int INNER_FACET[4][3] = {{1, 2, 3}, {0, 3, 2}, {0, 1, 3}, {0, 2, 1}};
/// The same seen from outside.
constexpr int OUTER_FACET[4][3] = {{1, 3, 2}, {0, 2, 3}, {0, 3, 1}, {0, 1, 2}};

#if defined(__GNUC__)
inline void prefetch(std::uintptr_t address) {
    __builtin_prefetch(reinterpret_cast<const void*>(address));
}
#else
inline void prefetch(std::uintptr_t) {}
#endif

int indexOfNeighbour(const Tet3* tet, const Tet3* neighbour) {
    int j = 0;
    while (j < 3 && MeshAccess::neighbour(tet, j) != neighbour) ++j;
    return j;
}

}  // namespace

Cavity::Cavity(const GeomTest3& geomTest, TetRecycler& recycler)
    : predicates(geomTest), tets(recycler) {
    rows.resize(256);
    stack.reserve(256);
    boundary.reserve(256);
}

void Cavity::begin(Point3* p) {
    newVertex = p;
    numRows = 0;
    maxX = maxY = maxZ = maxLift = 0.0;
    gluing.begin();
    tets.swapLists();
}

// ---- Rows and bounds ---------------------------------------------------------------------------

inline int Cavity::numberOf(Point3* vertex) {
    const int number = MeshAccess::cavityNumber(vertex);
    // A number left by another insertion names another vertex or none.
    if (static_cast<unsigned>(number) < static_cast<unsigned>(numRows) &&
        rows[static_cast<std::size_t>(number)].vertex == vertex)
        return number;
    return addRow(vertex);
}

int Cavity::addRow(Point3* vertex) {
    const double x = vertex->x() - newVertex->x();
    const double y = vertex->y() - newVertex->y();
    const double z = vertex->z() - newVertex->z();
    const double lift = x * x + y * y + z * z;
    const int number = numRows++;
    if (static_cast<std::size_t>(numRows) > rows.size()) rows.resize(2 * rows.size());
    rows[static_cast<std::size_t>(number)] = {x, y, z, lift, vertex};
    MeshAccess::cavityNumber(vertex) = number;
    const double sizeX = std::fabs(x);
    const double sizeY = std::fabs(y);
    const double sizeZ = std::fabs(z);
    maxX = maxX < sizeX ? sizeX : maxX;
    maxY = maxY < sizeY ? sizeY : maxY;
    maxZ = maxZ < sizeZ ? sizeZ : maxZ;
    maxLift = maxLift < lift ? lift : maxLift;
    return number;
}

/// The determinants below are Shewchuk's first stage, so his bounds hold with every term of the
/// permanent replaced by the product of the largest components: 24 terms of the sphere test, 6 of
/// the orientation. They hold as long as nothing underflows or overflows. With differences below
/// 2^200 nothing overflows, and each of the fewer than 200 products that underflow adds at most
/// 2^-1074 times a remaining factor below 2^602: far less than the 2^-400 that is added here.
/// Larger differences leave everything to the predicates.
void Cavity::updateBounds() {
    constexpr double UNDERFLOW_GUARD = 0x1p-400;
    constexpr double MAX_LIFT = 0x1p400;
    if (!(maxLift < MAX_LIFT)) {
        sphereBound = orientationBound = std::numeric_limits<double>::infinity();
        return;
    }
    const PredicateConstants& constants = predicates.getConstants();
    const double volume = maxX * maxY * maxZ;
    orientationBound = 8.0 * constants.o3derrboundA * volume + UNDERFLOW_GUARD;
    sphereBound = 32.0 * constants.isperrboundA * volume * maxLift + UNDERFLOW_GUARD;
}

inline Cavity::SphereTest Cavity::evaluate(const Row& a, const Row& b, const Row& c, const Row& d) {
    VARN3D_COUNT(sphereTests, 1);
    const double ab = a.x * b.y - b.x * a.y;
    const double bc = b.x * c.y - c.x * b.y;
    const double cd = c.x * d.y - d.x * c.y;
    const double da = d.x * a.y - a.x * d.y;
    const double ac = a.x * c.y - c.x * a.y;
    const double bd = b.x * d.y - d.x * b.y;
    const double abc = a.z * bc - b.z * ac + c.z * ab;
    const double bcd = b.z * cd - c.z * bd + d.z * bc;
    const double cda = c.z * da + d.z * ac + a.z * cd;
    const double dab = d.z * ab + a.z * bd + b.z * da;
    return {(d.lift * abc - c.lift * dab) + (b.lift * cda - a.lift * bcd), {bcd, -cda, dab, -abc}};
}

inline Cavity::SphereTest Cavity::evaluate(Tet3* tet, int number[4]) {
    for (int i = 0; i < 4; ++i) number[i] = numberOf(MeshAccess::corner(tet, i));
    const Row* row = rows.data();
    return evaluate(row[number[0]], row[number[1]], row[number[2]], row[number[3]]);
}

/// The number of the one corner of a neighbour that is not on the facet with these numbers: the
/// addresses of all others cancel out.
inline int Cavity::numberBeyondFacet(const Tet3* neighbour, const int facet[3]) {
    const auto address = [](const Point3* p) { return reinterpret_cast<std::uintptr_t>(p); };
    std::uintptr_t beyond = 0;
    for (int i = 0; i < 4; ++i) beyond ^= address(MeshAccess::corner(neighbour, i));
    const Row* row = rows.data();
    for (int i = 0; i < 3; ++i) beyond ^= address(row[facet[i]].vertex);
    return numberOf(reinterpret_cast<Point3*>(beyond));
}

inline bool Cavity::isInConflict(Tet3* tet, const SphereTest& test) {
    if (test.determinant > sphereBound) return false;
    if (test.determinant < -sphereBound) return true;
    VARN3D_COUNT(sphereTestsBeyondBound, 1);
    return predicates.sphereInclusionTest(tet, newVertex) != SIC_OUTSIDE;
}

inline bool Cavity::isInConflict(Tet3* tet) {
    int number[4];
    const SphereTest test = evaluate(tet, number);
    updateBounds();
    return isInConflict(tet, test);
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
    boundary.clear();
    stack.clear();
    int number[4];
    const SphereTest test = evaluate(start, number);
    updateBounds();
    doom(start);
    pushDoomed(start, number, test.orientation);
    while (!stack.empty()) {
        const Doomed current = stack.back();
        stack.pop_back();
        visitNeighbours(current);
    }
}

inline void Cavity::pushDoomed(Tet3* tet, const int number[4], const double orientation[4]) {
    stack.push_back({tet,
                     {number[0], number[1], number[2], number[3]},
                     {orientation[0], orientation[1], orientation[2], orientation[3]}});
}

/// Evaluates the tests of all neighbours before it decides any: the evaluations don't depend on
/// each other, and their memory accesses overlap.
inline void Cavity::visitNeighbours(const Doomed& current) {
    struct Candidate {
        Tet3* tet;
        int number[4];  // the corner beyond the facet, then the facet's, seen from the neighbour
        SphereTest test;
    };
    Candidate candidates[4];
    const int rowsBefore = numRows;
    for (int i = 3; i >= 0; --i) {
        Tet3* neighbour = MeshAccess::neighbour(current.tet, i);
        Candidate& candidate = candidates[i];
        candidate.tet = neighbour;
        if (neighbour == nullptr || MeshAccess::visited(neighbour)) continue;
        const int facet[3] = {current.number[INNER_FACET[i][0]], current.number[INNER_FACET[i][2]],
                              current.number[INNER_FACET[i][1]]};
        candidate.number[0] = numberBeyondFacet(neighbour, facet);
        for (int k = 0; k < 3; ++k) candidate.number[k + 1] = facet[k];
        const Row* row = rows.data();
        candidate.test =
            evaluate(row[candidate.number[0]], row[facet[0]], row[facet[1]], row[facet[2]]);
    }
    if (numRows != rowsBefore) updateBounds();
    for (int i = 3; i >= 0; --i) {
        const Candidate& candidate = candidates[i];
        Tet3* neighbour = candidate.tet;
        if (neighbour != nullptr) {
            if (MeshAccess::visited(neighbour)) continue;
            if (isInConflict(neighbour, candidate.test)) {
                doom(neighbour);
                int number[4];
                double orientation[4];
                for (int k = 0; k < 4; ++k) {
                    const Tet3* next = MeshAccess::neighbour(neighbour, k);
                    prefetch(reinterpret_cast<std::uintptr_t>(next));
                    prefetch(reinterpret_cast<std::uintptr_t>(next) + 64);
                    const int own = MeshAccess::cavityNumber(MeshAccess::corner(neighbour, k));
                    int place = 0;
                    for (int m = 1; m < 4; ++m) place = own == candidate.number[m] ? m : place;
                    number[k] = own;
                    orientation[k] = candidate.test.orientation[place];
                }
                pushDoomed(neighbour, number, orientation);
                continue;
            }
        }
        boundary.push_back({current.tet, neighbour, current.orientation[i], i});
    }
}

/// A new tetrahedron of p and three other vertices, without check.
inline Tet3* Cavity::newTet(std::uint32_t label, Point3* b, Point3* c, Point3* d) {
    VARN3D_COUNT(created, 1);
    Tet3* tet = tets.take();
    MeshAccess::fill(tet, label, newVertex, b, c, d);
    gluing.add(tet, numberOf(b), numberOf(c), numberOf(d));
    return tet;
}

Tet3* Cavity::fillBoundary() {
    std::uint32_t label = MeshAccess::reserveLabels(boundary.size());
    Tet3* last = nullptr;
    for (const BoundaryFacet& facet : boundary) {
        const int* corners = INNER_FACET[facet.ith];
        Point3* b = MeshAccess::corner(facet.inner, corners[0]);
        Point3* c = MeshAccess::corner(facet.inner, corners[1]);
        Point3* d = MeshAccess::corner(facet.inner, corners[2]);
        if (!(facet.orientation > orientationBound)) checkOrientation(newVertex, b, c, d);
        last = newTet(label++, b, c, d);
        if (facet.outer != nullptr)
            registerTets(last, 0, facet.outer, indexOfNeighbour(facet.outer, facet.inner));
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
                registerTets(pNewTet, 0, pOppTet, indexOfNeighbour(pOppTet, doomed));
        }
    }
    engineCheck(pNewTet != nullptr, "pNewTet!=0", 1060);
    return pNewTet;
}

// ---- Creation and linking ----------------------------------------------------------------------

std::size_t Cavity::glue() {
    return gluing.glue(static_cast<std::size_t>(numRows));
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
