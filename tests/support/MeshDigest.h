#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "dt3Library/Dt3.h"
#include "dt3Library/Varn_3D.h"

namespace support {

using Coordinates = std::array<double, 3>;

inline Coordinates coordinatesOf(const VARN3D::Point3& p) {
    // Adding 0 makes a negative zero a positive one: they are equal coordinates.
    return {p.x() + 0.0, p.y() + 0.0, p.z() + 0.0};
}

std::vector<VARN3D::Tet3*> tetsOf(const VARN3D::Varn_3D& mesh);
/// Inline, for hosts of a shared library can't link the engine.
inline std::vector<VARN3D::Tet3*> tetsOf(const VARN3D::Dt3& engine) {
    std::vector<VARN3D::Tet3*> tets;
    engine.getAllTetrahedra(tets);
    return tets;
}

/// Tetrahedra without the order of their corners and their own. Of points in general position there
/// is only one such mesh.
using SortedMesh = std::vector<std::array<Coordinates, 4>>;
SortedMesh sortedMesh(const std::vector<VARN3D::Tet3*>& tets);

using Handles = std::vector<VARN3D::Point3*>;

/// The FNV-1a hash of numbers.
class Fnv {
  public:
    void add(std::uint64_t number) {
        for (int shift = 0; shift < 64; shift += 8) {
            hash ^= number >> shift & 0xFF;
            hash *= 0x100000001b3U;
        }
    }
    std::uint64_t value() const { return hash; }

  private:
    std::uint64_t hash = 0xcbf29ce484222325U;
};

/// A hash of all handles, as positions of the first point that got them and whether they wait, and
/// of all tetrahedra in order of their corners: each as the positions of its corners and those of
/// its neighbours in the list, both in order. Labels and addresses don't count.
std::uint64_t meshDigest(const VARN3D::Varn_3D& mesh, const Handles& handles);
std::uint64_t meshDigest(const std::vector<VARN3D::Tet3*>& mesh, const Handles& handles);

/// A hash of what the labels since the first one of the mesh tell: the vertices whose insertions
/// made the tetrahedra, in the order of insertion, and how many labels were taken. Which
/// tetrahedron of an insertion has which label doesn't count. Throws std::logic_error where a label
/// is used twice, was not taken, or stands between those of another insertion.
std::uint64_t labelDigest(const VARN3D::Varn_3D& mesh, const Handles& handles,
                          std::int32_t firstLabel);

/// The first batch of a process gets a narrower margin around its points, which shows in the order
/// of insertion. After this call all batches are alike.
void takeFirstMargin();

}  // namespace support
