#include "tools/tetgenWriters.h"

#include "tools/writing.h"

namespace tool {

namespace {

/// What these files have in common: a line that begins with a count, then so many numbered lines.
template <class WriteLine>
void writeNumbered(std::size_t count, std::string_view behindCount, OutputFile& file,
                   const WriteLine& writeLine) {
    file.writeNumber(count);
    file.write(behindCount);
    for (std::size_t i = 0; i < count; ++i) {
        file.write("\n");
        file.writeNumber(i);
        file.write(" ");
        writeLine(i);
    }
    file.write("\n");
}

}  // namespace

void writeTetgenNodes(const IndexedMesh& mesh, OutputFile& file) {
    writeNumbered(mesh.points.size(), " 3 0 0", file,
                  [&](std::size_t i) { writeCoordinates(mesh.points[i], file); });
    writeDuplicateComments(mesh, 0, file);
}

void writeTetgenElements(const IndexedMesh& mesh, OutputFile& file) {
    writeNumbered(mesh.tetrahedra.size(), " 4 0", file,
                  [&](std::size_t i) { writeCorners(mesh.tetrahedra[i], 0, file); });
}

void writeTetgenFaces(const IndexedMesh& mesh, OutputFile& file) {
    std::vector<IndexedMesh::Facet> facets;
    for (std::size_t t = 0; t < mesh.tetrahedra.size(); ++t) {
        for (std::size_t corner = 0; corner < 4; ++corner)
            if (mesh.neighbours[t][corner] == IndexedMesh::NONE)
                facets.push_back(IndexedMesh::facetOpposite(mesh.tetrahedra[t], corner));
    }
    writeNumbered(facets.size(), " 0", file,
                  [&](std::size_t i) { writeCorners(facets[i], 0, file); });
}

void writeTetgenNeighbours(const IndexedMesh& mesh, OutputFile& file) {
    writeNumbered(mesh.neighbours.size(), " 4", file, [&](std::size_t t) {
        for (std::size_t corner = 0; corner < 4; ++corner) {
            const std::uint32_t neighbour = mesh.neighbours[t][corner];
            file.write(corner == 0 ? "" : " ");
            file.writeNumber(neighbour == IndexedMesh::NONE ? std::int64_t{-1} : neighbour);
        }
    });
}

}  // namespace tool
