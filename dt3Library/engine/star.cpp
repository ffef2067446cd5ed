#include "dt3Library/engine/star.h"

#include "dt3Library/base/MeshAccess.h"
#include "dt3Library/engine/PointerPairSet.h"
#include "dt3Library/tools.h"

namespace VARN3D {

void listStar(Point3* vertex, std::vector<Tet3*>& tets) {
    if (vertex->getOneTet() == nullptr) {
        printError("Dt3::getTetsAroundVertex()", "pVtx does not belong to the triangulation");
        return;
    }
    PointerPairSet visited;
    std::vector<Tet3*> pending;
    const auto visit = [&](Tet3* tet) {
        if (!visited.insert(tet, nullptr)) return;
        tets.push_back(tet);
        pending.push_back(tet);
    };
    visit(vertex->getOneTet());
    while (!pending.empty()) {
        const Tet3* current = pending.back();
        pending.pop_back();
        const int k = current->getIntraTetIndex(vertex);
        for (int i = 0; i < 4; ++i) {
            Tet3* neighbour = MeshAccess::neighbour(current, i);
            if (i != k && neighbour != nullptr) visit(neighbour);
        }
    }
}

}  // namespace VARN3D
