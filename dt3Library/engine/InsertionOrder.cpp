#include "dt3Library/engine/InsertionOrder.h"

#include <algorithm>
#include <cmath>

namespace VARN3D {

InsertionOrder::InsertionOrder(std::size_t n) : levels(n) {
    if (n > 0) {
        const int depth =
            static_cast<int>(std::ceil(std::log(static_cast<double>(n)) / std::log(2.0))) - 4;
        lastLevel = static_cast<unsigned>(std::max(depth, 0));
    }
    assignLevels();
    startLevel(0);
}

void InsertionOrder::assignLevels() {
    struct Range {
        std::size_t low, high;
        unsigned level;
    };
    std::vector<Range> pending{{0, levels.size(), 0}};
    while (!pending.empty()) {
        Range range = pending.back();
        pending.pop_back();
        while (range.high - range.low >= 2 && range.level < lastLevel) {
            const std::size_t middle = range.low + (range.high - range.low) / 2;
            levels[middle] = static_cast<std::uint8_t>(range.level);
            ++range.level;
            pending.push_back({range.low, middle, range.level});
            range.low = middle + 1;
        }
        std::fill(levels.begin() + static_cast<std::ptrdiff_t>(range.low),
                  levels.begin() + static_cast<std::ptrdiff_t>(range.high),
                  static_cast<std::uint8_t>(range.level));
    }
}

void InsertionOrder::startLevel(unsigned newLevel) {
    level = newLevel;
    cursor = level % 2 == 0 ? levels.size() : 0;
}

bool InsertionOrder::next(std::size_t& position) {
    while (level <= lastLevel) {
        if (level % 2 == 0) {
            while (cursor > 0) {
                if (levels[--cursor] == level) {
                    position = cursor;
                    return true;
                }
            }
        } else {
            while (cursor < levels.size()) {
                if (levels[cursor++] == level) {
                    position = cursor - 1;
                    return true;
                }
            }
        }
        startLevel(level + 1);
    }
    return false;
}

}  // namespace VARN3D
