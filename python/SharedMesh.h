#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <shared_mutex>

#include "dt3Library/IndexedMesh.h"
#include "dt3Library/Varn_3D.h"
#include "python/LocatorPool.h"
#include "python/VertexGraph.h"

namespace varn3d_python {

/// A mesh that several threads use at once: queries side by side, insertions alone. Points have the
/// numbers of the input, tetrahedra those of their rows in `getIndexedMesh`.
class SharedMesh {
  public:
    /// Called now and then in what may take long. May throw, to stop it.
    using Poll = std::function<void()>;

    /// Inserts points, and those that an insertion which was stopped has left. Where it throws, the
    /// mesh is valid, and `getNumPoints` tells whether the points count: if so, those that are not
    /// in the mesh yet join it with the next insertion.
    void insert(const double* xyz, std::size_t numNew, const Poll& poll);

    /// What the points span, -1 to 3.
    int getDimension();
    std::size_t getNumPoints();

    /// @{
    /// Made when it is first asked for after an insertion.
    std::shared_ptr<const VARN3D::IndexedMesh> getIndexedMesh();
    std::shared_ptr<const VertexGraph> getVertexGraph(const Poll& poll);
    /// @}

    /// The tetrahedron that holds each query, -1 outside the hull.
    void findTetrahedra(const double* xyz, std::size_t numQueries, std::int32_t* tetrahedra,
                        const Poll& poll);
    /// The vertex nearest to each query.
    void findNearest(const double* xyz, std::size_t numQueries, std::int32_t* vertices,
                     const Poll& poll);
    /// Rows of numColumns numbers: one a point in `values`, one a query in `results`. Another
    /// number of values than of points is a std::invalid_argument.
    void interpolate(const double* values, std::size_t numValues, std::size_t numColumns,
                     const double* xyz, std::size_t numQueries, double* results, const Poll& poll);

    /// The volumes of the points' cells, infinite for unbounded ones. Equal points share one.
    std::vector<double> getVoronoiVolumes(const Poll& poll);

    /// Whether neighbours and empty spheres are right.
    bool check();

  private:
    using Shared = std::shared_lock<std::shared_mutex>;
    using Alone = std::unique_lock<std::shared_mutex>;

    const std::shared_ptr<const VARN3D::IndexedMesh>& indexAlone();
    Shared shareIndexed();

    std::shared_mutex access;
    VARN3D::Varn_3D mesh;
    LocatorPool locators{mesh};
    std::size_t numPoints = 0;
    std::shared_ptr<const VARN3D::IndexedMesh> indexed;
    std::shared_ptr<const VertexGraph> graph;
};

}  // namespace varn3d_python
