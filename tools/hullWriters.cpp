#include "tools/hullWriters.h"

#include <algorithm>
#include <string>
#include <vector>

#include "tools/writing.h"

namespace tool {

using VARN3D::Point3;

namespace {

/// The hull's corners, sorted, and its facets in terms of their places in this list.
struct Surface {
    explicit Surface(const IndexedMesh& mesh) : facets(mesh.hull) {
        for (const IndexedMesh::Facet& facet : facets)
            corners.insert(corners.end(), facet.begin(), facet.end());
        std::sort(corners.begin(), corners.end());
        corners.erase(std::unique(corners.begin(), corners.end()), corners.end());
        for (IndexedMesh::Facet& facet : facets) {
            for (std::uint32_t& corner : facet) {
                const auto place = std::lower_bound(corners.begin(), corners.end(), corner);
                corner = static_cast<std::uint32_t>(place - corners.begin());
            }
        }
    }

    std::vector<std::uint32_t> corners;
    std::vector<IndexedMesh::Facet> facets;
};

void writePlyHeader(const Surface& surface, const char* format, OutputFile& file) {
    file.write(std::string("ply\nformat ") + format +
               " 1.0\ncomment convex hull by Varn3D\nelement vertex " +
               std::to_string(surface.corners.size()) +
               "\nproperty double x\nproperty double y\nproperty double z\n" +
               "property uint point\nelement face " + std::to_string(surface.facets.size()) +
               "\nproperty list uchar uint vertex_indices\nend_header\n");
}

}  // namespace

void writeHullPlyBinary(const IndexedMesh& mesh, OutputFile& file) {
    const Surface surface(mesh);
    writePlyHeader(surface, "binary_little_endian", file);
    for (const std::uint32_t corner : surface.corners) {
        const Point3& p = mesh.points[corner];
        for (const double coordinate : {p.x(), p.y(), p.z()})
            file.writeBinary(coordinate, ByteOrder::LITTLE);
        file.writeBinary(corner, ByteOrder::LITTLE);
    }
    for (const IndexedMesh::Facet& facet : surface.facets) {
        file.writeBinary(std::uint8_t{3}, ByteOrder::LITTLE);
        for (const std::uint32_t corner : facet) file.writeBinary(corner, ByteOrder::LITTLE);
    }
}

void writeHullPlyAscii(const IndexedMesh& mesh, OutputFile& file) {
    const Surface surface(mesh);
    writePlyHeader(surface, "ascii", file);
    for (const std::uint32_t corner : surface.corners) {
        writeCoordinates(mesh.points[corner], file);
        file.write(" ");
        file.writeNumber(corner);
        file.write("\n");
    }
    for (const IndexedMesh::Facet& facet : surface.facets) {
        file.write("3 ");
        writeCorners(facet, 0, file);
        file.write("\n");
    }
}

void writeHullObj(const IndexedMesh& mesh, OutputFile& file) {
    const Surface surface(mesh);
    file.write("# convex hull by Varn3D\n");
    for (const std::uint32_t corner : surface.corners) {
        file.write("v ");
        writeCoordinates(mesh.points[corner], file);
        file.write("\n");
    }
    for (const IndexedMesh::Facet& facet : surface.facets) {
        file.write("f ");
        writeCorners(facet, 1, file);
        file.write("\n");
    }
}

}  // namespace tool
