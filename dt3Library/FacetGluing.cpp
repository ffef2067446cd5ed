#include "dt3Library/FacetGluing.h"

namespace VARN3D {

FacetGluing::FacetGluing() : table(TABLE_SIDE * TABLE_SIDE) {
    fans.resize(512);
    edges.resize(4 * fans.size());
}

void FacetGluing::grow() {
    fans.resize(2 * fans.size());
    edges.resize(4 * fans.size());
}

std::size_t FacetGluing::glue() {
    return bTable && numFans <= MAX_TABLE_FANS ? glueByTable() : glueByHash();
}

std::size_t FacetGluing::glueByTable() {
    std::size_t unpaired = 0;
    const std::size_t numCodes = 4 * numFans;
    for (std::size_t i = 0; i < numFans; ++i) {
        for (std::size_t k = 0; k < 3; ++k) {
            const std::size_t edge = edges[4 * i + k];
            const std::size_t opposite = edge / TABLE_SIDE + edge % TABLE_SIDE * TABLE_SIDE;
            const std::size_t partner = table[opposite];
            if (partner < numCodes && edges[partner] == opposite)
                link(fans[i], k, fans[partner / 4]);
            else
                ++unpaired;
        }
    }
    return unpaired;
}

std::size_t FacetGluing::glueByHash() {
    std::size_t capacity = 1024;
    while (capacity < 6 * numFans) capacity *= 2;
    hash.assign(capacity, 0);
    const auto home = [capacity](std::int32_t source, std::int32_t target) {
        const std::uint64_t edge =
            static_cast<std::uint64_t>(source) << 32 | static_cast<std::uint32_t>(target);
        return static_cast<std::size_t>(edge * 0x9E3779B97F4A7C15ULL >> 32) & (capacity - 1);
    };
    const auto source = [this](std::size_t code) { return fans[code / 4].number[code % 4]; };
    const auto target = [this](std::size_t code) {
        return fans[code / 4].number[(code % 4 + 1) % 3];
    };
    for (std::size_t i = 0; i < numFans; ++i) {
        for (std::size_t code = 4 * i; code < 4 * i + 3; ++code) {
            std::size_t at = home(source(code), target(code));
            while (hash[at] != 0) at = (at + 1) & (capacity - 1);
            hash[at] = code + 1;
        }
    }
    const auto isOpposite = [&](std::size_t code, std::size_t other) {
        return source(code) == target(other) && target(code) == source(other);
    };
    std::size_t unpaired = 0;
    for (std::size_t i = 0; i < numFans; ++i) {
        for (std::size_t k = 0; k < 3; ++k) {
            const std::size_t code = 4 * i + k;
            std::size_t at = home(target(code), source(code));
            while (hash[at] != 0 && !isOpposite(hash[at] - 1, code)) at = (at + 1) & (capacity - 1);
            if (hash[at] != 0)
                link(fans[i], k, fans[(hash[at] - 1) / 4]);
            else
                ++unpaired;
        }
    }
    return unpaired;
}

}  // namespace VARN3D
