#include "Options.h"

#include <dt3Library/Varn_3D.h>
#include <CLI/CLI.hpp>
#include <algorithm>
#include <filesystem>
#include <map>

#include "InputError.h"

namespace tool {

namespace {

const char* const footer = R"(Input:
  Text (.xyz .txt .csv): a point a line, its three numbers separated by blanks or
  by commas. "#" begins a comment; further columns are ignored; a first line that
  names columns x, y and z says which ones to take.
  PLY (.ply), ASCII or binary: the vertices.

Examples:
  varn3d scan.xyz                          triangulate and print a summary
  varn3d scan.ply --check --stats          check the result, show its quality
  varn3d scan.csv --vtk scan.vtk           write a grid for ParaView or F3D
  varn3d scan.xyz --vtk half.vtk --clip x=0.5
                                           only what lies wholly at x <= 0.5
  gunzip -c scan.ply.gz | varn3d - --format ply --medit scan.mesh

Exit codes:
  0 success; 1 the check failed; 2 bad input, option or file;
  3 the points are coplanar, so that there is no tetrahedron)";

void refuseNamesGivenTwice(std::vector<std::string> names) {
    names.erase(std::remove(names.begin(), names.end(), ""), names.end());
    std::vector<std::string> seen;
    for (const std::string& name : names) {
        std::error_code ignored;
        const std::string real =
            std::filesystem::weakly_canonical(std::filesystem::absolute(name), ignored).string();
        if (std::find(seen.begin(), seen.end(), real) != seen.end()) {
            throw InputError(name, "named twice");
        }
        seen.push_back(real);
    }
}

}  // namespace

std::optional<Options> Options::parse(int argc, const char* const* argv) {
    Options options;
    std::string tetgen;
    std::vector<std::string> clips;
    CLI::App app("Exact Delaunay tetrahedralisation of a set of points.", "varn3d");
    app.set_version_flag("--version", VARN3D::getVarn3DVersion());
    app.footer(footer);
    app.add_option("input", options.input, "File of points; - reads standard input")
        ->required()
        ->type_name("FILE");
    const std::map<std::string, PointFormat> formats = {{"xyz", PointFormat::text},
                                                        {"txt", PointFormat::text},
                                                        {"csv", PointFormat::text},
                                                        {"ply", PointFormat::ply}};
    std::string formatName;
    app.add_option("--format", formatName, "xyz, txt, csv or ply, whatever the file's name")
        ->check(CLI::IsMember(&formats).description(""))
        ->type_name("NAME");
    app.add_option("--vtk", options.vtk, "Write a VTK unstructured grid (legacy, .vtk)")
        ->type_name("FILE");
    app.add_option("--medit", options.medit, "Write a Medit mesh (.mesh)")->type_name("FILE");
    app.add_option("--tetgen", tetgen, "Write BASENAME.node and BASENAME.ele")
        ->type_name("BASENAME");
    auto* geomview = app.add_option("--geomview", options.geomview,
                                    "Write all tetrahedra in Geomview's OOGL format")
                         ->type_name("FILE");
    app.add_option("--duplicates", options.duplicates,
                   "List the points that equal an earlier one, with that one's number")
        ->type_name("FILE");
    app.add_option("--clip", clips,
                   "Write only tetrahedra wholly at x <= 0.5, say. x>0.5 takes the other side; "
                   "several cut one after the other. Not for --geomview")
        ->type_name("x=0.5")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->excludes(geomview);
    app.add_flag("--check", options.bCheck, "Check the finished mesh, the empty spheres included");
    app.add_flag("--stats", options.bStatistics,
                 "Show histograms of dihedral angles, radius-edge ratios and vertex degrees");
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& answered) {
        app.exit(answered);
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        throw InputError(std::string(error.what()) + " (varn3d --help tells more)");
    }
    if (!formatName.empty()) {
        options.format = formats.at(formatName);
    }
    for (const std::string& clip : clips) {
        options.clipPlanes.push_back(ClipPlane::parse(clip));
    }
    if (!tetgen.empty()) {
        options.tetgenNodes = tetgen + ".node";
        options.tetgenElements = tetgen + ".ele";
    }
    if (!clips.empty() && options.vtk.empty() && options.medit.empty() && tetgen.empty()) {
        throw InputError("--clip needs --vtk, --medit or --tetgen");
    }
    for (const std::string& name :
         {options.vtk, options.medit, options.geomview, options.duplicates, tetgen}) {
        if (name == "-") {
            throw InputError("- names standard input, not a file to write");
        }
    }
    if (std::filesystem::path(options.vtk).extension() == ".vtu") {
        throw InputError(options.vtk,
                         "the grid is in VTK's legacy format, whose files end in .vtk");
    }
    refuseNamesGivenTwice({options.input == "-" ? "" : options.input, options.vtk, options.geomview,
                           options.medit, options.tetgenNodes, options.tetgenElements,
                           options.duplicates});
    return options;
}

bool Options::needsIndexedMesh() const {
    return !(vtk.empty() && medit.empty() && tetgenNodes.empty() && duplicates.empty());
}

}  // namespace tool
