#include "tools/vtkWriters.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <string>
#include <vector>

#include "tools/InputError.h"

namespace tool {

namespace {

using VARN3D::Point3;

const std::uint8_t VTK_TETRA = 10;

/// Whether bytes beyond ASCII come in groups as those of UTF-8 do.
bool isUtf8(std::string_view text) {
    int numExpected = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        const bool bContinues = byte >= 0x80 && byte < 0xC0;
        if (bContinues != (numExpected > 0) || byte > 0xF4) return false;
        const int numFollowing = byte < 0xC0 ? 0 : byte < 0xE0 ? 1 : byte < 0xF0 ? 2 : 3;
        numExpected = bContinues ? numExpected - 1 : numFollowing;
    }
    return numExpected == 0;
}

/// The attributes' names as they can stand in a file: different ones, without blanks, in UTF-8, and
/// no longer than VTK's readers bear.
std::vector<std::string> arrayNames(const IndexedMesh& mesh) {
    const std::size_t longest = 200;
    std::set<std::string> taken = {"firstEqual"};
    std::vector<std::string> names;
    for (const Attribute& attribute : mesh.attributes) {
        std::string name = attribute.name.substr(0, longest);
        const bool bUtf8 = isUtf8(name);
        const auto isUnwanted = [bUtf8](unsigned char c) {
            return c <= ' ' || c == 0x7f || c == '%' || c == '<' || c == '&' || c == '"' ||
                   (c >= 0x80 && !bUtf8);
        };
        std::replace_if(name.begin(), name.end(), isUnwanted, '_');
        while (!taken.insert(name).second) name += '_';
        names.push_back(name);
    }
    return names;
}

/// Writes the legacy format, whose binary numbers begin with the largest byte.
class LegacyWriter {
  public:
    LegacyWriter(const IndexedMesh& meshToWrite, OutputFile& outputFile, bool bAsText)
        : mesh(meshToWrite), file(outputFile), bText(bAsText) {}

    void write() {
        file.write("# vtk DataFile Version 3.0\nDelaunay tetrahedralisation by Varn3D\n");
        file.write(bText ? "ASCII" : "BINARY");
        file.write("\nDATASET UNSTRUCTURED_GRID\n");
        writePoints();
        writeCells();
        writePointData();
    }

  private:
    void writePoints() {
        file.write("POINTS " + std::to_string(mesh.points.size()) + " double\n");
        for (const Point3& point : mesh.points) {
            number(point.x(), " ");
            number(point.y(), " ");
            number(point.z(), "\n");
        }
        endArray();
    }

    void writeCells() {
        const std::size_t numTets = mesh.tetrahedra.size();
        file.write("CELLS " + std::to_string(numTets) + " " + std::to_string(5 * numTets) + "\n");
        for (const IndexedMesh::Tetrahedron& corners : mesh.tetrahedra) {
            number(std::int32_t{4}, " ");
            for (std::size_t i = 0; i < 4; ++i)
                number(static_cast<std::int32_t>(corners[i]), i < 3 ? " " : "\n");
        }
        endArray();
        file.write("CELL_TYPES " + std::to_string(numTets) + "\n");
        for (std::size_t i = 0; i < numTets; ++i) number(std::int32_t{VTK_TETRA}, "\n");
        endArray();
    }

    void writePointData() {
        file.write("POINT_DATA " + std::to_string(mesh.points.size()) + "\n");
        beginScalars("firstEqual", "int");
        for (const std::uint32_t first : mesh.firstEqual)
            number(static_cast<std::int32_t>(first), "\n");
        endArray();
        const std::vector<std::string> names = arrayNames(mesh);
        for (std::size_t i = 0; i < names.size(); ++i) {
            beginScalars(names[i], "double");
            for (const double value : mesh.attributes[i].values) {
                if (bText && !std::isfinite(value)) {
                    throw InputError("--ascii: \"" + names[i] +
                                     "\" is not finite everywhere, and VTK reads no such text");
                }
                number(value, "\n");
            }
            endArray();
        }
    }

    void beginScalars(const std::string& name, const std::string& type) {
        file.write("SCALARS " + name + " " + type + " 1\nLOOKUP_TABLE default\n");
    }

    template <class Number>
    void number(Number value, std::string_view behind) {
        if (bText) {
            file.writeNumber(value);
            file.write(behind);
        } else {
            file.writeBinary(value, ByteOrder::BIG);
        }
    }

    void endArray() {
        if (!bText) file.write("\n");
    }

    const IndexedMesh& mesh;
    OutputFile& file;
    const bool bText;
};

/// Writes the XML format: a description of all arrays, then their bytes one after the other.
class VtuWriter {
  public:
    VtuWriter(const IndexedMesh& meshToWrite, OutputFile& outputFile)
        : mesh(meshToWrite), file(outputFile) {}

    void write() {
        file.write(R"(<?xml version="1.0"?>
<VTKFile type="UnstructuredGrid" version="1.0" byte_order="LittleEndian" header_type="UInt64">
<UnstructuredGrid>
)");
        file.write(R"(<Piece NumberOfPoints=")" + std::to_string(numPoints) +
                   R"(" NumberOfCells=")" + std::to_string(numTets) + "\">\n<PointData>\n");
        describe("firstEqual", "Int32", 4 * numPoints);
        for (const std::string& name : arrayNames(mesh)) describe(name, "Float64", 8 * numPoints);
        file.write("</PointData>\n<Points>\n");
        describe(R"(Points" NumberOfComponents="3)", "Float64", 24 * numPoints);
        file.write("</Points>\n<Cells>\n");
        describe("connectivity", "Int32", 16 * numTets);
        describe("offsets", "Int64", 8 * numTets);
        describe("types", "UInt8", numTets);
        file.write(
            "</Cells>\n</Piece>\n</UnstructuredGrid>\n"
            R"(<AppendedData encoding="raw">)"
            "\n_");
        writeArrays();
        file.write("\n</AppendedData>\n</VTKFile>\n");
    }

  private:
    void describe(const std::string& name, const std::string& type, std::uint64_t numBytes) {
        file.write(R"(<DataArray type=")" + type + R"(" Name=")" + name +
                   R"(" format="appended" offset=")" + std::to_string(offset) + "\"/>\n");
        offset += sizeof numBytes + numBytes;
    }

    /// In the order in which they are described.
    void writeArrays() {
        number(std::uint64_t{4 * numPoints});
        for (const std::uint32_t first : mesh.firstEqual) number(first);
        for (const Attribute& attribute : mesh.attributes) {
            number(std::uint64_t{8 * numPoints});
            for (const double value : attribute.values) number(value);
        }
        number(std::uint64_t{24 * numPoints});
        for (const Point3& point : mesh.points) {
            number(point.x());
            number(point.y());
            number(point.z());
        }
        writeCellArrays();
    }

    void writeCellArrays() {
        number(std::uint64_t{16 * numTets});
        for (const IndexedMesh::Tetrahedron& corners : mesh.tetrahedra)
            for (const std::uint32_t corner : corners) number(corner);
        number(std::uint64_t{8 * numTets});
        for (std::uint64_t i = 1; i <= numTets; ++i) number(std::uint64_t{4 * i});
        number(std::uint64_t{numTets});
        for (std::uint64_t i = 0; i < numTets; ++i) number(VTK_TETRA);
    }

    template <class Number>
    void number(Number value) {
        file.writeBinary(value, ByteOrder::LITTLE);
    }

    const IndexedMesh& mesh;
    OutputFile& file;
    const std::uint64_t numPoints = mesh.points.size();
    const std::uint64_t numTets = mesh.tetrahedra.size();
    std::uint64_t offset = 0;
};

}  // namespace

void writeVtkBinary(const IndexedMesh& mesh, OutputFile& file) {
    LegacyWriter(mesh, file, false).write();
}

void writeVtkAscii(const IndexedMesh& mesh, OutputFile& file) {
    LegacyWriter(mesh, file, true).write();
}

void writeVtu(const IndexedMesh& mesh, OutputFile& file) {
    VtuWriter(mesh, file).write();
}

}  // namespace tool
