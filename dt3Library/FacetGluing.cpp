#include "dt3Library/FacetGluing.h"

#include <algorithm>

namespace VARN3D {

FacetGluing::FacetGluing() : table(TABLE_SIDE * TABLE_SIDE) {
    fans.reserve(512);
}

std::size_t FacetGluing::glue(std::size_t numVertices) {
    return numVertices <= TABLE_SIDE && fans.size() <= 0x3FFF ? glueByTable() : glueByHash();
}

std::size_t FacetGluing::glueByTable() {
    const auto place = [this](std::int32_t source, std::int32_t target) -> std::uint16_t& {
        return table[static_cast<std::size_t>(source) * TABLE_SIDE +
                     static_cast<std::size_t>(target)];
    };
    for (std::size_t i = 0; i < fans.size(); ++i) {
        const std::int32_t* number = fans[i].number;
        for (unsigned k = 0; k < 3; ++k)
            place(number[k + 1], number[k + 2]) = static_cast<std::uint16_t>(4 * i + k);
    }
    std::size_t unpaired = 0;
    for (Fan& fan : fans) {
        for (int k = 0; k < 3; ++k) {
            const std::int32_t source = fan.number[k + 1];
            const std::int32_t target = fan.number[k + 2];
            const Code partner = place(target, source);
            if (hasEdge(partner, target, source))
                link(fan, k, partner);
            else
                ++unpaired;
        }
    }
    return unpaired;
}

std::size_t FacetGluing::glueByHash() {
    std::size_t capacity = 1024;
    while (capacity < 6 * fans.size()) capacity *= 2;
    hash.assign(capacity, 0);
    const auto home = [capacity](std::int32_t source, std::int32_t target) {
        const std::uint64_t edge =
            static_cast<std::uint64_t>(source) << 32 | static_cast<std::uint32_t>(target);
        return static_cast<std::size_t>(edge * 0x9E3779B97F4A7C15ULL >> 32) & (capacity - 1);
    };
    for (std::size_t i = 0; i < fans.size(); ++i) {
        for (unsigned k = 0; k < 3; ++k) {
            std::size_t at = home(fans[i].number[k + 1], fans[i].number[k + 2]);
            while (hash[at] != 0) at = (at + 1) & (capacity - 1);
            hash[at] = static_cast<Code>(4 * i + k + 1);
        }
    }
    std::size_t unpaired = 0;
    for (Fan& fan : fans) {
        for (int k = 0; k < 3; ++k) {
            const std::int32_t source = fan.number[k + 1];
            const std::int32_t target = fan.number[k + 2];
            std::size_t at = home(target, source);
            while (hash[at] != 0 && !hasEdge(hash[at] - 1, target, source))
                at = (at + 1) & (capacity - 1);
            if (hash[at] != 0)
                link(fan, k, hash[at] - 1);
            else
                ++unpaired;
        }
    }
    return unpaired;
}

}  // namespace VARN3D
