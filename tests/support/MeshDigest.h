#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "dt3Library/Varn_3D.h"

namespace support {

using Coordinates = std::array<double, 3>;

inline Coordinates coordinatesOf(const VARN3D::Point3& p) {
    // Adding 0 makes a negative zero a positive one: they are equal coordinates.
    return {p.x() + 0.0, p.y() + 0.0, p.z() + 0.0};
}

/// A tetrahedron with all that a host can see of it; labels count from that of the first
/// tetrahedron of the mesh, -1 stands for no neighbour.
struct LabelledTet {
    std::int32_t label;
    std::array<Coordinates, 4> corners;
    std::array<std::int32_t, 4> neighbours;

    bool operator==(const LabelledTet& other) const {
        return label == other.label && corners == other.corners && neighbours == other.neighbours;
    }
};

/// The mesh by label.
std::vector<LabelledTet> labelledMesh(const VARN3D::Varn_3D& mesh, std::int32_t firstLabel);

/// The mesh as a set of quadruples of coordinates, sorted within and without: what remains if
/// labels, corner order and neighbour order don't matter.
using PlainMesh = std::vector<std::array<Coordinates, 4>>;
PlainMesh plainMesh(const std::vector<LabelledTet>& tets);

/// FNV-1a over the sorted tetrahedra, each as the sorted positions of its corners in the input (of
/// equal points the first).
std::uint64_t meshDigest(const VARN3D::Varn_3D& mesh, const std::vector<VARN3D::Point3*>& handles);

}  // namespace support
