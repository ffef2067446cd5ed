#pragma once

#include <array>

#include "dt3Library/base/prefetch.h"
#include "dt3Library/kernel/BatchState.h"
#include "dt3Library/kernel/EarlierNeighbours.h"

namespace VARN3D {

/// Starts of walks at earlier neighbours, chosen some insertions ahead, so that the memory around
/// them is fetched meanwhile.
///
/// Where vertices jump about in space, hardly anything that an insertion reads is in a cache, and
/// it would wait for one ring of tetrahedra after the other. Each step here reads what an earlier
/// one has fetched, so nothing waits.
class StartsAhead {
  public:
    /// For the vertices from `first` to `last`. The state's incident tetrahedra must be listed.
    StartsAhead(const BatchState& theState, const EarlierNeighbours& theNeighbours,
                VertexNumber first, VertexNumber last)
        : state(theState), neighbours(theNeighbours), lastVertex(last) {
        for (VertexNumber vertex = first; vertex < first + AHEAD; ++vertex) choose(vertex);
    }

    /// Where to start for a vertex. To be called for each one in turn.
    Slot startFor(VertexNumber vertex) {
        if (vertex + AHEAD + 3 <= lastVertex)
            for (const VertexNumber candidate : neighbours.candidatesFor(vertex + AHEAD + 3))
                prefetchLine(state.mesh.vertices() + candidate);
        choose(vertex + AHEAD);
        beginAtStart(comingAt(vertex + 6));
        goAroundStart(comingAt(vertex + 4));
        goOneFacetFurther(comingAt(vertex + 2));
        goOneFacetFurther(comingAt(vertex + 1));
        return state.incident[comingAt(vertex).near];
    }

  private:
    static constexpr VertexNumber AHEAD = 9;

    /// A vertex to come: its neighbour, and the outermost tetrahedra that have been fetched, by the
    /// facets through which they were reached.
    struct Coming {
        VertexNumber near = AT_INFINITY;
        Slot start = CompactMesh::DUMMY;
        unsigned numOutermost = 0;
        std::array<FacetCode, 36> outermost;
    };

    Coming& comingAt(VertexNumber vertex) { return coming[vertex % coming.size()]; }

    void choose(VertexNumber vertex) {
        Coming& chosen = comingAt(vertex);
        chosen.numOutermost = 0;
        chosen.near =
            vertex > lastVertex ? AT_INFINITY : neighbours.nearestTo(state.mesh.vertices(), vertex);
        prefetchLine(state.incident.data() + chosen.near);
    }

    void beginAtStart(Coming& vertex) const {
        vertex.start = state.incident[vertex.near];
        prefetchLine(state.mesh.tets() + vertex.start);
    }

    void goAroundStart(Coming& vertex) const {
        const CompactTet& tet = state.mesh.tets()[vertex.start];
        for (unsigned i = 0; i < 4; ++i) {
            goThrough(tet.link[i], vertex);
            prefetchCorner(tet.vertex[i]);
        }
    }

    /// Of a tetrahedron's corners only the one opposite the facet is new.
    void goOneFacetFurther(Coming& vertex) const {
        const std::array<FacetCode, 36> fetched = vertex.outermost;
        const unsigned numFetched = vertex.numOutermost;
        vertex.numOutermost = 0;
        for (unsigned i = 0; i < numFetched; ++i) {
            const CompactTet& tet = state.mesh.tets()[slotOf(fetched[i])];
            const unsigned entrance = facetOf(fetched[i]);
            prefetchCorner(tet.vertex[entrance]);
            for (unsigned k = 1; k < 4; ++k) goThrough(tet.link[(entrance + k) % 4], vertex);
        }
    }

    void goThrough(FacetCode link, Coming& vertex) const {
        vertex.outermost[vertex.numOutermost++] = link;
        prefetchLine(state.mesh.tets() + slotOf(link));
    }

    void prefetchCorner(VertexNumber corner) const {
        prefetchLine(state.mesh.vertices() + corner);
        prefetchLine(state.incident.data() + corner);
    }

    const BatchState& state;
    const EarlierNeighbours& neighbours;
    const VertexNumber lastVertex;
    std::array<Coming, 16> coming{};
};

}  // namespace VARN3D
