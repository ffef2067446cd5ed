// The program varn3d, run as a user runs it: exit codes, messages to the letter, written files.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "dt3Library/Varn_3D.h"

namespace fs = std::filesystem;
using testing::HasSubstr;
using VARN3D::Point3;
using VARN3D::Tet3;

namespace {

using Corners = std::array<std::uint32_t, 4>;

struct Outcome {
    int exitCode;
    std::string out;
    std::string err;
};

std::string contentOf(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    std::ostringstream content;
    content << in.rdbuf();
    return content.str();
}

/// Runs the program in a directory of its own.
class Program : public testing::Test {
  protected:
    Program() {
        char name[] = "/tmp/varn3d_test_XXXXXX";
        directory = mkdtemp(name);
    }
    ~Program() override { fs::remove_all(directory); }

    void write(const std::string& name, const std::string& content) const {
        std::ofstream(directory / name, std::ios::binary) << content;
    }
    std::string read(const std::string& name) const { return contentOf(directory / name); }

    Outcome run(const std::string& arguments) const {
        const int status = std::system(("cd " + directory.string() + " && { " VARN3D_PROGRAM " " +
                                        arguments + " ; } >.out 2>.err </dev/null")
                                           .c_str());
        const Outcome result = {WIFEXITED(status) ? WEXITSTATUS(status) : -1, read(".out"),
                                read(".err")};
        fs::remove(directory / ".out");
        fs::remove(directory / ".err");
        return result;
    }

    std::set<std::string> files() const {
        std::set<std::string> names;
        for (const auto& entry : fs::directory_iterator(directory)) {
            names.insert(entry.path().filename().string());
        }
        return names;
    }

    /// Expects the one line on standard error, and that nothing at all was written.
    void expectRefused(const std::string& arguments, int exitCode, const std::string& message) {
        const std::set<std::string> before = files();
        const Outcome result = run(arguments);
        EXPECT_EQ(result.exitCode, exitCode) << arguments;
        EXPECT_EQ(result.err, "varn3d: " + message + "\n");
        EXPECT_EQ(result.out, "") << arguments;
        EXPECT_EQ(files(), before) << arguments;
    }

    fs::path directory;
};

const char* const unitNodes = "4 3 0 0\n0 0 0 0\n1 1 0 0\n2 0 1 0\n3 0 0 1\n";
const char* const unitElements = "1 4 0\n0 0 1 2 3\n";

/// A PLY header with a list before the vertices, coordinates of three types, and a list behind
/// them.
std::string plyHeader(const std::string& format, const std::string& numVertices) {
    return "ply\nformat " + format + " 1.0\ncomment made by hand\nelement strip 2\n" +
           "property list uchar short q\nelement vertex " + numVertices +
           "\nproperty double z\nproperty short x\nproperty list ushort uchar w\n" +
           "property float y\nelement face 7\nproperty int i\nend_header\n";
}

template <class Number>
std::string binary(Number number, bool bBig) {
    std::string bytes(sizeof number, '\0');
    std::memcpy(&bytes[0], &number, sizeof number);
    if (bBig) {
        std::reverse(bytes.begin(), bytes.end());
    }
    return bytes;
}

std::string plyStrips(bool bBig) {
    return binary<std::uint8_t>(1, bBig) + binary<std::int16_t>(-5, bBig) +
           binary<std::uint8_t>(0, bBig);
}

std::string plyVertex(std::int16_t x, float y, double z, bool bBig) {
    return binary(z, bBig) + binary(x, bBig) + binary<std::uint16_t>(1, bBig) + "w" +
           binary(y, bBig);
}

std::string binaryPly(bool bBig) {
    return plyHeader(bBig ? "binary_big_endian" : "binary_little_endian", "4") + plyStrips(bBig) +
           plyVertex(0, 0, 0, bBig) + plyVertex(1, 0, 0, bBig) + plyVertex(0, 1, 0, bBig) +
           plyVertex(0, 0, 1, bBig);
}

TEST_F(Program, readsEveryGoodForm) {
    const struct {
        const char* name;
        std::string content;
    } cases[] = {
        {"blanks.xyz", "0 0 0\n1 0 0\n0 1 0\n0 0 1\n"},
        {"windows.xyz", "\xEF\xBB\xBF# mark\r\n0\t0 0 \r\n\r\n 1 0 0 # one\r\n0 1 0\r\n0 0 1"},
        {"mac.txt", "0 0 0\r1 0 0\r0 1 0\r0 0 1\r"},
        {"commas.csv", "0,0,0\n1, 0 , 0\n+0,1e0,-0.0\n0,0,.1E+1,\n"},
        {"moreColumns.xyz", "0 0 0 9 x\n1 0 0 a,b\n0 1 0 9\n0 0 1 9\n"},
        {"header.csv", "id,Z,\"y\",x\na,0,0,0\nb,0,0,1\nc,0,1,0\nd,1,0,0\n"},
        {"noEnding", "0 0 0\n1 0 0\n0 1 0\n0 0 1\n"},
        {"ascii.PLY", plyHeader("ascii", "4") +
                          "1 5\n0\n0 0 2 1 1 0\n\n0 1 0 0\n0 0 0 1e0\r\n1 0 0 0\n not read\n"},
        {"little.ply", binaryPly(false)},
        {"bigWithoutEnding", binaryPly(true)},
    };
    for (const auto& good : cases) {
        write(good.name, good.content);
        const Outcome result = run(std::string(good.name) + " --tetgen m --check");
        EXPECT_EQ(result.exitCode, 0) << good.name << result.err;
        EXPECT_EQ(result.err, "") << good.name;
        std::string nodes = read("m.node");
        nodes.erase(std::remove(nodes.begin(), nodes.end(), '-'), nodes.end());
        EXPECT_EQ(nodes, unitNodes) << good.name;
        EXPECT_EQ(read("m.ele"), unitElements) << good.name;
        for (const char* name : {good.name, "m.node", "m.ele"}) {
            fs::remove(directory / name);
        }
        EXPECT_THAT(files(), testing::IsEmpty()) << good.name;
    }
}

TEST_F(Program, namesFileAndLineOfBadInput) {
    const std::string little = plyHeader("binary_little_endian", "4");
    const std::string huge = plyHeader("binary_little_endian", "18446744073709551615");
    const double nan = std::nan("");
    const struct {
        const char* name;
        std::string content;
        const char* message;
    } cases[] = {
        {"a.xyz", "0 0 0\n# c\n1 2 x3\n", "a.xyz:3: \"x3\" is not a number"},
        {"a.xyz", "0 0 0\r\n1 2\r\n", "a.xyz:2: only 2 of 3 columns"},
        {"a.csv", "y,i,z,x\n1,2,3\n", "a.csv:2: only 3 of 4 columns"},
        {"a.csv", "x,y,zz\n1,2,3\n", "a.csv:1: \"x\" is not a number"},
        {"a.csv", "1,,3\n", "a.csv:1: \"\" is not a number"},
        {"a.txt", "1 2 nan\n", "a.txt:1: \"nan\" is not finite"},
        {"a.txt", "1 -inf 2\n", "a.txt:1: \"-inf\" is not finite"},
        {"a.txt", "1e309 1 2\n", "a.txt:1: \"1e309\" is out of the range of a double"},
        {"a.txt", "1 0x1 2\n", "a.txt:1: \"0x1\" is not a number"},
        {"a.txt", "1,5 2,5 3,5\n", "a.txt:1: commas and blanks both separate numbers"},
        {"a.txt", std::string("\0\x7f 1 2", 6), "a.txt:1: \"\\x00\\x7f\" is not a number"},
        {"a.txt", std::string(50, 'k'),
         "a.txt:1: \"kkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkkk...\" is not a number"},
        {"a.txt", "# nothing\n", "a.txt: no points"},
        {"a.ply", "0 0 0\n", "a.ply:1: not a PLY file: its first line is not \"ply\""},
        {"a.ply", "ply\nelement vertex 1\n", "a.ply:2: the header has no end"},
        {"a.ply", "ply\nformat ascii 2.0\n", "a.ply:2: unknown format version \"2.0\""},
        {"a.ply", "ply\nelement vertex -1\n", "a.ply:2: \"-1\" is not a number of elements"},
        {"a.ply", "ply\nelement vertex 1\nproperty half x\n",
         "a.ply:3: unknown property type \"half\""},
        {"a.ply", "ply\nformat ascii 1.0\nelement vertex 1\nproperty int x\nend_header\n",
         "a.ply:5: no vertex property \"y\""},
        {"a.ply", "ply\nelement vertex 1\nproperty list uchar float x\n",
         "a.ply:3: the vertex property \"x\" is a list"},
        {"a.ply", plyHeader("ascii", "9") + "0\n0\n1 2 0 3\n",
         "a.ply:16: the file ends before vertex 1 of 9"},
        {"a.ply", plyHeader("ascii", "1") + "0\n0\n1 2 2 0 3\n",
         "a.ply:16: fewer values than the header names"},
        {"a.ply", plyHeader("ascii", "1") + "0\n3 1 1 inf\n", "a.ply:15: \"inf\" is not finite"},
        {"a.ply", little + plyStrips(false) + plyVertex(1, 2, nan, false),
         "a.ply: vertex 0: z is not finite"},
        {"a.ply", little + plyStrips(false) + plyVertex(1, 2, 3, false),
         "a.ply: vertex 1: the file ends here, 4 were promised"},
        {"a.ply", huge + plyStrips(false) + plyVertex(1, 2, 3, false) + "x",
         "a.ply: vertex 1: the file ends here, 18446744073709551615 were promised"},
        {"a.ply", little + "\xff", "a.ply: strip 0: the file ends here, 2 were promised"},
    };
    for (const auto& bad : cases) {
        write(bad.name, bad.content);
        expectRefused(std::string(bad.name) + " --vtk o.vtk --medit o.mesh --geomview o.list", 2,
                      bad.message);
        fs::remove(directory / bad.name);
    }
    expectRefused("none.xyz", 2, "none.xyz: No such file or directory");
    expectRefused(".", 2, ".: Is a directory");
}

TEST_F(Program, saysThatFlatInputHasNoTetrahedron) {
    const struct {
        std::string content;
        const char* counts;
    } cases[] = {{"1 2 3\n", "(1 points, 1 distinct)"},
                 {"1 1 1\n2 2 2\n1 1 1\n3 3 3\n", "(4 points, 3 distinct)"},
                 {"0 0 1\n1 0 0\n0 1 0\n3 -1 -1\n-7 4 4\n", "(5 points, 5 distinct)"}};
    for (const auto& flat : cases) {
        write("f.xyz", flat.content);
        expectRefused(
            "f.xyz --check --stats --vtk o.vtk", 3,
            std::string("f.xyz: the points are coplanar: there is no tetrahedron ") + flat.counts);
    }
}

TEST_F(Program, refusesWhatCannotWork) {
    const std::string unit = "0 0 0\n1 0 0\n0 1 0\n0 0 1\n";
    write("u.xyz", unit);
    const std::string more = " (varn3d --help tells more)";
    expectRefused("", 2, "input is required" + more);
    expectRefused("u.xyz --vkt", 2, "The following argument was not expected: --vkt" + more);
    expectRefused("u.xyz --clip x=1", 2, "--clip needs --vtk, --medit or --tetgen");
    expectRefused("u.xyz --vtk o.vtk --clip x=1,5", 2,
                  "--clip: \"x=1,5\" is not like x=0.5, x<0.5 or x>0.5");
    expectRefused("u.xyz --vtk -", 2, "- names standard input, not a file to write");
    expectRefused("u.xyz --vtk u.xyz", 2, "u.xyz: named twice");
    expectRefused("u.xyz --vtk ./o --medit o", 2, "o: named twice");
    expectRefused("u.xyz --vtk o.vtu", 2,
                  "o.vtu: the grid is in VTK's legacy format, whose files end in .vtk");
    expectRefused("u.xyz --vtk ok.vtk --medit no/o.mesh", 2,
                  "no/o.mesh: No such file or directory");
    expectRefused("u.xyz --vtk ok.vtk --medit .", 2, ".: Is a directory");
    expectRefused("u.xyz --vtk ok.vtk --medit /dev/full", 2, "/dev/full: No space left on device");
    expectRefused("u.xyz >/dev/full", 2, "standard output: can't be written");
    write("old.vtk", "old");
    expectRefused("u.xyz --vtk old.vtk --medit /dev/full", 2, "/dev/full: No space left on device");
    EXPECT_EQ(read("old.vtk"), "old");
    EXPECT_EQ(read("u.xyz"), unit);
}

TEST_F(Program, readsStandardInput) {
    write("u.ply", binaryPly(true));
    for (const char* format : {"", " --format ply"}) {
        EXPECT_EQ(run(std::string("- --tetgen m <u.ply") + format).exitCode, 0);
        EXPECT_EQ(read("m.ele"), unitElements);
    }
    expectRefused("- --format csv <u.ply", 2, "standard input:1: \"ply\" is not a number");
}

/// Points of a small lattice, some of them more than once, and what the library makes of them.
class WrittenMesh : public Program {
  protected:
    WrittenMesh() {
        std::uint32_t state = 7;
        std::ostringstream text;
        text.precision(17);
        for (int i = 0; i < 200; ++i) {
            double xyz[3];
            for (double& coordinate : xyz) {
                state = state * 1664525U + 1013904223U;
                coordinate = (state >> 24) % 6 / 7.0;
                text << coordinate << ' ';
            }
            text << '\n';
            points.emplace_back(xyz[0], xyz[1], xyz[2]);
        }
        write("p.xyz", text.str());

        std::vector<Point3> input = points;
        mesh.insert(input);
        std::vector<Tet3*> tets;
        mesh.getTetrahedra(tets);
        for (const Tet3* tet : tets) {
            Corners corners = {};
            for (int i = 0; i < 4; ++i) {
                corners[static_cast<std::size_t>(i)] = firstEqual(*tet->getCorner(i));
                numHullFacets += tet->getOppTet(i) ? 0 : 1;
            }
            std::sort(corners.begin(), corners.end());
            expected.insert(corners);
        }
    }

    std::uint32_t firstEqual(const Point3& p) const {
        return static_cast<std::uint32_t>(std::find(points.begin(), points.end(), p) -
                                          points.begin());
    }

    /// The numbers of a file that follow a heading, a row each.
    std::vector<std::vector<double>> rows(const std::string& file, const std::string& heading,
                                          std::size_t numRows, std::size_t numColumns) const {
        const std::string content = "\n" + read(file);
        const std::size_t found = content.find("\n" + heading + "\n");
        EXPECT_NE(found, std::string::npos) << file << ": " << heading;
        std::istringstream in(content.substr(found + heading.size() + 2));
        std::vector<std::vector<double>> table(numRows, std::vector<double>(numColumns));
        for (auto& row : table) {
            for (double& number : row) {
                in >> number;
            }
        }
        EXPECT_TRUE(in) << file << ": " << heading;
        return table;
    }

    /// The points must be the input's, bit for bit and in its order.
    void expectPoints(const std::vector<std::vector<double>>& table, std::size_t column) const {
        ASSERT_EQ(table.size(), points.size());
        for (std::size_t i = 0; i < points.size(); ++i) {
            EXPECT_EQ(Point3(table[i][column], table[i][column + 1], table[i][column + 2]),
                      points[i]);
        }
    }

    /// The tetrahedra must be these, sorted, and positively oriented.
    void expectTets(const std::vector<std::vector<double>>& table, std::size_t column, double base,
                    const std::set<Corners>& wanted) const {
        std::set<Corners> found;
        Corners previous = {};
        for (const auto& row : table) {
            Corners c = {};
            for (std::size_t i = 0; i < 4; ++i) {
                c[i] = static_cast<std::uint32_t>(row[column + i] - base);
            }
            EXPECT_LT(previous, c);
            previous = c;
            const auto u = points.at(c[1]) - points.at(c[0]);
            const auto v = points.at(c[2]) - points.at(c[0]);
            const auto w = points.at(c[3]) - points.at(c[0]);
            EXPECT_GT(u.x() * (v.y() * w.z() - v.z() * w.y()) +
                          u.y() * (v.z() * w.x() - v.x() * w.z()) +
                          u.z() * (v.x() * w.y() - v.y() * w.x()),
                      0);
            std::sort(c.begin(), c.end());
            found.insert(c);
        }
        EXPECT_EQ(found, wanted);
    }

    std::vector<Point3> points;
    VARN3D::Varn_3D mesh;
    std::set<Corners> expected;
    int numHullFacets = 0;
};

TEST_F(WrittenMesh, isTheLibrarysInEveryFormat) {
    const Outcome result =
        run("p.xyz --check --vtk o.vtk --medit o.mesh --tetgen o --duplicates o.dup");
    ASSERT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(result.err, "");
    const std::size_t numTets = expected.size();
    const std::string n = std::to_string(numTets);

    expectPoints(rows("o.vtk", "POINTS 200 double", 200, 3), 0);
    const std::string cells = "CELLS " + n + " " + std::to_string(5 * numTets);
    expectTets(rows("o.vtk", cells, numTets, 5), 1, 0, expected);
    expectPoints(rows("o.mesh", "Vertices\n200", 200, 4), 0);
    expectTets(rows("o.mesh", "Tetrahedra\n" + n, numTets, 5), 0, 1, expected);
    expectPoints(rows("o.node", "200 3 0 0", 200, 4), 1);
    expectTets(rows("o.ele", n + " 4 0", numTets, 5), 1, 0, expected);

    const auto marks = rows("o.vtk", "LOOKUP_TABLE default", 200, 1);
    std::string list =
        "# number of a point, number of the first point equal to it, counted from 0\n";
    std::string nodeComments;
    std::string meditComments;
    for (std::uint32_t i = 0; i < 200; ++i) {
        const std::uint32_t first = firstEqual(points[i]);
        EXPECT_EQ(marks[i][0], first);
        if (first != i) {
            const auto comment = [&](std::uint32_t base) {
                return "# point " + std::to_string(i + base) + " is a duplicate of point " +
                       std::to_string(first + base) + "\n";
            };
            list += std::to_string(i) + " " + std::to_string(first) + "\n";
            nodeComments += comment(0);
            meditComments += comment(1);
        }
    }
    EXPECT_THAT(read("o.node"), testing::EndsWith(nodeComments));
    EXPECT_THAT(read("o.mesh"), HasSubstr("Dimension 3\n" + meditComments + "Vertices\n"));
    EXPECT_EQ(read("o.dup"), list);
    const auto numDuplicates = std::count(list.begin(), list.end(), '\n') - 1;
    EXPECT_GT(numDuplicates, 20);
    EXPECT_THAT(result.out, testing::MatchesRegex(
                                "points read        200\ndistinct vertices  " +
                                std::to_string(200 - numDuplicates) + "\ntetrahedra         " + n +
                                "\nhull facets        " + std::to_string(numHullFacets) +
                                "\ntime               [0-9.]+ s\n" + "points a second    [0-9]+\n" +
                                "peak memory        [0-9.]+ MiB\n" + "validity           holds\n"));
}

TEST_F(WrittenMesh, isClippedToOneSide) {
    const double third = points[firstEqual(points[0])].x();
    std::ostringstream planes;
    planes.precision(17);
    planes << "--clip 'x<" << third << "' --clip 'y>0.2'";
    const Outcome result = run("p.xyz --tetgen o " + planes.str());
    ASSERT_EQ(result.exitCode, 0) << result.err;
    std::set<Corners> kept;
    for (const Corners& c : expected) {
        if (std::all_of(c.begin(), c.end(), [&](std::uint32_t i) {
                return points[i].x() <= third && points[i].y() >= 0.2;
            })) {
            kept.insert(c);
        }
    }
    EXPECT_GT(kept.size(), 10U);
    EXPECT_LT(kept.size(), expected.size() / 2);
    const std::string n = std::to_string(kept.size());
    EXPECT_THAT(result.out, HasSubstr("tetrahedra kept    " + n + "\n"));
    expectTets(rows("o.ele", n + " 4 0", kept.size(), 5), 1, 0, kept);
    expectPoints(rows("o.node", "200 3 0 0", 200, 4), 1);
}

TEST_F(WrittenMesh, goesToGeomviewAsTheLibraryShowsIt) {
    ASSERT_EQ(run("p.xyz --geomview o.list").exitCode, 0);
    mesh.show((directory / "own.list").string(), nullptr);
    EXPECT_EQ(read("o.list"), read("own.list"));
    EXPECT_EQ(files(), (std::set<std::string>{"p.xyz", "o.list", "own.list"}));
}

TEST_F(WrittenMesh, hasItsVertexDegreesCounted) {
    std::map<std::uint32_t, std::set<std::uint32_t>> neighbours;
    for (const Corners& c : expected) {
        for (const std::uint32_t i : c) {
            neighbours[i].insert(c.begin(), c.end());
        }
    }
    const Outcome result = run("p.xyz --stats");
    ASSERT_EQ(result.exitCode, 0) << result.err;
    std::istringstream in(result.out.substr(result.out.find("vertex degrees")));
    std::string line;
    std::getline(in, line);
    std::size_t numCounted = 0;
    while (std::getline(in, line)) {
        double from = 0;
        double to = 0;
        std::size_t count = 0;
        ASSERT_EQ(std::sscanf(line.c_str(), "%lf - %lf %zu", &from, &to, &count), 3) << line;
        const auto inBin = [&](const auto& entry) {
            const auto degree = static_cast<double>(entry.second.size() - 1);
            return from <= degree && degree < to;
        };
        EXPECT_EQ(count, static_cast<std::size_t>(
                             std::count_if(neighbours.begin(), neighbours.end(), inBin)))
            << line;
        numCounted += count;
    }
    EXPECT_EQ(numCounted, neighbours.size());
}

TEST_F(Program, measuresShapesOfAnySize) {
    for (const char* scale : {"", "e-160", "e307"}) {
        std::string text;
        for (const char* point : {"1 1 1", "-1 -1 1", "-1 1 -1", "1 -1 -1"}) {
            std::istringstream in(point);
            std::string coordinate;
            while (in >> coordinate) {
                text += coordinate + scale + " ";
            }
            text += "\n";
        }
        write("regular.xyz", text);
        const Outcome result = run("regular.xyz --stats");
        EXPECT_EQ(result.exitCode, 0) << result.err;
        EXPECT_THAT(result.out, HasSubstr("tetrahedron): smallest 70.53, largest 70.53\n"));
        EXPECT_THAT(result.out, HasSubstr("shortest edge: smallest 0.6124, largest 0.6124\n"));
        EXPECT_THAT(result.out, HasSubstr("at a vertex): smallest 3, largest 3\n"));
    }
}

TEST_F(Program, triangulatesTheShippedScan) {
    const Outcome result = run(VARN3D_TEST_SOURCE_DIR "/examples/data/bunny.xyz --check");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(result.out, HasSubstr("points read        1839\ndistinct vertices  1839\n"));
    EXPECT_THAT(result.out, HasSubstr("validity           holds\n"));
    EXPECT_THAT(run("--help").out, HasSubstr("varn3d scan.xyz --vtk half.vtk --clip x=0.5\n"));
    EXPECT_EQ(run("--version").out, VARN3D::getVarn3DVersion() + "\n");
}

}  // namespace
