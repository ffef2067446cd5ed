#include "dt3Library/engine/FacetGluing.h"

#include "dt3Library/base/MeshAccess.h"
#include "dt3Library/base/facets.h"
#include "dt3Library/base/hashPointers.h"

namespace VARN3D {

void FacetGluing::reserve(std::size_t numTets) {
    constexpr std::size_t PLACES_A_TET = 24;
    bits = 8;
    while (std::size_t{1} << bits < PLACES_A_TET * numTets) ++bits;
    if (placeOf.size() < 4 * numTets) placeOf.resize(8 * numTets);
    if (table.size() < std::size_t{1} << bits) table.resize(std::size_t{1} << bits);
}

std::size_t FacetGluing::glue(const std::vector<Tet3*>& tets) {
    enterEdges(tets);
    std::size_t unpaired = 0;
    for (Tet3* tet : tets) {
        for (int k = 0; k < 3; ++k) {
            Tet3* partner = findPartner(tets, MeshAccess::corner(tet, FAN_SOURCE[k]),
                                        MeshAccess::corner(tet, FAN_TARGET[k]));
            MeshAccess::neighbour(tet, FAN_OPPOSITE[k]) = partner;
            unpaired += partner == nullptr ? 1 : 0;
        }
    }
    return unpaired;
}

inline FacetGluing::Place FacetGluing::home(const Point3* source, const Point3* target) const {
    return static_cast<Place>(hashPointers(source, target) >> (64 - bits));
}

/// No short cut between the two conditions: what earlier insertions left makes the first one
/// unpredictable.
inline bool FacetGluing::isTaken(Place place, Edge numEntered) const {
    const Edge edge = table[place];
    return (edge < numEntered) & (placeOf[edge] == place);
}

inline void FacetGluing::enterEdges(const std::vector<Tet3*>& tets) {
    Edge edge = 0;
    for (const Tet3* tet : tets) {
        for (int k = 0; k < 3; ++k, ++edge) {
            Place place = home(MeshAccess::corner(tet, FAN_SOURCE[k]),
                               MeshAccess::corner(tet, FAN_TARGET[k]));
            while (isTaken(place, edge)) place = placeAfter(place);
            table[place] = edge;
            placeOf[edge] = place;
        }
        ++edge;
    }
}

/// The tetrahedron with the edge opposite to this one; null if there is none.
inline Tet3* FacetGluing::findPartner(const std::vector<Tet3*>& tets, const Point3* source,
                                      const Point3* target) const {
    const auto numEdges = static_cast<Edge>(4 * tets.size());
    for (Place place = home(target, source); isTaken(place, numEdges); place = placeAfter(place)) {
        const Edge edge = table[place];
        Tet3* tet = tets[edge / 4];
        if (MeshAccess::corner(tet, FAN_SOURCE[edge % 4]) == target &&
            MeshAccess::corner(tet, FAN_TARGET[edge % 4]) == source)
            return tet;
    }
    return nullptr;
}

}  // namespace VARN3D
