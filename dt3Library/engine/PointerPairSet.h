#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "dt3Library/base/hashPointers.h"

namespace VARN3D {

/// A set of pairs of pointers that is emptied in O(1): open addressing, with the round in which a
/// place was filled.
class PointerPairSet {
  public:
    PointerPairSet() : places(64) {}

    void clear() {
        ++round;
        used = 0;
    }

    /// Whether the pair was not in the set yet. O(1) expected.
    bool insert(const void* a, const void* b) {
        if (2 * (used + 1) > places.size()) grow();
        Place& place = find(a, b);
        if (place.round == round) return false;
        place = {a, b, round};
        ++used;
        return true;
    }

  private:
    struct Place {
        const void* a = nullptr;
        const void* b = nullptr;
        std::uint64_t round = 0;
    };

    Place& find(const void* a, const void* b) {
        std::size_t at = static_cast<std::size_t>(hashPointers(a, b) >> 32) & (places.size() - 1);
        while (places[at].round == round && !(places[at].a == a && places[at].b == b))
            at = (at + 1) & (places.size() - 1);
        return places[at];
    }

    void grow() {
        std::vector<Place> old(2 * places.size());
        old.swap(places);
        for (const Place& place : old)
            if (place.round == round) find(place.a, place.b) = place;
    }

    std::vector<Place> places;
    std::size_t used = 0;
    std::uint64_t round = 1;
};

}  // namespace VARN3D
