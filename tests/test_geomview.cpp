#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>

#include "dt3Library/Varn_3D.h"
#include "dt3Library/Visualizer3.h"

using namespace VARN3D;

namespace {

// What Geomview has to say about a file.
std::string complaintsAbout(const std::string& file) {
    const std::string command = "xvfb-run -a geomview -nopanels '" + file + "' -c '(exit)' 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    std::string output;
    std::array<char, 256> part;
    while (std::fgets(part.data(), static_cast<int>(part.size()), pipe) != nullptr)
        output += part.data();
    const int status = pclose(pipe);
    std::remove(file.c_str());
    return status == 0 ? output : output + "status " + std::to_string(status);
}

}  // namespace

TEST(Geomview, LoadsWhatTheLibraryWrites) {
    if (std::system("command -v geomview >/dev/null && command -v xvfb-run >/dev/null") != 0)
        GTEST_SKIP() << "Geomview or xvfb-run is not installed";

    const std::string broken = ::testing::TempDir() + "varn3d_broken.list";
    std::ofstream(broken) << "LIST\n{\nOFF\n3 1 0\n0 0 0\n}\n";
    EXPECT_NE(complaintsAbout(broken), "");

    std::vector<Point3> points;
    for (int i = 0; i < 64; ++i) points.emplace_back(i % 4, i / 4 % 4 * 1e-9, i / 16 * 1e9);
    Varn_3D mesh;
    std::vector<Point3*> handles;
    mesh.insert(points, handles);
    const std::string shown = ::testing::TempDir() + "varn3d_shown.list";
    mesh.show(shown, handles[21]);
    EXPECT_EQ(complaintsAbout(shown), "");

    const std::string shapes = ::testing::TempDir() + "varn3d_shapes.list";
    Visualizer3 visualizer(shapes);
    for (const char* color : Visualizer3::colorArray) {
        visualizer.writeTet(mesh.locate({1.5, 1.5e-9, 1.5e9}), color);
        visualizer.writeTriangle({0, 0, 0}, {1, 0, 0}, {0, 1, 0}, color);
        visualizer.writeSegment({0, 0, 0}, {1e-300, 1e300, -1}, color);
        visualizer.writePoints({{0, 0, 0}, {1, 2, 3}}, 5, color);
    }
    visualizer.writeBall({1, 2, 3}, 0.25);
    visualizer.close();
    EXPECT_EQ(complaintsAbout(shapes), "");
}
