#include "tests/support/MeshDigest.h"

#include <algorithm>
#include <set>
#include <stdexcept>
#include <unordered_map>
#include <utility>

#include "dt3Library/base/MeshAccess.h"

namespace support {

using namespace VARN3D;

namespace {

using Positions = std::unordered_map<const Point3*, std::uint64_t>;

Positions positionsIn(const Handles& handles) {
    Positions positions;
    for (std::size_t i = 0; i < handles.size(); ++i) positions.emplace(handles[i], i);
    return positions;
}

}  // namespace

std::vector<Tet3*> tetsOf(const Varn_3D& mesh) {
    std::vector<Tet3*> tets;
    if (mesh.is3D()) mesh.getTetrahedra(tets);
    return tets;
}

SortedMesh sortedMesh(const std::vector<Tet3*>& tets) {
    SortedMesh mesh(tets.size());
    for (std::size_t t = 0; t < tets.size(); ++t) {
        for (std::size_t i = 0; i < 4; ++i)
            mesh[t][i] = coordinatesOf(*tets[t]->getCorner(static_cast<int>(i)));
        std::sort(mesh[t].begin(), mesh[t].end());
    }
    std::sort(mesh.begin(), mesh.end());
    return mesh;
}

std::uint64_t meshDigest(const Varn_3D& mesh, const Handles& handles) {
    return meshDigest(tetsOf(mesh), handles);
}

std::uint64_t meshDigest(const std::vector<Tet3*>& mesh, const Handles& handles) {
    const Positions positions = positionsIn(handles);
    std::vector<std::pair<std::array<std::uint64_t, 4>, const Tet3*>> tets;
    for (const Tet3* tet : mesh) {
        std::array<std::uint64_t, 4> corners;
        for (std::size_t i = 0; i < 4; ++i)
            corners[i] = positions.at(tet->getCorner(static_cast<int>(i)));
        tets.emplace_back(corners, tet);
    }
    std::sort(tets.begin(), tets.end());
    std::unordered_map<const Tet3*, std::uint64_t> places{{nullptr, tets.size()}};
    for (std::size_t i = 0; i < tets.size(); ++i) places.emplace(tets[i].second, i);
    Fnv hash;
    for (const Point3* handle : handles) {
        hash.add(positions.at(handle));
        hash.add(handle->getOneTet() == nullptr ? 1 : 0);
    }
    for (const auto& [corners, tet] : tets) {
        for (const std::uint64_t corner : corners) hash.add(corner);
        for (int i = 0; i < 4; ++i) hash.add(places.at(tet->getOppTet(i)));
    }
    return hash.value();
}

std::uint64_t labelDigest(const Varn_3D& mesh, const Handles& handles, std::int32_t firstLabel) {
    const auto numBefore = [firstLabel](std::int32_t label) {
        return static_cast<std::uint32_t>(label) - static_cast<std::uint32_t>(firstLabel);
    };
    const std::uint32_t numTaken = numBefore(Tet3::runningLabel);
    std::vector<std::pair<std::uint32_t, const Point3*>> makers;
    for (const Tet3* tet : tetsOf(mesh))
        makers.emplace_back(numBefore(MeshAccess::label(tet)), tet->getCorner(0));
    std::sort(makers.begin(), makers.end());

    const Positions positions = positionsIn(handles);
    Fnv hash;
    hash.add(numTaken);
    std::set<const Point3*> done;
    for (std::size_t i = 0; i < makers.size(); ++i) {
        const auto [label, maker] = makers[i];
        if (label >= numTaken) throw std::logic_error("a label that was not taken");
        if (i > 0 && label == makers[i - 1].first) throw std::logic_error("a label used twice");
        if (i > 0 && maker == makers[i - 1].second) continue;
        if (!done.insert(maker).second) throw std::logic_error("labels of two insertions mixed");
        hash.add(positions.at(maker));
    }
    return hash.value();
}

void takeFirstMargin() {
    std::vector<Point3> one = {Point3(0, 0, 0)};
    Varn_3D().insert(one);
}

}  // namespace support
