#include "dt3Library/kernel/BatchState.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <new>

#include "dt3Library/base/EngineCheck.h"
#include "dt3Library/base/messages.h"
#include "dt3Library/predicates/FloatingPoint.h"
#include "dt3Library/predicates/predicateStages.h"

namespace VARN3D {

void BatchState::Free::operator()(std::uint32_t* memory) const {
    std::free(memory);
}

BatchState::BatchState(const GeomTest3& geomTest, std::size_t numVertices, std::size_t expectedTets,
                       bool bAllowsCertificate)
    : mesh(numVertices, expectedTets), exact(geomTest, mesh), bCertified(bAllowsCertificate) {
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

/// Where all coordinates are multiples of a power of two u, all differences are, and a determinant
/// of degree d with a permanent below 2^52 u^d rounds nowhere: every value on the way to a term is
/// an integer below 2^53 in its power of u.
void BatchState::findLattice(std::size_t numVertices) {
    if (!bCertified) return;
    // Finer units than this leave hardly any determinant exact, so general input is given up at its
    // first point.
    constexpr double FINEST = 0x1p-30;
    double largest = 0.0;
    for (std::size_t i = 1; i <= numVertices; ++i)
        for (const double c : mesh.vertices()[i].at) largest = std::max(largest, std::fabs(c));
    double unit = predicateStages::powerOfTwo(std::ilogb(largest));
    const double least = largest * FINEST;
    for (std::size_t i = 1; i <= numVertices; ++i)
        for (const double c : mesh.vertices()[i].at)
            while (std::nearbyint(c / unit) * unit != c) {
                unit *= 0.5;
                if (unit < least) return;
            }
    orientationLattice = 0x1p52 * (unit * unit * unit);
    sphereLattice = orientationLattice * (unit * unit);
}

void BatchState::listIncident() {
    incident.assign(mesh.numVertices(), CompactMesh::DUMMY);
    for (std::size_t slot = 1; slot < mesh.numSlots(); ++slot)
        for (const VertexNumber corner : mesh.tets()[slot].vertex)
            incident[corner] = static_cast<Slot>(slot);
}

void BatchState::failOpenCavity(std::size_t numUnpaired) {
    if (numUnpaired == 0) return;
    messageStream() << "numStoredTCS after insertVertex: " << numUnpaired << std::endl;
    engineCheck(false, checks::CAVITY_IS_CLOSED);
}

void BatchState::growRegionLists(std::size_t numSlots, std::size_t numFacets) {
    if (region.size() < numSlots) region.resize(2 * numSlots);
    if (outer.size() < numFacets) {
        outer.resize(2 * numFacets);
        inner.resize(2 * numFacets);
        corners.resize(2 * numFacets);
        facets.resize(2 * numFacets);
        numbers.resize(6 * numFacets);
    }
}

}  // namespace VARN3D
