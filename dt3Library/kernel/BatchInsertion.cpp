#include "dt3Library/kernel/BatchInsertion.h"

#include "dt3Library/base/MeshAccess.h"
#include "dt3Library/base/Profile.h"
#include "dt3Library/base/prefetch.h"
#include "dt3Library/engine/InsertionOrder.h"
#include "dt3Library/kernel/EarlierNeighbours.h"
#include "dt3Library/kernel/MeshLoader.h"
#include "dt3Library/kernel/RecordWriter.h"
#include "dt3Library/kernel/StartsAhead.h"

namespace VARN3D {

namespace {

/// As many as uniformly distributed points need, and some more.
constexpr std::size_t expectedTets(std::size_t numVertices) {
    return 7 * numVertices + numVertices / 8 + 256;
}

}  // namespace

BatchInsertion::BatchInsertion(const GeomTest3& geomTest, const KernelSteps& kernelSteps,
                               TetRecycler& recycler, const HC3& vertexStore,
                               BatchProgress& batchProgress)
    : predicates(geomTest),
      steps(kernelSteps),
      tets(recycler),
      progress(batchProgress),
      records(recycler.getPool()),
      storeIndex(vertexStore.getPool()) {}

Tet3* BatchInsertion::run(std::vector<Point3*>& vVertices, const Tet3* pStart) {
    points.assign(1, nullptr);
    listMeshVertices();
    listNewVertices(vVertices);
    setUpState();
    MeshLoader loader(tets, records, storeIndex, numberInStore, *state);
    loader.load(steps, progress);
    progress.setTotal(points.size() - firstNew);
    VertexNumber vertex = firstNew;
    if (goesOnAt(vertex)) insertAlongOrder(vertex, loader.slotOfRecord(pStart));
    if (goesOnAt(vertex)) insertBesideEarlier(vertex);
    points.resize(vertex);  // the others go on waiting
    VARN3D_COUNT(insertions, points.size() - firstNew);
    VARN3D_COUNT(tetsPassed, state->numSteps);
    VARN3D_COUNT(created, state->numMade);
    return RecordWriter(*state, points, firstNew, records, progress).writeTo(tets);
}

void BatchInsertion::listMeshVertices() {
    numberInStore.assign(storeIndex.size(), AT_INFINITY);
    for (std::size_t place = 0; place < storeIndex.size(); ++place) {
        Point3* const vertex = storeIndex.at(place);
        box.add(*vertex);
        if (vertex->getOneTet() == nullptr) continue;
        numberInStore[place] = static_cast<VertexNumber>(points.size());
        points.push_back(vertex);
    }
    firstNew = static_cast<VertexNumber>(points.size());
}

/// Where many vertices share a key, their order has little to do with that of the store.
void BatchInsertion::prefetchAhead(std::size_t i) const {
    constexpr std::size_t AHEAD = 16;
    if (i + AHEAD < points.size()) prefetchRecord(points[i + AHEAD]);
}

/// Takes the list's memory away.
void BatchInsertion::listNewVertices(std::vector<Point3*>& vVertices) {
    points.reserve(points.size() + vVertices.size());
    InsertionOrder order(vVertices.size());
    for (std::size_t position; order.next(position);) points.push_back(vVertices[position]);
    std::vector<Point3*>().swap(vVertices);
    std::size_t last = firstNew;
    for (std::size_t i = firstNew; i < points.size(); ++i) {
        progress.look(0);
        prefetchAhead(i);
        if (points[i]->getOneTet() == nullptr) points[last++] = points[i];
    }
    points.resize(last);
}

/// The frame of all vertices, such that no coordinate is rounded.
ExactFrame BatchInsertion::frameOfAll() const {
    const ExactFrame frame({box.getMinX(), box.getMinY(), box.getMinZ()},
                           {box.getMaxX(), box.getMaxY(), box.getMaxZ()});
    if (!frame.mayLoseBits()) return frame;
    for (std::size_t i = 1; i < points.size(); ++i)
        if (!frame.isExactFor({points[i]->x(), points[i]->y(), points[i]->z()}))
            return ExactFrame();
    return frame;
}

void BatchInsertion::setUpState() {
    const std::size_t numVertices = points.size() - 1;
    const ExactFrame frame = frameOfAll();
    state = std::make_unique<BatchState>(predicates, numVertices,
                                         records.size() + expectedTets(points.size() - firstNew),
                                         frame.isCertifiable());
    CompactVertex* const vertices = state->mesh.vertices();
    for (std::size_t i = 1; i <= numVertices; ++i) {
        progress.look(0);
        prefetchAhead(i);
        frame.apply({points[i]->x(), points[i]->y(), points[i]->z()}, vertices[i].at);
    }
    state->findLattice(numVertices);
}

bool BatchInsertion::goesOnAt(VertexNumber vertex) {
    return vertex < points.size() && progress.goesOn(vertex - firstNew);
}

/// Begins each walk where the last one ended, as long as such walks are short.
void BatchInsertion::insertAlongOrder(VertexNumber& vertex, Slot start) {
    // Where the order leads from each vertex to one beside it, walks take less than a step a vertex
    // in a mesh of these vertices only, and a few in one that had others before.
    const std::uint64_t maxSteps = 4 * (points.size() - 1) / (points.size() - firstNew);
    for (;
         goesOnAt(vertex) && state->numSteps <= maxSteps * std::uint64_t{vertex - firstNew} + 4096;
         ++vertex)
        start = steps.insertVertex(*state, vertex, start);
}

void BatchInsertion::insertBesideEarlier(VertexNumber& vertex) {
    const EarlierNeighbours neighbours(points, vertex);
    state->listIncident();
    StartsAhead starts(*state, neighbours, vertex, static_cast<VertexNumber>(points.size() - 1));
    for (; goesOnAt(vertex); ++vertex) steps.insertVertex(*state, vertex, starts.startFor(vertex));
}

}  // namespace VARN3D
