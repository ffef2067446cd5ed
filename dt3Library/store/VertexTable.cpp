#include "dt3Library/store/VertexTable.h"

#include <algorithm>

#include "dt3Library/base/vectors.h"

namespace VARN3D {

void VertexTable::build(const SimplePool<Point3>& vertices, const Bbox3& box, std::size_t stride) {
    order.setFrame(box);
    std::vector<Entry> entries;
    std::size_t next = 0;  // in the present block
    vertices.forEachBlock([&](Point3* first, int used) {
        const auto size = static_cast<std::size_t>(used);
        for (; next < size; next += stride)
            entries.push_back({order.cellCode(first[next]), first + next});
        next -= size;
    });
    std::sort(entries.begin(), entries.end(), SpatialOrder::precedes);

    blocks.clear();
    firstEntries.clear();
    constexpr std::size_t FILL = BLOCK_CAPACITY * 3 / 4;
    for (std::size_t start = 0; start < entries.size(); start += FILL) {
        const std::size_t end = std::min(start + FILL, entries.size());
        Block block;
        block.reserve(BLOCK_CAPACITY);
        block.assign(entries.begin() + static_cast<std::ptrdiff_t>(start),
                     entries.begin() + static_cast<std::ptrdiff_t>(end));
        firstEntries.push_back(block.front());
        blocks.push_back(std::move(block));
    }
}

VertexTable::Place VertexTable::lowerBound(const Point3& point) const {
    if (blocks.empty()) return {0, 0};
    Point3 key(point);
    const Entry entry{order.cellCode(key), &key};
    const auto following =
        std::upper_bound(firstEntries.begin(), firstEntries.end(), entry, SpatialOrder::precedes);
    const std::size_t block = following == firstEntries.begin()
                                  ? 0
                                  : static_cast<std::size_t>(following - firstEntries.begin()) - 1;
    const Block& entries = blocks[block];
    const auto found =
        std::lower_bound(entries.begin(), entries.end(), entry, SpatialOrder::precedes);
    return {block, static_cast<std::size_t>(found - entries.begin())};
}

Point3* VertexTable::vertexAt(Place place, const Point3& point) const {
    if (place.block >= blocks.size() || place.index >= blocks[place.block].size()) return nullptr;
    Point3* vertex = blocks[place.block][place.index].vertex;
    return *vertex == point ? vertex : nullptr;
}

void VertexTable::insert(Place place, Point3* vertex) {
    const Entry entry{order.cellCode(*vertex), vertex};
    if (blocks.empty()) {
        firstEntries.push_back(entry);
        Block block;
        block.reserve(BLOCK_CAPACITY);
        block.push_back(entry);
        blocks.push_back(std::move(block));
        return;
    }
    if (blocks[place.block].size() == BLOCK_CAPACITY) {
        splitBlock(place.block);
        const std::size_t half = blocks[place.block].size();
        if (place.index > half) place = {place.block + 1, place.index - half};
    }
    Block& block = blocks[place.block];
    block.insert(block.begin() + static_cast<std::ptrdiff_t>(place.index), entry);
    firstEntries[place.block] = block.front();
}

void VertexTable::splitBlock(std::size_t block) {
    Block upper;
    upper.reserve(BLOCK_CAPACITY);
    const auto middle = blocks[block].begin() + BLOCK_CAPACITY / 2;
    upper.assign(middle, blocks[block].end());
    firstEntries.reserve(firstEntries.size() + 1);
    const auto position = static_cast<std::ptrdiff_t>(block) + 1;
    firstEntries.insert(firstEntries.begin() + position, upper.front());
    blocks.insert(blocks.begin() + position, std::move(upper));
    blocks[block].resize(BLOCK_CAPACITY / 2);
}

bool VertexTable::stepForward(Place& place) const {
    if (place.block >= blocks.size()) return false;
    if (++place.index < blocks[place.block].size()) return true;
    if (place.block + 1 >= blocks.size()) return false;
    place = {place.block + 1, 0};
    return true;
}

bool VertexTable::stepBackward(Place& place) const {
    if (blocks.empty()) return false;
    if (place.index == 0) {
        if (place.block == 0) return false;
        --place.block;
        place.index = blocks[place.block].size();
    }
    --place.index;
    return true;
}

Tet3* VertexTable::findTet(Place place, const Point3& point, std::size_t entriesASide) const {
    constexpr int CANDIDATES_A_SIDE = 2;
    Tet3* best = nullptr;
    double bestDistance = 0.0;
    int candidates = 0;
    const auto consider = [&](Place at) {
        const Point3* vertex = blocks[at.block][at.index].vertex;
        if (vertex->getOneTet() == nullptr) return;
        ++candidates;
        const double distance = squaredDistance(*vertex, point);
        if (best == nullptr || distance < bestDistance) {
            best = vertex->getOneTet();
            bestDistance = distance;
        }
    };
    Place at = place;
    bool valid =
        at.block < blocks.size() && (at.index < blocks[at.block].size() || stepForward(at));
    for (std::size_t n = 0; valid && n < entriesASide && candidates < CANDIDATES_A_SIDE; ++n) {
        consider(at);
        valid = stepForward(at);
    }
    candidates = 0;
    at = place;
    valid = stepBackward(at);
    for (std::size_t n = 0; valid && n < entriesASide && candidates < CANDIDATES_A_SIDE; ++n) {
        consider(at);
        valid = stepBackward(at);
    }
    return best;
}

}  // namespace VARN3D
