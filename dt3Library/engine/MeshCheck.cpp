#include "dt3Library/engine/MeshCheck.h"

#include "dt3Library/Visualizer3.h"
#include "dt3Library/base/EngineCheck.h"
#include "dt3Library/base/MeshAccess.h"
#include "dt3Library/base/messages.h"
#include "dt3Library/base/vectors.h"
#include "dt3Library/engine/meshDumps.h"

namespace VARN3D {

namespace {

const char* plainNameOf(Orientation3 orientation) {
    if (orientation == ORIENTATION3_POSITIVE) return "positive";
    return orientation == ORIENTATION3_NEGATIVE ? "negative" : "coplanar";
}

void reportSphere(Tet3* tet, const Point3* vertex) {
    printBanner("checkValidity: ERROR ERROR ERROR");
    messageStream() << "Dt3::checkValidity, HUH - sphereIncTest failed: " << std::endl;
    messageStream() << *tet << ", Vertex=" << vertex << "=" << *vertex << std::endl;
    Visualizer3 visualizer(getNextDumpPrefix() + "sphereIncBug.list");
    visualizer.writeTet(tet, "1 0 0 0.5");
    visualizer.writePoints({*vertex}, 8, "1 1 1 0.5");
    const Point3 centre = tet->getCircumcenter();
    visualizer.writeBall(centre, squaredDistance(*tet->getCorner(0), centre));
    visualizer.close();
}

}  // namespace

bool MeshCheck::run(const std::string& location, bool bSpheres) const {
    messageStream() << "\n\n** CheckValidity at [ " << location
                    << "]: Number of tetrahedra: " << tets.size() << std::endl;
    messageStream() << "   with --checkvisited" << std::endl;
    messageStream() << (bSpheres ? "   with --checkSphereInc" : "   without --checkSphereInc")
                    << std::endl;
    messageStream() << "   vTets.size()=" << tets.size() << std::endl;
    for (Tet3* tet : tets)
        if (!isSound(location, tet, bSpheres)) return false;
    messageStream() << "** CheckValidity at (" << location << ") has been finished, seems OK"
                    << std::endl
                    << std::endl;
    return true;
}

bool MeshCheck::isSound(const std::string& location, Tet3* tet, bool bSpheres) const {
    if (MeshAccess::visited(tet)) {
        printError("Dt3::CheckValidity()", "pcurrentTet->hasBeenvisited=true");
        messageStream() << *tet << std::endl;
        engineFail("a tetrahedron of the mesh is marked as visited", checks::NO_MARK_LEFT);
    }
    for (int ith = 0; ith < 4; ++ith) {
        const Tet3* neighbour = tet->getOppTet(ith);
        if (neighbour == nullptr) continue;
        const Point3* vertex = neighbour->getCorner(neighbour->getIntraTetIndex(tet));
        if (vertex == nullptr) continue;
        const Orientation3 orientation = predicates.getOrientation3(tet, ith, vertex);
        if (orientation != ORIENTATION3_NEGATIVE) {
            reportSide(location, tet, ith, vertex, orientation);
            return false;
        }
        if (bSpheres && predicates.sphereInclusionTest(tet, vertex) == SIC_INSIDE) {
            reportSphere(tet, vertex);
            return false;
        }
    }
    return true;
}

void MeshCheck::reportSide(const std::string& location, const Tet3* tet, int ith,
                           const Point3* vertex, Orientation3 orientation) const {
    printBanner("ERROR: checkValidity at [" + location + "]");
    messageStream() << "Dt3::checkValidity, HUH, vertex " << vertex
                    << " should be on the negative side, tet=" << std::endl;
    messageStream() << *tet << "oppIndex=" << ith << ", Vertex=" << vertex << "=" << *vertex
                    << std::endl;
    messageStream() << "checkValidity: " << plainNameOf(orientation) << std::endl;
    showMesh(getNextDumpPrefix() + "negSideBug.list", tets, vertex);
}

}  // namespace VARN3D
