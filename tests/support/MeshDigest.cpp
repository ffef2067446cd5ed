#include "MeshDigest.h"

#include <algorithm>
#include <unordered_map>

#include "dt3Library/MeshAccess.h"

namespace support {

using namespace VARN3D;

namespace {

std::vector<Tet3*> tetrahedraOf(const Varn_3D& mesh) {
    std::vector<Tet3*> tets;
    if (mesh.is3D()) mesh.getTetrahedra(tets);
    return tets;
}

}  // namespace

std::vector<LabelledTet> labelledMesh(const Varn_3D& mesh, std::int32_t firstLabel) {
    std::vector<LabelledTet> result;
    for (const Tet3* tet : tetrahedraOf(mesh)) {
        LabelledTet entry{MeshAccess::label(tet) - firstLabel, {}, {}};
        for (int i = 0; i < 4; ++i) {
            const auto k = static_cast<std::size_t>(i);
            const Tet3* neighbour = tet->getOppTet(i);
            entry.corners[k] = coordinatesOf(*tet->getCorner(i));
            entry.neighbours[k] = neighbour ? MeshAccess::label(neighbour) - firstLabel : -1;
        }
        result.push_back(entry);
    }
    std::sort(result.begin(), result.end(),
              [](const LabelledTet& a, const LabelledTet& b) { return a.label < b.label; });
    return result;
}

PlainMesh plainMesh(const std::vector<LabelledTet>& tets) {
    PlainMesh result;
    for (const LabelledTet& tet : tets) {
        result.push_back(tet.corners);
        std::sort(result.back().begin(), result.back().end());
    }
    std::sort(result.begin(), result.end());
    return result;
}

std::uint64_t meshDigest(const Varn_3D& mesh, const std::vector<Point3*>& handles) {
    std::unordered_map<const Point3*, std::uint64_t> positions;
    for (std::size_t i = 0; i < handles.size(); ++i) positions.emplace(handles[i], i);
    std::vector<std::array<std::uint64_t, 4>> tets;
    for (const Tet3* tet : tetrahedraOf(mesh)) {
        std::array<std::uint64_t, 4> corners;
        for (int i = 0; i < 4; ++i)
            corners[static_cast<std::size_t>(i)] = positions.at(tet->getCorner(i));
        std::sort(corners.begin(), corners.end());
        tets.push_back(corners);
    }
    std::sort(tets.begin(), tets.end());
    std::uint64_t hash = 0xcbf29ce484222325U;
    for (const auto& tet : tets)
        for (const std::uint64_t corner : tet)
            for (int shift = 0; shift < 64; shift += 8) {
                hash ^= corner >> shift & 0xFF;
                hash *= 0x100000001b3U;
            }
    return hash;
}

}  // namespace support
