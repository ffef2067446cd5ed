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

bool holds(const Bbox3& box, const Point3& p) {
    return box.getMinX() <= p.x() && p.x() <= box.getMaxX() && box.getMinY() <= p.y() &&
           p.y() <= box.getMaxY() && box.getMinZ() <= p.z() && p.z() <= box.getMaxZ();
}

/// Where so many vertices share a key, the keys leave them in no order worth following.
constexpr std::ptrdiff_t MAX_UNORDERED = 8;

/// Brings vertices that share a key into the order of a finer curve.
void orderWithinCell(Point3** first, Point3** last) {
    if (last - first <= MAX_UNORDERED) return;
    const std::vector<Point3*> unordered(first, last);
    std::vector<CurveEntry> entries;
    entries.reserve(unordered.size());
    for (Point3* const vertex : unordered)
        entries.push_back(
            {MeshAccess::coordinates(*vertex), static_cast<std::uint32_t>(entries.size())});
    sortAlongCurve(entries);
    for (const CurveEntry& entry : entries) *first++ = unordered[entry.number];
}

/// Places in a run of a point and of the earlier one that it equals.
struct Duplicate {
    std::uint32_t place;
    std::uint32_t original;
};

/// Lists those entries that equal one of a lower number. The memory of `sorted` is used.
void findDuplicates(const CurveEntry* first, const CurveEntry* last,
                    std::vector<CurveEntry>& sorted, std::vector<Duplicate>& duplicates) {
    if (last - first == 1) return;
    sorted.assign(first, last);
    std::sort(sorted.begin(), sorted.end(), [](const CurveEntry& a, const CurveEntry& b) {
        for (int axis = 0; axis < 3; ++axis)
            if (a.at[axis] < b.at[axis] || b.at[axis] < a.at[axis]) return a.at[axis] < b.at[axis];
        return a.number < b.number;
    });
    const CurveEntry* original = &sorted.front();
    for (const CurveEntry& entry : sorted)
        if (!std::equal(entry.at, entry.at + 3, original->at))
            original = &entry;
        else if (&entry != original)
            duplicates.push_back({entry.number, original->number});
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

VertexTable& HC3::getTable(std::size_t numComing) {
    const bool bCoarse = numVertices >= 2 * numWhenBuilt || numComing >= numVertices / 4;
    if (!bTableValid || (bTableOutgrown && bCoarse)) {
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
    boxBefore = bbox;
    pTableBefore = nullptr;
    if (growBox(points)) enlargeBox(bFirstEnlargement.exchange(false) ? 0.1 : 1.0);

    const std::vector<KeyedPosition> vHIndexIndexPair =
        sortedByKey(points.size(), [&](std::size_t i) { return points.coordinates(i); });
    const bool bFirst = numVertices == 0;
    // To enter so many in the table costs more than to make it anew when it is needed again.
    const bool bLarge = points.size() >= numVertices;
    const KeyedPosition* const end = vHIndexIndexPair.data() + vHIndexIndexPair.size();
    for (const KeyedPosition* first = vHIndexIndexPair.data(); first != end;) {
        const KeyedPosition* last = first + 1;
        while (last != end && keyOf(*last) == keyOf(*first)) ++last;
        // All points are stored, also where none of them is to be inserted any more.
        progress.look(0);
        // The curve's order has little to do with that of the points.
        constexpr std::ptrdiff_t AHEAD = 16;
        if (end - last > AHEAD) points.prefetch(positionOf(last[AHEAD]));
        if (!bLarge)
            insertIntoTable(points, first, last, vUserHandles, vNew);
        else if (last - first <= MAX_UNORDERED)
            insertRun(points, first, last, vUserHandles, vNew);
        else
            insertCrowd(points, first, last, vUserHandles, vNew);
        first = last;
    }
    numbers.addDuplicates(firstPlace, vUserHandles, vNew.size());
    bPoolInCurveOrder = bFirst;
    bTableValid = bTableValid && !bLarge;
}

/// The vertex of an earlier insertion that has the point's coordinates, or null.
Point3* HC3::findStoredBefore(const Point3& point) {
    if (!holds(boxBefore, point)) return nullptr;
    if (pTableBefore == nullptr) pTableBefore = &getTable();
    return pTableBefore->vertexAt(pTableBefore->lowerBound(point), point);
}

/// The vertex of a point that equals no earlier one of the batch.
Point3* HC3::enter(const Point3& point, std::size_t position, std::vector<Point3*>& vNew) {
    if (Point3* const stored = findStoredBefore(point)) return stored;
    vNew.push_back(newVertex(point, firstPlace + position));
    return vNew.back();
}

/// Enters few points that share a key: only among these can there be equal coordinates.
void HC3::insertRun(const InputPoints& points, const KeyedPosition* first,
                    const KeyedPosition* last, std::vector<Point3*>& vUserHandles,
                    std::vector<Point3*>& vNew) {
    const auto numBefore = static_cast<std::ptrdiff_t>(vNew.size());
    for (const KeyedPosition* keyed = first; keyed != last; ++keyed) {
        const std::size_t position = positionOf(*keyed);
        const Point3 point = points[position];
        const auto equal = std::find_if(vNew.begin() + numBefore, vNew.end(),
                                        [&](const Point3* p) { return *p == point; });
        vUserHandles[position] = equal != vNew.end() ? *equal : enter(point, position, vNew);
    }
}

/// Enters many points that share a key. The finer curve that they are listed along brings equal
/// ones together.
void HC3::insertCrowd(const InputPoints& points, const KeyedPosition* first,
                      const KeyedPosition* last, std::vector<Point3*>& vUserHandles,
                      std::vector<Point3*>& vNew) {
    std::vector<CurveEntry> entries;
    entries.reserve(static_cast<std::size_t>(last - first));
    for (const KeyedPosition* keyed = first; keyed != last; ++keyed)
        entries.push_back(
            {points.coordinates(positionOf(*keyed)), static_cast<std::uint32_t>(keyed - first)});
    std::vector<CurveEntry> sorted;
    std::vector<Duplicate> duplicates;
    sortAlongCurve(entries, [&](const CurveEntry* begin, const CurveEntry* end) {
        findDuplicates(begin, end, sorted, duplicates);
    });
    std::sort(duplicates.begin(), duplicates.end(),
              [](const Duplicate& a, const Duplicate& b) { return a.place < b.place; });
    const std::size_t numBefore = vNew.size();
    auto duplicate = duplicates.begin();
    for (const KeyedPosition* keyed = first; keyed != last; ++keyed) {
        const std::size_t position = positionOf(*keyed);
        if (duplicate != duplicates.end() && first + duplicate->place == keyed)
            vUserHandles[position] = vUserHandles[positionOf(first[(duplicate++)->original])];
        else
            vUserHandles[position] = enter(points[position], position, vNew);
    }
    if (vNew.size() - numBefore != entries.size()) {
        orderWithinCell(vNew.data() + numBefore, vNew.data() + vNew.size());
        return;
    }
    for (std::size_t i = 0; i < entries.size(); ++i)
        vNew[numBefore + i] = vUserHandles[positionOf(first[entries[i].number])];
}

/// Enters points that share a key in the table too, where those are found that are stored already.
void HC3::insertIntoTable(const InputPoints& points, const KeyedPosition* first,
                          const KeyedPosition* last, std::vector<Point3*>& vUserHandles,
                          std::vector<Point3*>& vNew) {
    VertexTable& vertexTable = getTable(points.size());
    const std::size_t numBefore = vNew.size();
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
    orderWithinCell(vNew.data() + numBefore, vNew.data() + vNew.size());
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
    const std::vector<KeyedPosition> keyed = sortedByKey(
        numVertices, [&](std::size_t i) { return MeshAccess::coordinates(*stored[i]); });
    for (std::size_t i = 0; i < numVertices; ++i)
        vVertices[begin + i] = stored[positionOf(keyed[i])];
}

void HC3::listForInsertion(std::vector<Point3*>& vVertices) const {
    vVertices.clear();
    getVertices(vVertices);
    const std::size_t n = vVertices.size();
    std::vector<KeyedPosition> keyed;
    grid.keyedPositions(
        n, positionBits(), [&](std::size_t i) { return MeshAccess::coordinates(*vVertices[i]); },
        keyed);
    for (std::size_t first = 0; first < n;) {
        std::size_t last = first + 1;
        while (last < n && keyOf(keyed[last]) == keyOf(keyed[first])) ++last;
        orderWithinCell(vVertices.data() + first, vVertices.data() + last);
        first = last;
    }
}

}  // namespace VARN3D
