#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <iterator>
#include <locale>

#include "dt3Library/Visualizer3.h"
#include "tests/support/Failures.h"

using namespace VARN3D;
using support::outputOf;

namespace {

struct Written {
    std::string file;
    std::string messages;
};

Written written(const std::function<void(Visualizer3&)>& write) {
    const std::string name =
        ::testing::TempDir() + "varn3d_visualizer_" + std::to_string(::getpid());
    const std::string opening = "Visualizer, writing " + name + "\n  Writing " + name + "\n";
    const std::string messages = outputOf([&] {
        Visualizer3 visualizer(name);
        write(visualizer);
    });
    EXPECT_EQ(messages.substr(0, opening.size()), opening);
    std::ifstream in(name);
    const std::string file{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    std::remove(name.c_str());
    return {file, messages.substr(opening.size())};
}

std::string triangleText(const std::string& corners, const std::string& color) {
    return "{\nOFF\n3 1 0\n" + corners + "3 0 1 2 " + color + "\n}\n";
}

}  // namespace

TEST(Visualizer3, EmptyFile) {
    EXPECT_EQ(written([](Visualizer3&) {}).file, "LIST\n{\n}\n");
    EXPECT_EQ(written([](Visualizer3& v) { v.close(), v.close(); }).file, "LIST\n{\n}\n");
}

TEST(Visualizer3, ShapesByteForByte) {
    const Point3 a(0, 0.5, -1), b(1e7, 0, 0.1), c(1234567, 1, 1);
    const Written result = written([&](Visualizer3& v) {
        v.writePoints({a}, 8, Visualizer3::colorArray[WHITE]);
        v.writePoints({a, b, c}, 10, "0 0 0 1");
        v.writePoints({}, 1, "unused");
        v.writeSegment(a, b, Visualizer3::colorArray[CLAWNGREEN]);
        v.writeTriangle(a, b, c, Visualizer3::colorArray[CPALEGREEN]);
        v.writeTet(nullptr, "unused");
        v.writeBall(a, 6.25);
    });
    EXPECT_EQ(result.messages,
              "\n      Visualizer3::writePoints, WARNING: vPoints.empty()\n\n"
              "\n      Visualizer3:.writeTet(), ERROR: c==NULL\n\n");
    EXPECT_EQ(result.file,
              "LIST\n{\n"
              "LIST\n{\nappearance{linewidth 8}\nVECT\n1 1 1\n1 \n1 \n0 0.5 -1\n1 1 1 0.5\n}\n"
              "LIST\n{\nappearance{linewidth 10}\nVECT\n3 3 1\n1 1 1 \n1 0 0 \n"
              "0 0.5 -1\n1e+07 0 0.1\n1.23457e+06 1 1\n0 0 0 1\n}\n"
              "{\nVECT\n1 2 1\n2\n1\n0 0.5 -1\n1e+07 0 0.1\n0.49\t0.99 0.00 0.5\n}\n" +
                  triangleText("0 0.5 -1\n1e+07 0 0.1\n1.23457e+06 1 1\n", "0.60\t0.98 0.60 0.5") +
                  "{\nappearance { +edge -face }\nSPHERE 2.5 0 0.5 -1\n}\n"
                  "}\n");
}

TEST(Visualizer3, FirstFourteenColoursTakeTurns) {
    for (int turn = 0; turn < 2; ++turn)
        for (int i = 0; i < 14; ++i) {
            EXPECT_EQ(Visualizer3::getColor(), Visualizer3::colorArray[i]);
            EXPECT_EQ(Visualizer3::getNextColor(), Visualizer3::colorArray[i]);
        }
    EXPECT_EQ(Visualizer3::getColorAt(13), "1 1 1 0.5");
    for (const int none : {14, -1})
        EXPECT_EQ(outputOf([=] { EXPECT_EQ(Visualizer3::getColorAt(none), "1 1 1 0.5"); }),
                  "Attention, returning colorArray[13] which is the last available color\n");
}

TEST(Visualizer3, NumbersHaveAPointInEveryLocale) {
    struct Comma : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale previous = std::locale::global(std::locale(std::locale(), new Comma));
    const std::string file =
        written([](Visualizer3& v) { v.writeBall(Point3(0.5, 1e4, 0), 1); }).file;
    std::locale::global(previous);
    EXPECT_THAT(file, ::testing::HasSubstr("SPHERE 1 0.5 10000 0\n"));
}

TEST(Visualizer3DeathTest, UnopenedFileEndsTheProcess) {
    const std::string name = "/no such directory/file.list";
    EXPECT_EXIT(
        {
            support::printOnStandardError();
            Visualizer3 visualizer(name);
        },
        ::testing::ExitedWithCode(1), "Visualizer, writing " + name + "\n" + name + " not open\n");
}
