#include "dt3Library/HC3.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <iostream>
#include <numeric>

#include "dt3Library/tools.h"

namespace VARN3D {

namespace {

/// The first batch of a process gets a narrower margin around its box than all that follow.
std::atomic<bool> bFirstEnlargement{true};

constexpr int NUM_STATES = 12;

/// The curve's digit for an octant (4x + 2y + z), by the state of the curve in the cell.
constexpr std::uint8_t DIGIT[8][NUM_STATES] = {
    {0, 0, 0, 2, 4, 6, 4, 6, 2, 2, 4, 6}, {1, 7, 3, 3, 3, 5, 7, 7, 5, 1, 5, 1},
    {3, 1, 7, 1, 5, 1, 3, 5, 3, 5, 7, 7}, {2, 6, 4, 0, 2, 2, 0, 4, 4, 6, 6, 0},
    {7, 3, 1, 5, 7, 7, 5, 1, 1, 3, 3, 5}, {6, 4, 2, 4, 0, 4, 6, 0, 6, 0, 2, 2},
    {4, 2, 6, 6, 6, 0, 2, 2, 0, 4, 0, 4}, {5, 5, 5, 7, 1, 3, 1, 3, 7, 7, 1, 3},
};

/// The state of the curve within that octant.
constexpr std::uint8_t NEXT[8][NUM_STATES] = {
    {1, 2, 0, 6, 11, 4, 5, 6, 10, 4, 7, 10}, {2, 6, 9, 0, 11, 4, 7, 1, 3, 4, 2, 3},
    {3, 0, 10, 6, 0, 8, 5, 6, 1, 8, 11, 2},  {2, 7, 9, 11, 7, 8, 3, 10, 1, 8, 2, 6},
    {4, 8, 1, 9, 5, 0, 1, 9, 10, 2, 7, 10},  {5, 8, 1, 0, 9, 6, 1, 4, 3, 7, 5, 3},
    {3, 0, 11, 9, 0, 10, 11, 9, 5, 2, 8, 4}, {5, 7, 11, 8, 7, 6, 11, 10, 9, 3, 5, 4},
};

}  // namespace

HC3::HC3(unsigned keyBits) : numBits(keyBits) {
    if (numBits == 0 || numBits >= 33 || numBits % 3 != 0) {
        std::cout << "HC3::HC3(..): invalid bitlength" << std::endl;
        varnAssertText(false, "false");
    }
    vertices.init();
}

std::uint32_t HC3::hilbertIndex(const Point3& point) const {
    varnAssertText(bValid, "bValid");
    double hX = extentX / 2;
    double hY = extentY / 2;
    double hZ = extentZ / 2;
    double dx = point.x() - bbox.getMinX();
    double dy = point.y() - bbox.getMinY();
    double dz = point.z() - bbox.getMinZ();
    unsigned state = 0;
    std::uint32_t key = 0;
    for (unsigned level = 0; level < numBits / 3; ++level) {
        // All three tests use the x half-extent: the keys, and with them the order of insertion,
        // are part of what hosts rely on.
        const unsigned bx = dx >= hX ? 1 : 0;
        const unsigned by = dy >= hX ? 1 : 0;
        const unsigned bz = dz >= hX ? 1 : 0;
        dx -= bx ? hX : 0.0;
        dy -= by ? hY : 0.0;
        dz -= bz ? hZ : 0.0;
        const unsigned octant = 4 * bx + 2 * by + bz;
        key = key << 3 | DIGIT[octant][state];
        state = NEXT[octant][state];
        hX *= 0.5;
        hY *= 0.5;
        hZ *= 0.5;
    }
    return key;
}

void HC3::enlargeBox(double factor) {
    bbox.enlargeBounds(factor);
    extentX = bbox.getMaxX() - bbox.getMinX();
    extentY = bbox.getMaxY() - bbox.getMinY();
    extentZ = bbox.getMaxZ() - bbox.getMinZ();
    bValid = true;
    bPoolInCurveOrder = false;
    bTableValid = false;
}

Point3* HC3::newVertex(const Point3& point) {
    Point3* slot = vertices.alloc();
    ++numVertices;
    return new (slot) Point3(point.x(), point.y(), point.z());
}

VertexTable& HC3::getTable() {
    if (!bTableValid) {
        table.build(vertices, bbox);
        bTableValid = true;
    }
    return table;
}

void HC3::enterInTable(VertexTable::Place place, Point3* vertex) {
    bTableValid = false;  // if memory runs out half-way, the table is made anew
    table.insert(place, vertex);
    bTableValid = true;
}

void HC3::sortByKey(std::vector<KeyedPosition>& vHIndexIndexPair) const {
    constexpr unsigned DIGIT_BITS = 9;
    constexpr std::size_t NUM_BUCKETS = std::size_t{1} << DIGIT_BITS;
    std::vector<KeyedPosition> sorted(vHIndexIndexPair.size());
    for (unsigned shift = positionBits(); shift < 64; shift += DIGIT_BITS) {
        std::array<std::size_t, NUM_BUCKETS> starts{};
        const auto digit = [shift](KeyedPosition keyed) {
            return keyed >> shift & (NUM_BUCKETS - 1);
        };
        for (const KeyedPosition keyed : vHIndexIndexPair) ++starts[digit(keyed)];
        std::size_t start = 0;
        for (std::size_t& entry : starts) start += std::exchange(entry, start);
        for (const KeyedPosition keyed : vHIndexIndexPair) sorted[starts[digit(keyed)]++] = keyed;
        vHIndexIndexPair.swap(sorted);
    }
}

void HC3::insert(const std::vector<Point3>& points, std::vector<Point3*>& vUserHandles,
                 std::vector<Point3*>& vNew) {
    varnAssertText(vUserHandles.empty(), "vUserHandles.empty()");
    if (points.empty()) return;
    vUserHandles.resize(points.size());
    vNew.reserve(points.size());
    if (bbox.add(points)) enlargeBox(bFirstEnlargement.exchange(false) ? 0.1 : 1.0);

    std::vector<KeyedPosition> vHIndexIndexPair(points.size());
    for (std::size_t i = 0; i < points.size(); ++i)
        vHIndexIndexPair[i] = std::uint64_t{hilbertIndex(points[i])} << positionBits() | i;
    sortByKey(vHIndexIndexPair);

    if (numVertices == 0)
        insertFirstBatch(points, vHIndexIndexPair, vUserHandles, vNew);
    else
        insertLaterBatch(points, vHIndexIndexPair, vUserHandles, vNew);
}

void HC3::insertFirstBatch(const std::vector<Point3>& points,
                           const std::vector<KeyedPosition>& vHIndexIndexPair,
                           std::vector<Point3*>& vUserHandles, std::vector<Point3*>& vNew) {
    const KeyedPosition* const end = vHIndexIndexPair.data() + vHIndexIndexPair.size();
    for (const KeyedPosition* first = vHIndexIndexPair.data(); first != end;) {
        const KeyedPosition* last = first + 1;
        while (last != end && keyOf(*last) == keyOf(*first)) ++last;
        insertRun(points, first, last, vUserHandles, vNew);
        first = last;
    }
    bPoolInCurveOrder = true;
}

/// Those points of a run that equal an earlier one of it, in the order of the run.
std::vector<HC3::Duplicate> HC3::findDuplicates(const std::vector<Point3>& points,
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
        const Point3& pa = points[a.position];
        const Point3& pb = points[b.position];
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
void HC3::insertRun(const std::vector<Point3>& points, const KeyedPosition* first,
                    const KeyedPosition* last, std::vector<Point3*>& vUserHandles,
                    std::vector<Point3*>& vNew) {
    const auto enter = [&](std::size_t position) {
        vNew.push_back(newVertex(points[position]));
        vUserHandles[position] = vNew.back();
    };
    if (last - first == 1) {
        enter(positionOf(*first));
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

void HC3::insertLaterBatch(const std::vector<Point3>& points,
                           const std::vector<KeyedPosition>& vHIndexIndexPair,
                           std::vector<Point3*>& vUserHandles, std::vector<Point3*>& vNew) {
    VertexTable& vertexTable = getTable();
    bPoolInCurveOrder = false;
    for (const KeyedPosition keyed : vHIndexIndexPair) {
        const std::size_t position = positionOf(keyed);
        const Point3& point = points[position];
        const VertexTable::Place place = vertexTable.lowerBound(point);
        Point3* vertex = vertexTable.vertexAt(place, point);
        if (vertex == nullptr) {
            vertex = newVertex(point);
            enterInTable(place, vertex);
            vNew.push_back(vertex);
        }
        vUserHandles[position] = vertex;
    }
}

std::pair<Point3*, Tet3*> HC3::insertOne(const Point3& point, std::size_t entriesASide) {
    if (bbox.add(point)) enlargeBox(1.0);
    VertexTable& vertexTable = getTable();
    const VertexTable::Place place = vertexTable.lowerBound(point);
    Point3* vertex = vertexTable.vertexAt(place, point);
    if (vertex != nullptr && vertex->getOneTet() != nullptr) return {vertex, vertex->getOneTet()};
    Tet3* start = vertexTable.findTet(place, point, entriesASide);
    if (vertex == nullptr) {
        bPoolInCurveOrder = false;
        vertex = newVertex(point);
        enterInTable(place, vertex);
    }
    return {vertex, start};
}

Tet3* HC3::findStartTet(const Point3& point, std::size_t entriesASide) {
    const VertexTable& vertexTable = getTable();
    return vertexTable.findTet(vertexTable.lowerBound(point), point, entriesASide);
}

void HC3::getVertices(std::vector<Point3*>& vVertices) const {
    const std::size_t begin = vVertices.size();
    vVertices.reserve(begin + numVertices);
    vertices.forEachBlock([&](Point3* first, int used) {
        for (Point3* vertex = first; vertex != first + used; ++vertex) vVertices.push_back(vertex);
    });
    if (bPoolInCurveOrder || numVertices == 0) return;

    std::vector<KeyedPosition> keyed(numVertices);
    for (std::size_t i = 0; i < numVertices; ++i)
        keyed[i] = std::uint64_t{hilbertIndex(*vVertices[begin + i])} << positionBits() | i;
    sortByKey(keyed);
    const std::vector<Point3*> stored(vVertices.begin() + static_cast<std::ptrdiff_t>(begin),
                                      vVertices.end());
    for (std::size_t i = 0; i < numVertices; ++i)
        vVertices[begin + i] = stored[positionOf(keyed[i])];
}

}  // namespace VARN3D
