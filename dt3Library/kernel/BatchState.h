#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "dt3Library/kernel/CompactMesh.h"
#include "dt3Library/kernel/EdgeTable.h"
#include "dt3Library/kernel/ExactTests.h"

namespace VARN3D {

/// Corners 1, 2, 3 of a tetrahedron to be made; corner 0 is the new vertex.
struct alignas(16) NewCorners {
    VertexNumber vertex[3];
    /// What a tetrahedron holds after them.
    std::uint32_t noMark;
};

/// What a batch insertion works on: the compact mesh, and lists of the present insertion that are
/// kept for their memory.
struct BatchState {
    /// For so many vertices; `bCertified` says whether their coordinates allow certified spheres.
    /// Throws std::bad_alloc.
    BatchState(const GeomTest3& geomTest, std::size_t numVertices, std::size_t expectedTets,
               bool bCertified);

    CompactMesh mesh;
    const ExactTests exact;
    bool bCertified;
    /// Permanents below which the determinants of these vertices are exact in doubles; 0 if none
    /// are.
    double orientationLattice = 0.0;
    double sphereLattice = 0.0;
    /// Sets them by the coordinates of all vertices.
    void findLattice(std::size_t numVertices);

    /// The slots of the conflict region, then of the tetrahedra that fill it.
    std::vector<Slot> region;
    /// The region's boundary: each facet's code outside and inside.
    std::vector<FacetCode> outer;
    std::vector<FacetCode> inner;
    std::vector<NewCorners> corners;
    /// The vertices of the cavity are numbered from 0; these are the numbers of corners 1, 2, 3.
    std::vector<CavityFacet> facets;
    /// The number of the vertex that is listed first at a place.
    std::vector<std::uint32_t> numbers;
    EdgeTable edges;

    /// How many finite tetrahedra have been made.
    std::uint32_t numMade = 0;
    /// How many ghosts the mesh has.
    std::uint32_t numGhosts = 0;
    /// How many tetrahedra all walks have passed through.
    std::uint64_t numSteps = 0;

    /// A tetrahedron at each vertex, kept up to date once it is not empty.
    std::vector<Slot> incident;
    void listIncident();

    /// What an exact test said about a slot: insertion and outcome. Made when first needed.
    std::uint32_t* rememberedOutcomes();

    /// Makes the lists' sizes at least these.
    void growRegionLists(std::size_t numSlots, std::size_t numFacets);

    /// A check that fails if any facets of a filled cavity have found no partner.
    static void failOpenCavity(std::size_t numUnpaired);

  private:
    struct Free {
        void operator()(std::uint32_t* memory) const;
    };
    std::unique_ptr<std::uint32_t[], Free> outcomes;
    std::size_t numOutcomes = 0;
};

/// The steps of the kernel, compiled for one kind of processor.
struct KernelSteps {
    /// Inserts a vertex, starting at a tetrahedron of the mesh. Returns where to start for the
    /// next vertex.
    Slot (*insertVertex)(BatchState& state, VertexNumber vertex, Slot start);
    /// Makes the spheres of so many tetrahedra from a slot on.
    void (*makeSpheres)(BatchState& state, Slot first, std::size_t count);
};

/// For any processor.
const KernelSteps& portableSteps();
/// The fastest that this processor can.
const KernelSteps& fastestSteps();

}  // namespace VARN3D
