#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace VARN3D {

/// The order in which a batch of n vertices, listed along a curve, is inserted: a biased randomised
/// insertion order without the randomness (after Amenta, Choi and Rote, Incremental constructions
/// con BRIO, 2003).
///
/// Each vertex gets a level: the middle of the list level 0, the middles of the halves level 1, and
/// so on; the last level takes all that is left. The levels are inserted one after the other, the
/// even ones from the end of the list to its start and the odd ones from start to end, so that each
/// level begins where the last one ended.
class InsertionOrder {
  public:
    explicit InsertionOrder(std::size_t n);

    /// Sets `position` to the next list position; false at the end.
    bool next(std::size_t& position);

  private:
    void assignLevels();
    void startLevel(unsigned newLevel);

    /// The level of each position: one byte each instead of a bucket of pointers.
    std::vector<std::uint8_t> levels;
    unsigned lastLevel = 0;
    unsigned level = 0;
    /// Where to go on looking: below it on even levels, from it on on odd ones.
    std::size_t cursor = 0;
};

}  // namespace VARN3D
