#include <dt3Library/Varn_3D.h>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <exception>
#include <fstream>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/IndexedMesh.h"
#include "tools/InputError.h"
#include "tools/LibraryMessages.h"
#include "tools/MeshStatistics.h"
#include "tools/Options.h"
#include "tools/OutputFile.h"
#include "tools/PointFile.h"
#include "tools/Progress.h"
#include "tools/hullWriters.h"
#include "tools/meshWriters.h"
#include "tools/parsing.h"
#include "tools/platform.h"
#include "tools/tetgenWriters.h"
#include "tools/vtkWriters.h"

using VARN3D::Tet3;
using VARN3D::Varn_3D;

namespace tool {

namespace {

enum ExitCode { SUCCESS = 0, CHECK_FAILED = 1, BAD_INPUT = 2, COPLANAR = 3 };

/// Points that no tetrahedron can be made of.
class CoplanarInput : public InputError {
  public:
    using InputError::InputError;
};

/// The main job: from a file of points to a summary and the files that were asked for.
class Program {
  public:
    explicit Program(Options programOptions)
        : options(std::move(programOptions)), progress(options.bQuiet) {}

    ExitCode run();

  private:
    void readPoints();
    void triangulate();
    void check();
    void writeFiles();
    void writeIndexedMesh();
    void writeGeomview();
    void printSummary() const;

    const LibraryMessages messages;
    Options options;
    Progress progress;
    PointSet input;
    std::size_t numPoints = 0;
    Varn_3D mesh;
    std::size_t numVertices = 0;
    std::size_t numHullFacets = 0;
    std::size_t numKept = 0;
    double seconds = 0;
    bool bValid = true;
    /// They get their names when all of them are complete.
    std::deque<OutputFile> files;
};

ExitCode Program::run() {
    readPoints();
    triangulate();
    if (!mesh.is3D()) {
        throw CoplanarInput(options.input, "the points are coplanar: there is no tetrahedron (" +
                                               std::to_string(numPoints) + " points, " +
                                               std::to_string(numVertices) + " distinct)");
    }
    if (options.bCheck) check();
    writeFiles();
    std::optional<MeshStatistics> statistics;
    if (options.bStatistics) {
        progress.begin("measuring " + std::to_string(mesh.getNumTetrahedra()) + " tetrahedra");
        std::vector<Tet3*> tets;
        mesh.getTetrahedra(tets);
        statistics.emplace(tets);
    }
    progress.end();
    if (!options.bQuiet) printSummary();
    if (!options.clipPlanes.empty() && numKept == 0)
        std::fputs("varn3d: no tetrahedron lies wholly on the side that --clip keeps\n", stderr);
    if (statistics) statistics->print(stdout);
    if (std::fflush(stdout) != 0) throw InputError("standard output", "can't be written");
    return bValid ? SUCCESS : CHECK_FAILED;
}

void Program::readPoints() {
    const auto share = std::make_shared<std::atomic<double>>(0);
    ReadingOptions reading = options.reading;
    reading.pShare = share.get();
    progress.begin("reading " + (options.input == "-" ? "standard input" : options.input),
                   [share] { return share->load(std::memory_order_relaxed); });
    input = readPointFile(options.input, reading);
    numPoints = input.points.size();
    if (numPoints > static_cast<std::size_t>(INT32_MAX))
        throw InputError(options.input, "more than 2147483647 points");
    for (const std::string& column : input.textColumns) {
        std::fprintf(stderr, "varn3d: column %s doesn't hold numbers only: left out of %s\n",
                     quoted(column).c_str(), options.vtk.c_str());
    }
}

void Program::triangulate() {
    const auto share = std::make_shared<std::atomic<double>>(0);
    progress.begin("triangulating " + std::to_string(numPoints) + " points",
                   [share] { return share->load(std::memory_order_relaxed); });
    mesh.setProgress([share](std::size_t done, std::size_t total) {
        share->store(static_cast<double>(done) / static_cast<double>(total));
        return true;
    });
    const auto start = std::chrono::steady_clock::now();
    mesh.insert(input.points);
    seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    numVertices = mesh.getNumVertices();
    std::vector<VARN3D::Facet3> facets;
    mesh.getHullFacets(facets);
    numHullFacets = facets.size();
}

void Program::check() {
    progress.begin("checking " + std::to_string(mesh.getNumTetrahedra()) + " tetrahedra");
    bValid = mesh.checkValidity(options.input, true);
}

void Program::writeFiles() {
    if (!options.geomview.empty()) writeGeomview();
    if (!(options.vtk.empty() && options.medit.empty() && options.tetgen.empty() &&
          options.hull.empty() && options.duplicates.empty()))
        writeIndexedMesh();
    for (OutputFile& file : files) file.commit();
}

void Program::writeIndexedMesh() {
    progress.begin("sorting " + std::to_string(mesh.getNumTetrahedra()) + " tetrahedra");
    VARN3D::IndexedMesh plain = mesh.getIndexedMesh();
    if (options.tetgen.empty()) {
        plain.neighbours.clear();
        plain.neighbours.shrink_to_fit();
    }
    IndexedMesh indexed(std::move(input), std::move(plain));
    for (const ClipPlane& plane : options.clipPlanes) indexed.clip(plane);
    numKept = indexed.tetrahedra.size();
    const bool bXml = endsIn(options.vtk, ".vtu");
    const bool bObj = endsIn(options.hull, ".obj");
    const auto write = [&](const std::string& name, const auto& writer) {
        progress.begin("writing " + name);
        writer(indexed, files.emplace_back(name));
        files.back().close();
    };
    if (!options.vtk.empty())
        write(options.vtk, bXml ? writeVtu : options.bAscii ? writeVtkAscii : writeVtkBinary);
    if (!options.hull.empty()) {
        write(options.hull, bObj             ? writeHullObj
                            : options.bAscii ? writeHullPlyAscii
                                             : writeHullPlyBinary);
    }
    if (!options.medit.empty()) write(options.medit, writeMedit);
    if (!options.tetgen.empty()) {
        write(options.tetgen + ".node", writeTetgenNodes);
        write(options.tetgen + ".ele", writeTetgenElements);
        write(options.tetgen + ".face", writeTetgenFaces);
        write(options.tetgen + ".neigh", writeTetgenNeighbours);
    }
    if (!options.duplicates.empty()) write(options.duplicates, writeDuplicates);
}

void Program::writeGeomview() {
    progress.begin("writing " + options.geomview);
    OutputFile& file = files.emplace_back(options.geomview);
    file.close();
    mesh.show(file.writtenName(), nullptr);
    // The library doesn't tell when the disk is full; a complete file ends with a closing brace.
    std::ifstream written(file.writtenName(), std::ios::binary);
    char ending[2] = {};
    written.seekg(-2, std::ios::end);
    written.read(ending, 2);
    if (file.isTemporary() && std::string(ending, 2) != "}\n")
        throw InputError(options.geomview, "could not be written completely");
}

void Program::printSummary() const {
    std::printf("points read        %zu\n", numPoints);
    std::printf("distinct vertices  %zu\n", numVertices);
    std::printf("tetrahedra         %zu\n", mesh.getNumTetrahedra());
    std::printf("hull facets        %zu\n", numHullFacets);
    if (!options.clipPlanes.empty()) std::printf("tetrahedra kept    %zu\n", numKept);
    std::printf("time               %.4f s\n", seconds);
    std::printf("points a second    %.0f\n", static_cast<double>(numPoints) / seconds);
    if (const std::uint64_t bytes = peakMemory())
        std::printf("peak memory        %.1f MiB\n", static_cast<double>(bytes) / (1024 * 1024));
    if (options.bCheck) std::printf("validity           %s\n", bValid ? "holds" : "VIOLATED");
}

int run(int argc, const char* const* argv) {
    try {
        std::optional<Options> options = Options::parse(argc, argv);
        return options ? std::make_unique<Program>(std::move(*options))->run() : SUCCESS;
    } catch (const CoplanarInput& error) {
        std::fprintf(stderr, "varn3d: %s\n", error.what());
        return COPLANAR;
    } catch (const InputError& error) {
        std::fprintf(stderr, "varn3d: %s\n", error.what());
        return BAD_INPUT;
    } catch (const std::bad_alloc&) {
        std::fputs("varn3d: out of memory\n", stderr);
        return BAD_INPUT;
    } catch (const VARN3D::VarnException& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return CHECK_FAILED;
    }
}

}  // namespace

}  // namespace tool

int main(int argc, char** argv) {
    tool::prepareStreams();
    return tool::run(argc, argv);
}
