#include "dt3Library/kernel/EdgeTable.h"

#include <cstdlib>
#include <new>

#include "dt3Library/base/facets.h"

namespace VARN3D {

namespace {

constexpr std::uint64_t NO_EDGE = ~std::uint64_t{0};

constexpr std::uint64_t edgeOf(std::uint32_t from, std::uint32_t to) {
    return std::uint64_t{from} << 32 | to;
}

}  // namespace

void EdgeTable::Free::operator()(FacetCode* memory) const {
    std::free(memory);
}

/// A mesh with faults can have more vertices around a cavity than its facets let expect, up to
/// three a facet: there are rows for these. Memory that is never touched costs nothing.
void EdgeTable::grow(std::size_t numVertices) {
    constexpr std::size_t MARGIN = 8;
    unsigned newShift = shift;
    while (numVertices > std::size_t{1} << newShift) ++newShift;
    const std::size_t numPlaces = MARGIN << 2 * newShift;
    table.reset(static_cast<FacetCode*>(std::calloc(numPlaces, sizeof(FacetCode))));
    if (table == nullptr) throw std::bad_alloc();
    shift = newShift;
}

std::size_t EdgeTable::linkByHashing(const std::vector<CavityFacet>& facets, std::size_t numFacets,
                                     const Slot* slots, CompactTet* tets) {
    unsigned bits = 12;
    while (std::size_t{1} << bits < 6 * numFacets) ++bits;
    const std::size_t capacity = std::size_t{1} << bits;
    hash.assign(capacity, {NO_EDGE, 0});
    const auto place = [&](std::uint64_t edge) {
        // The topmost bits of the product depend on both vertices.
        auto at = static_cast<std::size_t>(edge * 0x9E3779B97F4A7C15U >> (64 - bits));
        while (hash[at].edge != NO_EDGE && hash[at].edge != edge) at = (at + 1) & (capacity - 1);
        return at;
    };
    for (std::size_t i = 0; i < numFacets; ++i) {
        const auto& number = facets[i].number;
        for (unsigned k = 0; k < 3; ++k) {
            const std::uint64_t edge = edgeOf(number[k], number[(k + 1) % 3]);
            hash[place(edge)] = {edge, facetCode(slots[i], FAN_OPPOSITE[k])};
        }
    }
    std::size_t numUnpaired = 0;
    for (std::size_t i = 0; i < numFacets; ++i) {
        const auto& number = facets[i].number;
        for (unsigned k = 0; k < 3; ++k) {
            const Entry& partner = hash[place(edgeOf(number[(k + 1) % 3], number[k]))];
            if (partner.edge == NO_EDGE) ++numUnpaired;
            tets[slots[i]].link[FAN_OPPOSITE[k]] = partner.code;
        }
    }
    return numUnpaired;
}

}  // namespace VARN3D
