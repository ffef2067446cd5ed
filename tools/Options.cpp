#include "tools/Options.h"

#include <dt3Library/Varn_3D.h>
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <map>
#include <string_view>

#include "tools/InputError.h"
#include "tools/parsing.h"

namespace tool {

namespace {

const char* const FOOTER = R"(Input:
  Text (.xyz .txt .csv .pts): a point a line, cut at semicolons, commas, tabs or
  blanks, x, y and z in front. A first line or a "#" comment that names columns x,
  y and z says which ones to take. A count before the points is understood, also
  that of molecules (.xyz). "#" begins a comment.
  PLY, ASCII or binary; OBJ; OFF; TetGen's .node.

Examples:
  varn3d scan.xyz                          triangulate and print a summary
  varn3d scan.ply --check --stats          check the result, show its quality
  varn3d scan.csv --vtk scan.vtu           write a grid for ParaView or F3D
  varn3d scan.xyz --vtk half.vtk --clip 'x<=0.5'
                                           only what lies wholly at x <= 0.5
  gunzip -c scan.ply.gz | varn3d - --hull hull.ply

Exit codes:
  0 success; 1 the check failed; 2 bad input, option or file;
  3 the points are coplanar, so that there is no tetrahedron)";

const std::map<std::string, PointFormat> FORMATS = {
    {"xyz", PointFormat::TEXT}, {"txt", PointFormat::TEXT}, {"csv", PointFormat::TEXT},
    {"pts", PointFormat::TEXT}, {"ply", PointFormat::PLY},  {"obj", PointFormat::OBJ},
    {"off", PointFormat::OFF},  {"node", PointFormat::NODE}};

std::string versionText() {
    return "varn3d " + std::to_string(VARN3D_VERSION_MAJOR) + "." +
           std::to_string(VARN3D_VERSION_MINOR) + "." + std::to_string(VARN3D_VERSION_REVISION);
}

/// Reads "1,2,3".
AxisColumns parseColumns(const std::string& text) {
    std::vector<std::string_view> words;
    std::size_t numbers[3] = {};
    cut(text, Separator::COMMA, words);
    bool bGood = words.size() == 3;
    for (std::size_t i = 0; i < 3 && bGood; ++i) {
        std::uint64_t number = 0;
        bGood = parseCount(words[i], number) && number > 0;
        numbers[i] = static_cast<std::size_t>(number);
        bGood = bGood && numbers[i] == number;
    }
    if (!bGood || numbers[0] == numbers[1] || numbers[0] == numbers[2] || numbers[1] == numbers[2])
        throw InputError("--columns: " + tool::quoted(text) + " is not like 1,2,3");
    return {numbers[0] - 1, numbers[1] - 1, numbers[2] - 1};
}

void refuseNamesGivenTwice(std::vector<std::string> names) {
    names.erase(std::remove(names.begin(), names.end(), ""), names.end());
    std::vector<std::string> seen;
    for (const std::string& name : names) {
        std::error_code ignored;
        const auto path = std::filesystem::absolute(std::filesystem::u8path(name));
        const std::string real = std::filesystem::weakly_canonical(path, ignored).u8string();
        if (std::find(seen.begin(), seen.end(), real) != seen.end())
            throw InputError(name, "named twice");
        seen.push_back(real);
    }
}

/// What the options name, before it is understood.
struct Words {
    std::string format;
    std::string columns;
    std::vector<std::string> clips;
};

void describeInput(CLI::App& app, Options& options, Words& words) {
    app.add_option("input", options.input, "File of points; - reads standard input")
        ->required()
        ->type_name("FILE");
    app.add_option(
           "--format", words.format,
           "xyz, txt, csv, pts (all text), ply, obj, off or node, whatever the file is like")
        ->check(CLI::IsMember(&FORMATS).description(""))
        ->type_name("NAME");
    app.add_option("--columns", words.columns,
                   "The columns of a text that hold x, y and z, counted from 1")
        ->type_name("1,2,3");
}

void describeOutput(CLI::App& app, Options& options, Words& words) {
    app.add_option("--vtk", options.vtk,
                   "Write a VTK unstructured grid, legacy (.vtk) or XML (.vtu), with all other "
                   "numbers of the points")
        ->type_name("FILE");
    app.add_option("--medit", options.medit, "Write a Medit mesh (.mesh)")->type_name("FILE");
    app.add_option("--tetgen", options.tetgen,
                   "Write BASENAME.node, BASENAME.ele, BASENAME.face and BASENAME.neigh")
        ->type_name("BASENAME");
    app.add_option("--hull", options.hull, "Write the convex hull as a surface (.ply or .obj)")
        ->type_name("FILE");
    auto* geomview = app.add_option("--geomview", options.geomview,
                                    "Write all tetrahedra in Geomview's OOGL format")
                         ->type_name("FILE");
    app.add_option("--duplicates", options.duplicates,
                   "List the points that equal an earlier one, with that one's number")
        ->type_name("FILE");
    app.add_flag("--ascii", options.bAscii, "Write .vtk and .ply files as text, not as binary");
    app.add_option("--clip", words.clips,
                   "Write only tetrahedra wholly at x <= 0.5, say. 'x>=0.5' takes the other side; "
                   "several cut one after the other. Not for --hull and --geomview")
        ->type_name("'x<=0.5'")
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll)
        ->excludes(geomview);
}

void describeReports(CLI::App& app, Options& options) {
    app.add_flag("--check", options.bCheck, "Check the finished mesh, the empty spheres included");
    app.add_flag("--stats", options.bStatistics,
                 "Show histograms of dihedral angles, radius-edge ratios and vertex degrees");
    app.add_flag("--quiet", options.bQuiet, "Print no summary and show no progress");
}

}  // namespace

std::optional<Options> Options::parse(int argc, const char* const* argv) {
    Options options;
    Words words;
    CLI::App app("Exact Delaunay tetrahedralisation of a set of points.", "varn3d");
    app.set_version_flag("--version", versionText());
    app.footer(FOOTER);
    describeInput(app, options, words);
    describeOutput(app, options, words);
    describeReports(app, options);
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& answered) {
        app.exit(answered);
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        throw InputError(std::string(error.what()) + " (varn3d --help tells more)");
    }
    if (!words.format.empty()) options.reading.format = FORMATS.at(words.format);
    if (!words.columns.empty()) options.reading.columns = parseColumns(words.columns);
    for (const std::string& clip : words.clips)
        options.clipPlanes.push_back(ClipPlane::parse(clip));
    options.reading.bAttributes = !options.vtk.empty();
    options.refuseSenseless();
    return options;
}

void Options::refuseSenseless() const {
    if (!clipPlanes.empty() && vtk.empty() && medit.empty() && tetgen.empty())
        throw InputError("--clip needs --vtk, --medit or --tetgen");
    for (const std::string& name : {vtk, medit, geomview, duplicates, tetgen, hull})
        if (name == "-") throw InputError("- names standard input, not a file to write");
    if (!hull.empty() && !endsIn(hull, ".ply") && !endsIn(hull, ".obj"))
        throw InputError(hull, "the hull can be written to a .ply or an .obj file");
    if (bAscii && endsIn(vtk, ".vtu")) throw InputError(vtk, "--ascii is for .vtk and .ply files");
    std::vector<std::string> names = {
        input == "-" ? "" : input, vtk, geomview, medit, hull, duplicates};
    for (const char* ending : {".node", ".ele", ".face", ".neigh"})
        names.push_back(tetgen.empty() ? "" : tetgen + ending);
    refuseNamesGivenTwice(names);
}

}  // namespace tool
