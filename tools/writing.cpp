#include "tools/writing.h"

namespace tool {

void writeCoordinates(const VARN3D::Point3& p, OutputFile& file) {
    file.writeNumber(p.x());
    file.write(" ");
    file.writeNumber(p.y());
    file.write(" ");
    file.writeNumber(p.z());
}

void writeDuplicateComments(const IndexedMesh& mesh, std::uint32_t base, OutputFile& file) {
    for (std::uint32_t i = 0; i < mesh.points.size(); ++i) {
        if (mesh.isDuplicate(i)) {
            file.write("# point ");
            file.writeNumber(i + base);
            file.write(" is a duplicate of point ");
            file.writeNumber(mesh.firstEqual[i] + base);
            file.write("\n");
        }
    }
}

}  // namespace tool
