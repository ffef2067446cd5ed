#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "dt3Library/Bbox3.h"
#include "dt3Library/Point3.h"
#include "dt3Library/base/BatchProgress.h"
#include "dt3Library/geom_tools/SimplePool.h"
#include "dt3Library/store/HilbertGrid.h"
#include "dt3Library/store/InputPoints.h"
#include "dt3Library/store/PointNumbers.h"
#include "dt3Library/store/VertexTable.h"
#include "dt3Library/store/radixSort.h"

namespace VARN3D {

/// The vertex store: owns every vertex, merges equal coordinates, and hands batches to the engine
/// in the order of a Hilbert curve over the bounding box.
///
/// A vertex lives as long as the store and never moves. The keys along the curve follow from the
/// box, so nothing is stored of them; what is needed to find a point again is a table in an order
/// of its own, which a growing box does not change. It is made only when a second insertion or a
/// query asks for it: hosts that insert one batch never pay for it.
///
/// Not thread-safe: one store belongs to one engine.
class HC3 {
  public:
    /// `numBits` is the length of a key, below 33 and divisible by 3. Otherwise prints
    /// "HC3::HC3(..): invalid bitlength" and throws.
    explicit HC3(unsigned numBits = 27);
    HC3(const HC3&) = delete;
    HC3& operator=(const HC3&) = delete;

    /// The key of a point's cell on the Hilbert curve over the current box.
    std::uint32_t hilbertIndex(const Point3& point) const;

    /// Stores a batch. `vUserHandles` must be empty and gets one handle for each point, in input
    /// order; `vNew` gets the vertices that are new, in curve order: equal keys in input order,
    /// but where more than eight share a key, along a finer curve.
    /// The first batch takes O(n), or O(n log n) where many share a key; a later one O(n log m)
    /// with m vertices stored before.
    void insert(const InputPoints& points, std::vector<Point3*>& vUserHandles,
                std::vector<Point3*>& vNew, BatchProgress& progress);

    /// Stores one point. Returns its vertex and a tetrahedron from which to locate it: one that
    /// belongs to the vertex, or else to one of its neighbours in the table, of which at most so
    /// many are looked at on either side; null if none of them has any.
    std::pair<Point3*, Tet3*> insertOne(const Point3& point,
                                        std::size_t entriesASide = VertexTable::EVERYTHING);

    /// A tetrahedron near the point, found in the same way.
    Tet3* findStartTet(const Point3& point, std::size_t entriesASide = VertexTable::EVERYTHING);

    /// What `rewind` needs to take back all that is stored after it.
    struct Mark {
        SimplePool<Point3>::Mark vertices;
        PointNumbers::Mark numbers;
        std::size_t numVertices;
        Bbox3 bbox;
        HilbertGrid grid;
        bool bValid;
        bool bPoolInCurveOrder;
        bool bFirstMarginLeft;
    };
    Mark mark() const;
    /// The store is as it was at the mark: vertices stored since are gone.
    void rewind(const Mark& mark) noexcept;

    std::size_t getNumVertices() const { return numVertices; }

    /// Whether this is the address of a stored vertex. O(log n).
    bool has(const Point3* vertex) const;

    /// Appends all vertices in curve order; equal keys in the order of their storing. O(n).
    void getVertices(std::vector<Point3*>& vVertices) const;

    /// All vertices in the order in which a batch of them would be listed. O(n).
    void listForInsertion(std::vector<Point3*>& vVertices) const;

    const PointNumbers& getNumbers() const { return numbers; }
    const Bbox3& getBbox() const { return bbox; }
    const SimplePool<Point3>& getPool() const { return vertices; }

  private:
    /// A key in the upper numBits bits and a position below it, so that comparing two numbers
    /// compares keys first.
    using KeyedPosition = std::uint64_t;

    unsigned positionBits() const { return 64 - numBits; }
    std::size_t positionOf(KeyedPosition keyed) const {
        return static_cast<std::size_t>(keyed & ((std::uint64_t{1} << positionBits()) - 1));
    }
    std::uint64_t keyOf(KeyedPosition keyed) const { return keyed >> positionBits(); }
    template <class CoordinatesAt>
    std::vector<KeyedPosition> sortedByKey(std::size_t n, CoordinatesAt coordinatesAt) const {
        std::vector<KeyedPosition> keyed;
        grid.keyedPositions(n, positionBits(), coordinatesAt, keyed);
        sortByBits(keyed, positionBits(), numBits);
        return keyed;
    }

    bool growBox(const InputPoints& points);
    void enlargeBox(double factor);
    void insertRun(const InputPoints& points, const KeyedPosition* first, const KeyedPosition* last,
                   std::vector<Point3*>& vUserHandles, std::vector<Point3*>& vNew);
    void insertCrowd(const InputPoints& points, const KeyedPosition* first,
                     const KeyedPosition* last, std::vector<Point3*>& vUserHandles,
                     std::vector<Point3*>& vNew);
    void insertIntoTable(const InputPoints& points, const KeyedPosition* first,
                         const KeyedPosition* last, std::vector<Point3*>& vUserHandles,
                         std::vector<Point3*>& vNew);
    Point3* enter(const Point3& point, std::size_t position, std::vector<Point3*>& vNew);
    Point3* findStoredBefore(const Point3& point);
    Point3* newVertex(const Point3& point, std::uint64_t place);
    VertexTable& getTable(std::size_t numComing = 0);
    void enterInTable(VertexTable::Place place, Point3* vertex);

    Bbox3 bbox;
    unsigned numBits;
    HilbertGrid grid;
    bool bValid = false;
    SimplePool<Point3> vertices;
    std::size_t numVertices = 0;
    PointNumbers numbers;
    /// How many points came before those of the present batch.
    std::uint64_t firstPlace = 0;
    /// The box before the present batch, and the table, once it has been asked.
    Bbox3 boxBefore;
    const VertexTable* pTableBefore = nullptr;
    VertexTable table;
    bool bTableValid = false;
    /// Whether the box has grown since the table was made. The table stays right, only its cells
    /// become coarse, so it is made anew when it has twice as many vertices, or gets a quarter more
    /// at once.
    bool bTableOutgrown = false;
    std::size_t numWhenBuilt = 0;
    /// Whether the pool's order is the curve's: true after one batch, until anything is added.
    bool bPoolInCurveOrder = false;
};

}  // namespace VARN3D
