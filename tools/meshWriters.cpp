#include "tools/meshWriters.h"

#include "tools/writing.h"

namespace tool {

using VARN3D::Point3;

void writeMedit(const IndexedMesh& mesh, OutputFile& file) {
    file.write("MeshVersionFormatted 2\nDimension 3\n");
    writeDuplicateComments(mesh, 1, file);
    file.write("Vertices\n");
    file.writeNumber(mesh.points.size());
    file.write("\n");
    for (const Point3& point : mesh.points) {
        writeCoordinates(point, file);
        file.write(" 0\n");
    }
    file.write("Tetrahedra\n");
    file.writeNumber(mesh.tetrahedra.size());
    file.write("\n");
    for (const IndexedMesh::Tetrahedron& corners : mesh.tetrahedra) {
        writeCorners(corners, 1, file);
        file.write(" 0\n");
    }
    file.write("End\n");
}

void writeDuplicates(const IndexedMesh& mesh, OutputFile& file) {
    file.write("# number of a point, number of the first point equal to it, counted from 0\n");
    for (std::uint32_t i = 0; i < mesh.points.size(); ++i) {
        if (mesh.isDuplicate(i)) {
            file.writeNumber(i);
            file.write(" ");
            file.writeNumber(mesh.firstEqual[i]);
            file.write("\n");
        }
    }
}

}  // namespace tool
