#include "dt3Library/engine/meshDumps.h"

#include "dt3Library/Visualizer3.h"
#include "dt3Library/base/messages.h"

namespace VARN3D {

void printMesh(const std::string& label, const std::vector<Tet3*>& tets) {
    messageStream() << "\n\n**** Dt3::print(" << label << "), numTets=" << tets.size() << std::endl;
    for (const Tet3* tet : tets) messageStream() << *tet << std::endl << std::endl;
}

void showMesh(const std::string& filename, const std::vector<Tet3*>& tets, const Point3* vertex) {
    messageStream() << "  Dt3::show(): vTets.size()=" << tets.size() << std::endl;
    Visualizer3 visualizer(filename);
    for (Tet3* tet : tets) {
        visualizer.writeTet(tet, Visualizer3::getNextColor());
        for (int i = 0; i < 4; ++i) visualizer.writePoints({*tet->getCorner(i)}, 5, "0 1 0 0.5");
    }
    if (vertex != nullptr) visualizer.writePoints({*vertex}, 10, "1 0 0 0.5");
    visualizer.close();
}

}  // namespace VARN3D
