#include "tetgenWriters.h"

#include "writing.h"

namespace tool {

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

void writeTetgenFaces(const IndexedMesh& mesh, const Adjacency& adjacency, OutputFile& file) {
    std::vector<IndexedMesh::Facet> facets;
    for (std::size_t t = 0; t < mesh.tetrahedra.size(); ++t) {
        for (std::size_t corner = 0; corner < 4; ++corner) {
            if (adjacency.across(t, corner) == Adjacency::none) {
                facets.push_back(IndexedMesh::facetOpposite(mesh.tetrahedra[t], corner));
            }
        }
    }
    file.writeNumber(facets.size());
    file.write(" 0\n");
    for (std::size_t i = 0; i < facets.size(); ++i) {
        file.writeNumber(i);
        file.write(" ");
        writeCorners(facets[i], 0, file);
        file.write("\n");
    }
}

void writeTetgenNeighbours(const Adjacency& adjacency, OutputFile& file) {
    file.writeNumber(adjacency.size());
    file.write(" 4\n");
    for (std::size_t t = 0; t < adjacency.size(); ++t) {
        file.writeNumber(t);
        for (std::size_t corner = 0; corner < 4; ++corner) {
            const std::uint32_t neighbour = adjacency.across(t, corner);
            file.write(" ");
            file.writeNumber(neighbour == Adjacency::none ? std::int64_t{-1} : neighbour);
        }
        file.write("\n");
    }
}

}  // namespace tool
