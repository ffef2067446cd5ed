#include "tools/Adjacency.h"

#include <algorithm>
#include <tuple>

namespace tool {

namespace {

/// A facet as one of its tetrahedra has it, without its smallest vertex.
struct Side {
    std::uint32_t middle;
    std::uint32_t largest;
    std::uint32_t tetrahedron;
    std::uint32_t corner;

    bool operator<(const Side& other) const {
        return std::tie(middle, largest) < std::tie(other.middle, other.largest);
    }
    bool isSameFacet(const Side& other) const {
        return middle == other.middle && largest == other.largest;
    }
};

/// The sides of all facets whose smallest vertex is this one, vertex by vertex.
class Sides {
  public:
    explicit Sides(const std::vector<IndexedMesh::Tetrahedron>& tetrahedra) {
        forEach(tetrahedra, [this](std::uint32_t smallest, const Side&) {
            ends.resize(std::max<std::size_t>(ends.size(), smallest + std::size_t{2}));
            ++ends[smallest + std::size_t{1}];
        });
        for (std::size_t v = 1; v < ends.size(); ++v) ends[v] += ends[v - 1];
        sides.resize(4 * tetrahedra.size());
        forEach(tetrahedra, [this](std::uint32_t smallest, const Side& side) {
            sides[ends[smallest]++] = side;
        });
    }

    /// Calls visit for each two sides of one facet.
    template <class Visit>
    void visitPairs(const Visit& visit) {
        auto begin = sides.begin();
        for (const std::size_t end : ends) {
            const auto stop = sides.begin() + static_cast<std::ptrdiff_t>(end);
            std::sort(begin, stop);
            for (; begin != stop; ++begin)
                if (begin + 1 != stop && begin->isSameFacet(begin[1])) visit(begin[0], begin[1]);
        }
    }

  private:
    template <class Visit>
    static void forEach(const std::vector<IndexedMesh::Tetrahedron>& tetrahedra,
                        const Visit& visit) {
        for (std::uint32_t t = 0; t < tetrahedra.size(); ++t) {
            for (std::uint32_t corner = 0; corner < 4; ++corner) {
                IndexedMesh::Facet facet = IndexedMesh::facetOpposite(tetrahedra[t], corner);
                visit(facet[0],
                      Side{std::min(facet[1], facet[2]), std::max(facet[1], facet[2]), t, corner});
            }
        }
    }

    /// At first the sides' number before each vertex, then, as they are filled in, behind it.
    std::vector<std::size_t> ends;
    std::vector<Side> sides;
};

}  // namespace

Adjacency::Adjacency(const std::vector<IndexedMesh::Tetrahedron>& tetrahedra) {
    neighbours.resize(tetrahedra.size(), {NONE, NONE, NONE, NONE});
    Sides(tetrahedra).visitPairs([this](const Side& a, const Side& b) {
        neighbours[a.tetrahedron][a.corner] = b.tetrahedron;
        neighbours[b.tetrahedron][b.corner] = a.tetrahedron;
    });
}

}  // namespace tool
