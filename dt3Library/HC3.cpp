#include "dt3Library/HC3.h"

#include <algorithm>
#include <atomic>
#include <functional>

#include "dt3Library/base/EngineCheck.h"
#include "dt3Library/base/MeshAccess.h"
#include "dt3Library/base/messages.h"
#include "dt3Library/store/CurveSort.h"
#include "dt3Library/store/radixSort.h"

namespace VARN3D {

namespace {

/// The first batch of a process gets a narrower margin around its box than all that follow.
std::atomic<bool> bFirstEnlargement{true};

/// Where so many vertices share a key, the keys leave them in no order worth following.
constexpr std::ptrdiff_t MAX_UNORDERED = 8;

/// Brings vertices that share a key into the order of a finer curve.
void orderWithinCell(Point3** first, Point3** last) {
    if (last - first <= MAX_UNORDERED) return;
    std::vector<CurveEntry> entries;
    entries.reserve(static_cast<std::size_t>(last - first));
    for (Point3** vertex = first; vertex != last; ++vertex) entries.push_back({*vertex, 0});
    sortAlongCurve(entries);
    for (const CurveEntry& entry : entries) *first++ = entry.vertex;
}

}  // namespace

HC3::HC3(unsigned keyBits) : numBits(keyBits) {
    if (numBits == 0 || numBits >= 33 || numBits % 3 != 0) {
        messageStream() << "HC3::HC3(..): invalid bitlength" << std::endl;
        engineFail("the store's keys have an invalid length", checks::KEY_LENGTH);
    }
    vertices.init();
}

std::uint32_t HC3::hilbertIndex(const Point3& point) const {
    engineCheck(bValid, checks::KEYS_HAVE_GRID);
    return grid.keyOf(point);
}

void HC3::enlargeBox(double factor) {
    bbox.enlargeBounds(factor);
    grid = HilbertGrid({bbox.getMinX(), bbox.getMinY(), bbox.getMinZ()},
                       {bbox.getMaxX() - bbox.getMinX(), bbox.getMaxY() - bbox.getMinY(),
                        bbox.getMaxZ() - bbox.getMinZ()},
                       numBits / 3);
    bValid = true;
    bPoolInCurveOrder = false;
    bTableOutgrown = true;
}

/// Grows the box to hold the points. Returns whether it has changed.
bool HC3::growBox(const InputPoints& points) {
    double low[3];
    double high[3];
    points[0].xyz(low[0], low[1], low[2]);
    points[0].xyz(high[0], high[1], high[2]);
    for (std::size_t i = 1; i < points.size(); ++i) {
        const Point3 p = points[i];
        const double at[3] = {p.x(), p.y(), p.z()};
        for (int axis = 0; axis < 3; ++axis) {
            low[axis] = std::min(low[axis], at[axis]);
            high[axis] = std::max(high[axis], at[axis]);
        }
    }
    const bool bLower = bbox.add(Point3(low[0], low[1], low[2]));
    return bbox.add(Point3(high[0], high[1], high[2])) || bLower;
}

Point3* HC3::newVertex(const Point3& point, std::uint64_t place) {
    Point3* const slot = vertices.alloc();
    ++numVertices;
    return MeshAccess::newVertex(slot, point, PointNumbers::numberAt(place));
}

VertexTable& HC3::getTable() {
    if (!bTableValid || (bTableOutgrown && numVertices >= 2 * numWhenBuilt)) {
        bTableValid = false;  // if memory runs out half-way
        table.build(vertices, bbox);
        numWhenBuilt = numVertices;
        bTableOutgrown = false;
        bTableValid = true;
    }
    return table;
}

void HC3::enterInTable(VertexTable::Place place, Point3* vertex) {
    bTableValid = false;  // if memory runs out half-way, the table is made anew
    table.insert(place, vertex);
    bTableValid = true;
}

void HC3::insert(const InputPoints& points, std::vector<Point3*>& vUserHandles,
                 std::vector<Point3*>& vNew, BatchProgress& progress) {
    engineCheck(vUserHandles.empty(), checks::NO_HANDLES_YET);
    if (points.empty()) return;
    vUserHandles.resize(points.size());
    vNew.reserve(points.size());
    firstPlace = numbers.count(points.size());
    if (growBox(points)) enlargeBox(bFirstEnlargement.exchange(false) ? 0.1 : 1.0);

    const std::vector<KeyedPosition> vHIndexIndexPair =
        sortedByKey(points.size(), [&](std::size_t i) { return points[i]; });
    const bool bFirst = numVertices == 0;
    const KeyedPosition* const end = vHIndexIndexPair.data() + vHIndexIndexPair.size();
    for (const KeyedPosition* first = vHIndexIndexPair.data(); first != end;) {
        const KeyedPosition* last = first + 1;
        while (last != end && keyOf(*last) == keyOf(*first)) ++last;
        // All points are stored, also where none of them is to be inserted any more.
        progress.look(0);
        // The curve's order has little to do with that of the points.
        constexpr std::ptrdiff_t AHEAD = 16;
        if (end - last > AHEAD) points.prefetch(positionOf(last[AHEAD]));
        const auto numBefore = static_cast<std::ptrdiff_t>(vNew.size());
        if (bFirst)
            insertRun(points, first, last, vUserHandles, vNew);
        else
            insertLaterRun(points, first, last, vUserHandles, vNew);
        orderWithinCell(vNew.data() + numBefore, vNew.data() + vNew.size());
        first = last;
    }
    numbers.addDuplicates(firstPlace, vUserHandles, vNew.size());
    bPoolInCurveOrder = bFirst;
}

/// Those points of a run that equal an earlier one of it, in the order of the run.
std::vector<HC3::Duplicate> HC3::findDuplicates(const InputPoints& points,
                                                const KeyedPosition* first,
                                                const KeyedPosition* last) const {
    struct Entry {
        double x;  // decides nearly always, without a look at the points
        std::size_t position;
    };
    std::vector<Entry> sorted;
    sorted.reserve(static_cast<std::size_t>(last - first));
    for (const KeyedPosition* keyed = first; keyed != last; ++keyed)
        sorted.push_back({points[positionOf(*keyed)].x(), positionOf(*keyed)});
    std::sort(sorted.begin(), sorted.end(), [&](const Entry& a, const Entry& b) {
        if (a.x < b.x || b.x < a.x) return a.x < b.x;
        const Point3 pa = points[a.position];
        const Point3 pb = points[b.position];
        return pa < pb || (!(pb < pa) && a.position < b.position);
    });
    // The first of each group of equals is the one that becomes a vertex.
    std::vector<Duplicate> duplicates;
    std::size_t original = sorted.front().position;
    for (const Entry& entry : sorted) {
        if (entry.position == original) continue;
        if (points[entry.position] == points[original])
            duplicates.push_back({entry.position, original});
        else
            original = entry.position;
    }
    std::sort(duplicates.begin(), duplicates.end(),
              [](const Duplicate& a, const Duplicate& b) { return a.position < b.position; });
    return duplicates;
}

/// Enters points that share a key: only among these can there be equal coordinates.
void HC3::insertRun(const InputPoints& points, const KeyedPosition* first,
                    const KeyedPosition* last, std::vector<Point3*>& vUserHandles,
                    std::vector<Point3*>& vNew) {
    const auto enter = [&](std::size_t position) {
        vNew.push_back(newVertex(points[position], firstPlace + position));
        vUserHandles[position] = vNew.back();
    };
    if (last - first == 1) {
        enter(positionOf(*first));
        return;
    }
    if (last - first <= MAX_UNORDERED) {
        const auto numBefore = static_cast<std::ptrdiff_t>(vNew.size());
        for (const KeyedPosition* keyed = first; keyed != last; ++keyed) {
            const Point3 point = points[positionOf(*keyed)];
            const auto equal = std::find_if(vNew.begin() + numBefore, vNew.end(),
                                            [&](const Point3* p) { return *p == point; });
            if (equal == vNew.end())
                enter(positionOf(*keyed));
            else
                vUserHandles[positionOf(*keyed)] = *equal;
        }
        return;
    }
    const std::vector<Duplicate> duplicates = findDuplicates(points, first, last);
    auto duplicate = duplicates.begin();
    for (const KeyedPosition* keyed = first; keyed != last; ++keyed) {
        const std::size_t position = positionOf(*keyed);
        if (duplicate != duplicates.end() && duplicate->position == position)
            vUserHandles[position] = vUserHandles[(duplicate++)->original];
        else
            enter(position);
    }
}

/// Enters points that share a key, some of which may be stored already.
void HC3::insertLaterRun(const InputPoints& points, const KeyedPosition* first,
                         const KeyedPosition* last, std::vector<Point3*>& vUserHandles,
                         std::vector<Point3*>& vNew) {
    VertexTable& vertexTable = getTable();
    for (const KeyedPosition* keyed = first; keyed != last; ++keyed) {
        const std::size_t position = positionOf(*keyed);
        const Point3 point = points[position];
        const VertexTable::Place place = vertexTable.lowerBound(point);
        Point3* vertex = vertexTable.vertexAt(place, point);
        if (vertex == nullptr) {
            vertex = newVertex(point, firstPlace + position);
            enterInTable(place, vertex);
            vNew.push_back(vertex);
        }
        vUserHandles[position] = vertex;
    }
}

std::pair<Point3*, Tet3*> HC3::insertOne(const Point3& point, std::size_t entriesASide) {
    const std::uint64_t numberPlace = numbers.count(1);
    if (bbox.add(point)) enlargeBox(1.0);
    VertexTable& vertexTable = getTable();
    const VertexTable::Place place = vertexTable.lowerBound(point);
    Point3* vertex = vertexTable.vertexAt(place, point);
    if (vertex != nullptr) numbers.addDuplicate(numberPlace, vertex);
    if (vertex != nullptr && vertex->getOneTet() != nullptr) return {vertex, vertex->getOneTet()};
    Tet3* start = vertexTable.findTet(place, point, entriesASide);
    if (vertex == nullptr) {
        bPoolInCurveOrder = false;
        vertex = newVertex(point, numberPlace);
        enterInTable(place, vertex);
    }
    return {vertex, start};
}

Tet3* HC3::findStartTet(const Point3& point, std::size_t entriesASide) {
    const VertexTable& vertexTable = getTable();
    return vertexTable.findTet(vertexTable.lowerBound(point), point, entriesASide);
}

HC3::Mark HC3::mark() const {
    return {vertices.mark(), numbers.mark(),    numVertices,      bbox, grid,
            bValid,          bPoolInCurveOrder, bFirstEnlargement};
}

void HC3::rewind(const Mark& mark) noexcept {
    // The margin that the batch may have taken is left for its repetition.
    if (mark.bFirstMarginLeft) bFirstEnlargement = true;
    vertices.rewind(mark.vertices);
    numbers.rewind(mark.numbers);
    numVertices = mark.numVertices;
    bbox = mark.bbox;
    grid = mark.grid;
    bValid = mark.bValid;
    bPoolInCurveOrder = mark.bPoolInCurveOrder;
    bTableValid = false;
}

bool HC3::has(const Point3* vertex) const {
    bool bFound = false;
    vertices.forEachBlock([&](const Point3* first, int used) {
        const std::less<const Point3*> precedes;
        bFound = bFound || (!precedes(vertex, first) && precedes(vertex, first + used));
    });
    return bFound;
}

void HC3::getVertices(std::vector<Point3*>& vVertices) const {
    const std::size_t begin = vVertices.size();
    vVertices.reserve(begin + numVertices);
    vertices.forEachBlock([&](Point3* first, int used) {
        for (Point3* vertex = first; vertex != first + used; ++vertex) vVertices.push_back(vertex);
    });
    if (bPoolInCurveOrder || numVertices == 0) return;

    const std::vector<Point3*> stored(vVertices.begin() + static_cast<std::ptrdiff_t>(begin),
                                      vVertices.end());
    const std::vector<KeyedPosition> keyed =
        sortedByKey(numVertices, [&](std::size_t i) -> const Point3& { return *stored[i]; });
    for (std::size_t i = 0; i < numVertices; ++i)
        vVertices[begin + i] = stored[positionOf(keyed[i])];
}

void HC3::listForInsertion(std::vector<Point3*>& vVertices) const {
    vVertices.clear();
    getVertices(vVertices);
    const std::size_t n = vVertices.size();
    std::vector<KeyedPosition> keyed;
    grid.keyedPositions(
        n, positionBits(), [&](std::size_t i) -> const Point3& { return *vVertices[i]; }, keyed);
    for (std::size_t first = 0; first < n;) {
        std::size_t last = first + 1;
        while (last < n && keyOf(keyed[last]) == keyOf(keyed[first])) ++last;
        orderWithinCell(vVertices.data() + first, vVertices.data() + last);
        first = last;
    }
}

}  // namespace VARN3D
