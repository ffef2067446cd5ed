#include "meshWriters.h"

namespace tool {

using VARN3D::Point3;

namespace {

void writeCoordinates(const Point3& p, OutputFile& file) {
    file.writeNumber(p.x());
    file.write(" ");
    file.writeNumber(p.y());
    file.write(" ");
    file.writeNumber(p.z());
}

void writeCorners(const IndexedMesh::Tetrahedron& corners, std::uint32_t base, OutputFile& file) {
    for (std::size_t i = 0; i < corners.size(); ++i) {
        file.write(i == 0 ? "" : " ");
        file.writeNumber(corners[i] + base);
    }
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

}  // namespace

void writeVtk(const IndexedMesh& mesh, OutputFile& file) {
    const std::size_t numPoints = mesh.points.size();
    const std::size_t numTets = mesh.tetrahedra.size();
    file.write("# vtk DataFile Version 3.0\nDelaunay tetrahedralisation by Varn3D\nASCII\n");
    file.write("DATASET UNSTRUCTURED_GRID\nPOINTS ");
    file.writeNumber(numPoints);
    file.write(" double\n");
    for (const Point3& point : mesh.points) {
        writeCoordinates(point, file);
        file.write("\n");
    }
    file.write("CELLS ");
    file.writeNumber(numTets);
    file.write(" ");
    file.writeNumber(5 * numTets);
    file.write("\n");
    for (const IndexedMesh::Tetrahedron& corners : mesh.tetrahedra) {
        file.write("4 ");
        writeCorners(corners, 0, file);
        file.write("\n");
    }
    file.write("CELL_TYPES ");
    file.writeNumber(numTets);
    file.write("\n");
    for (std::size_t i = 0; i < numTets; ++i) {
        file.write("10\n");
    }
    file.write("POINT_DATA ");
    file.writeNumber(numPoints);
    file.write("\nSCALARS firstEqual int 1\nLOOKUP_TABLE default\n");
    for (const std::uint32_t first : mesh.firstEqual) {
        file.writeNumber(first);
        file.write("\n");
    }
}

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

void writeTetgenNodes(const IndexedMesh& mesh, OutputFile& file) {
    file.writeNumber(mesh.points.size());
    file.write(" 3 0 0\n");
    for (std::size_t i = 0; i < mesh.points.size(); ++i) {
        file.writeNumber(i);
        file.write(" ");
        writeCoordinates(mesh.points[i], file);
        file.write("\n");
    }
    writeDuplicateComments(mesh, 0, file);
}

void writeTetgenElements(const IndexedMesh& mesh, OutputFile& file) {
    file.writeNumber(mesh.tetrahedra.size());
    file.write(" 4 0\n");
    for (std::size_t i = 0; i < mesh.tetrahedra.size(); ++i) {
        file.writeNumber(i);
        file.write(" ");
        writeCorners(mesh.tetrahedra[i], 0, file);
        file.write("\n");
    }
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
