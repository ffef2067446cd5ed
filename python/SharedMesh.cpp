#include "python/SharedMesh.h"

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "dt3Library/voronoi.h"
#include "python/affineWeights.h"

namespace varn3d_python {

using VARN3D::IndexedMesh;
using VARN3D::Location;
using VARN3D::LocationKind;
using VARN3D::Point3;
using VARN3D::Tet3;
using VARN3D::VoronoiCell;

namespace {

/// Calls f(i) for each i below a number.
template <class F>
void forEach(std::size_t number, const SharedMesh::Poll& poll, F f) {
    constexpr std::size_t BETWEEN_POLLS = 256;
    for (std::size_t i = 0; i < number; ++i) {
        if (i % BETWEEN_POLLS == 0) poll();
        f(i);
    }
}

Point3 pointAt(const double* xyz, std::size_t i) {
    return {xyz[3 * i], xyz[3 * i + 1], xyz[3 * i + 2]};
}

/// The weighted mean of the rows of a tetrahedron's corners. What has no weight doesn't count, even
/// if it is not a number.
void interpolateIn(const Tet3& tet, const Point3& point, const double* values,
                   std::size_t numColumns, double* result) {
    const std::array<double, 4> weights = affineWeights(tet, point);
    std::fill_n(result, numColumns, 0.0);
    for (int i = 0; i < 4; ++i) {
        const double weight = weights[static_cast<std::size_t>(i)];
        if (weight == 0) continue;
        const auto corner = static_cast<std::size_t>(tet.getCorner(i)->getIndex());
        for (std::size_t k = 0; k < numColumns; ++k)
            result[k] += weight * values[corner * numColumns + k];
    }
}

}  // namespace

void SharedMesh::insert(const double* xyz, std::size_t numNew, const Poll& poll) {
    const Alone alone(access);
    indexed.reset();
    graph.reset();
    mesh.setProgress([&](std::size_t, std::size_t) {
        poll();
        return true;
    });
    std::vector<Point3*> handles;
    try {
        if (mesh.getNumWaiting() > 0) mesh.insertWaiting();
        mesh.insert(xyz, numNew, handles);
    } catch (...) {
        // The library counts the points of a batch that failed unless it has forgotten them.
        numPoints += handles.size();
        throw;
    }
    numPoints += numNew;
}

int SharedMesh::getDimension() {
    const Shared shared(access);
    return mesh.getDimension();
}

std::size_t SharedMesh::getNumPoints() {
    const Shared shared(access);
    return numPoints;
}

std::shared_ptr<const IndexedMesh> SharedMesh::getIndexedMesh() {
    const Alone alone(access);
    return indexAlone();
}

std::shared_ptr<const VertexGraph> SharedMesh::getVertexGraph(const Poll& poll) {
    const Alone alone(access);
    if (!graph) graph = std::make_shared<const VertexGraph>(*indexAlone(), numPoints, poll);
    return graph;
}

/// Makes the plain mesh, and gives each tetrahedron its row as number, unless that is done.
const std::shared_ptr<const IndexedMesh>& SharedMesh::indexAlone() {
    if (indexed) return indexed;
    auto made = std::make_shared<const IndexedMesh>(mesh.getIndexedMesh());
    std::vector<Tet3*> tets;
    mesh.getTetrahedra(tets);
    std::int32_t number = 0;
    for (Tet3* tet : tets) tet->setCustomIndex(number++);
    indexed = std::move(made);
    return indexed;
}

/// Access beside others, and with all tetrahedra numbered.
SharedMesh::Shared SharedMesh::shareIndexed() {
    for (;;) {
        getIndexedMesh();
        Shared shared(access);
        if (indexed) return shared;
    }
}

void SharedMesh::findTetrahedra(const double* xyz, std::size_t numQueries, std::int32_t* tetrahedra,
                                const Poll& poll) {
    const Shared shared = shareIndexed();
    LocatorPool::Loan locator(locators);
    forEach(numQueries, poll, [&](std::size_t i) {
        const Location location = locator->locate(pointAt(xyz, i));
        tetrahedra[i] =
            location.kind == LocationKind::OUTSIDE ? -1 : location.tet->getCustomIndex();
    });
}

void SharedMesh::findNearest(const double* xyz, std::size_t numQueries, std::int32_t* vertices,
                             const Poll& poll) {
    const Shared shared(access);
    LocatorPool::Loan locator(locators);
    forEach(numQueries, poll, [&](std::size_t i) {
        vertices[i] = locator->nearestVertex(pointAt(xyz, i))->getIndex();
    });
}

void SharedMesh::interpolate(const double* values, std::size_t numValues, std::size_t numColumns,
                             const double* xyz, std::size_t numQueries, double* results,
                             const Poll& poll) {
    const Shared shared(access);
    if (numValues != numPoints)
        throw std::invalid_argument("values has " + std::to_string(numValues) + " rows for " +
                                    std::to_string(numPoints) + " points");
    LocatorPool::Loan locator(locators);
    forEach(numQueries, poll, [&](std::size_t i) {
        const Point3 point = pointAt(xyz, i);
        double* result = results + i * numColumns;
        const Location location = locator->locate(point);
        if (location.kind == LocationKind::OUTSIDE)
            std::fill_n(result, numColumns, std::numeric_limits<double>::quiet_NaN());
        else
            interpolateIn(*location.tet, point, values, numColumns, result);
    });
}

std::vector<double> SharedMesh::getVoronoiVolumes(const Poll& poll) {
    const Shared shared = shareIndexed();
    std::vector<double> volumes(numPoints);
    std::vector<Point3*> vertices;
    mesh.getVertices(vertices);
    forEach(vertices.size(), poll, [&](std::size_t i) {
        const VoronoiCell cell = getVoronoiCell(mesh, vertices[i]);
        volumes[static_cast<std::size_t>(vertices[i]->getIndex())] = cell.volume;
    });
    for (const auto& [duplicate, first] : indexed->duplicates)
        volumes[static_cast<std::size_t>(duplicate)] = volumes[static_cast<std::size_t>(first)];
    return volumes;
}

bool SharedMesh::check() {
    const Shared shared(access);
    return mesh.checkValidity("varn3d.Delaunay.check", true);
}

}  // namespace varn3d_python
