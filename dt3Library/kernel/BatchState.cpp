#include "dt3Library/kernel/BatchState.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <new>

#include "dt3Library/EngineCheck.h"

namespace VARN3D {

void BatchState::Free::operator()(std::uint32_t* memory) const {
    std::free(memory);
}

BatchState::BatchState(const GeomTest3& geomTest, std::size_t numVertices, std::size_t expectedTets,
                       bool bAllowsCertificate)
    : mesh(numVertices, expectedTets),
      exact(geomTest, mesh),
      bCertified(bAllowsCertificate),
      numbers(numVertices + 1) {
    growRegionLists(256, 256);
}

/// Freshly made they are 0, which stands for no insertion: an insertion's own memory only, so what
/// earlier ones left need not be kept.
std::uint32_t* BatchState::rememberedOutcomes() {
    if (numOutcomes < mesh.numSlots()) {
        outcomes.reset();
        numOutcomes = mesh.numSlots() + mesh.numSlots() / 2;
        outcomes.reset(
            static_cast<std::uint32_t*>(std::calloc(numOutcomes, sizeof(std::uint32_t))));
        if (outcomes == nullptr) {
            numOutcomes = 0;
            throw std::bad_alloc();
        }
    }
    return outcomes.get();
}

void BatchState::listIncident() {
    incident.assign(numbers.size(), CompactMesh::DUMMY);
    for (std::size_t slot = 1; slot < mesh.numSlots(); ++slot)
        for (const VertexNumber corner : mesh.tets()[slot].vertex)
            incident[corner] = static_cast<Slot>(slot);
}

void BatchState::restartNumbers() {
    std::fill(numbers.begin(), numbers.end(), 0);
    firstNumber = 1;
}

void BatchState::failOpenCavity(std::size_t numUnpaired) {
    if (numUnpaired == 0) return;
    std::cout << "numStoredTCS after insertVertex: " << numUnpaired << std::endl;
    engineCheck(false, "numStoredTCS==0", 920);
}

void BatchState::growRegionLists(std::size_t numSlots, std::size_t numFacets) {
    if (region.size() < numSlots) region.resize(2 * numSlots);
    if (outer.size() < numFacets) {
        outer.resize(2 * numFacets);
        inner.resize(2 * numFacets);
        corners.resize(2 * numFacets);
        facets.resize(2 * numFacets);
    }
}

}  // namespace VARN3D
