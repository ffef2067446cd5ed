#include "python/VertexGraph.h"

#include <algorithm>
#include <cstddef>

namespace varn3d_python {

using VARN3D::IndexedMesh;

namespace {

/// The tetrahedra around each vertex, one vertex after the other.
class Stars {
  public:
    Stars(const IndexedMesh& mesh, std::size_t numPoints) : ends(numPoints + 1) {
        // Counts, moved on by one place, become starts; filling moves them on to the ends.
        for (const auto& tet : mesh.tetrahedra)
            for (const std::int32_t corner : tet) ++ends[static_cast<std::size_t>(corner) + 1];
        for (std::size_t k = 1; k <= numPoints; ++k) ends[k] += ends[k - 1];
        tets.resize(ends.back());
        for (std::size_t t = 0; t < mesh.tetrahedra.size(); ++t)
            for (const std::int32_t corner : mesh.tetrahedra[t])
                tets[ends[static_cast<std::size_t>(corner)]++] = static_cast<std::int32_t>(t);
    }

    template <class F>
    void forEachAround(std::size_t vertex, F f) const {
        const std::size_t start = vertex == 0 ? 0 : ends[vertex - 1];
        for (std::size_t i = start; i < ends[vertex]; ++i) f(static_cast<std::size_t>(tets[i]));
    }

  private:
    std::vector<std::size_t> ends;
    std::vector<std::int32_t> tets;
};

}  // namespace

VertexGraph::VertexGraph(const IndexedMesh& mesh, std::size_t numPoints,
                         const std::function<void()>& poll) {
    const Stars stars(mesh, numPoints);
    std::vector<std::int32_t> lastSeenBy(numPoints, -1);
    starts.reserve(numPoints + 1);
    starts.push_back(0);
    for (std::size_t k = 0; k < numPoints; ++k) {
        constexpr std::size_t BETWEEN_POLLS = 256;
        if (k % BETWEEN_POLLS == 0) poll();
        const auto self = static_cast<std::int32_t>(k);
        const auto first = static_cast<std::ptrdiff_t>(neighbours.size());
        stars.forEachAround(k, [&](std::size_t t) {
            for (const std::int32_t corner : mesh.tetrahedra[t]) {
                std::int32_t& seenBy = lastSeenBy[static_cast<std::size_t>(corner)];
                if (corner != self && seenBy != self) neighbours.push_back(corner);
                seenBy = self;
            }
        });
        std::sort(neighbours.begin() + first, neighbours.end());
        starts.push_back(static_cast<std::int32_t>(neighbours.size()));
    }
}

}  // namespace varn3d_python
