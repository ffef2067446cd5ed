#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

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
        const auto hash = (reinterpret_cast<std::uintptr_t>(a) * 0x9E3779B97F4A7C15ULL ^
                           reinterpret_cast<std::uintptr_t>(b)) *
                          0xC2B2AE3D27D4EB4FULL;
        std::size_t at = static_cast<std::size_t>(hash >> 32) & (places.size() - 1);
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
