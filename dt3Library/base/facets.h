#pragma once

#include <cstdint>

namespace VARN3D {

/// The corners of facet i, counter-clockwise seen from outside: with a point on the facet's inner
/// side as corner 0 they make a positively oriented tetrahedron.
constexpr std::uint8_t INNER_FACET[4][3] = {{1, 2, 3}, {0, 3, 2}, {0, 1, 3}, {0, 2, 1}};
/// The same facet the other way round, for a point beyond it.
constexpr std::uint8_t OUTER_FACET[4][3] = {{1, 3, 2}, {0, 2, 3}, {0, 3, 1}, {0, 1, 2}};

/// In a tetrahedron with a new vertex as corner 0: edge k of facet 0 runs from corner SOURCE to
/// corner TARGET, and the facet that holds it and the new vertex lies opposite corner OPPOSITE.
constexpr std::uint8_t FAN_SOURCE[3] = {1, 2, 3};
constexpr std::uint8_t FAN_TARGET[3] = {2, 3, 1};
constexpr std::uint8_t FAN_OPPOSITE[3] = {3, 1, 2};

}  // namespace VARN3D
