#include <cfloat>
#include <cmath>
#include <limits>

#include "dt3Library/Ball3.h"
#include "dt3Library/Bbox3.h"
#include "dt3Library/Point3.h"
#include "dt3Library/Segment3.h"
#include "dt3Library/Triangle3.h"
#include "tests/support/Failures.h"

using namespace VARN3D;
using support::outputOf;
using support::printed;

namespace {

void expectCoordinates(const Point3& p, double x, double y, double z) {
    EXPECT_EQ(p.x(), x);
    EXPECT_EQ(p.y(), y);
    EXPECT_EQ(p.z(), z);
}

/// Something for links to point to; never followed.
Tet3* anyTet() {
    static char place;
    return reinterpret_cast<Tet3*>(&place);
}

}  // namespace

TEST(Point3, DefaultPointLiesBelowAllOthers) {
    const Point3 unset;
    expectCoordinates(unset, -DBL_MAX, -DBL_MAX, -DBL_MAX);
    EXPECT_EQ(unset.getOneTet(), nullptr);
    EXPECT_TRUE(unset == Point3());
    EXPECT_TRUE(unset < Point3(-DBL_MAX, -DBL_MAX, std::nextafter(-DBL_MAX, 0.0)));
}

TEST(Point3, CopiesForgetTheTetrahedronAndAssignmentsKeepIt) {
    Point3 vertex(1, 2, 3);
    vertex.setOneTet(anyTet());
    vertex.setIndex(7);
    const Point3 copy(vertex);
    expectCoordinates(copy, 1, 2, 3);
    EXPECT_EQ(copy.getOneTet(), nullptr);

    Point3 assigned;
    assigned = vertex;
    expectCoordinates(assigned, 1, 2, 3);
    EXPECT_EQ(assigned.getOneTet(), anyTet());
    EXPECT_TRUE(copy.getIndex() == 7 && assigned.getIndex() == 7);

    assigned.exchange(7, 8, 9);
    EXPECT_EQ(assigned.getOneTet(), anyTet());
    const Point3 moved = assigned + Vector3(1, 2, 4);
    expectCoordinates(moved, 8, 10, 13);
    EXPECT_EQ(moved.getOneTet(), nullptr);
    EXPECT_EQ(Point3(0, 0, 0) + (assigned - moved), Point3(-1, -2, -4));
    assigned.init(vertex);
    expectCoordinates(assigned, 1, 2, 3);
    EXPECT_EQ(assigned.getOneTet(), nullptr);
}

TEST(Point3, OrderIsLexicographicAndKnowsNoTolerance) {
    const double tiny = std::numeric_limits<double>::denorm_min();
    const struct {
        Point3 a, b;
        bool less, equal;
    } rows[] = {
        {{1, 2, 3}, {1, 2, 4}, true, false},     {{1, 2, 3}, {1, 2, 3}, false, true},
        {{1, 3, 0}, {1, 2, 9}, false, false},    {{0, 9, 9}, {1, 0, 0}, true, false},
        {{2, 0, 0}, {1, 9, 9}, false, false},    {{-0.0, 0, -0.0}, {0, -0.0, 0}, false, true},
        {{0, 0, -tiny}, {0, 0, 0}, true, false}, {{0, 0, 0}, {0, 0, tiny}, true, false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(printed(row.a) + " and " + printed(row.b));
        EXPECT_EQ(row.a < row.b, row.less);
        EXPECT_EQ(row.a == row.b, row.equal);
    }
}

TEST(Point3, Output) {
    const Point3 p(1, -2.5, 1234567.0);
    EXPECT_EQ(printed(p), printed(&p) + "\t       1,     -2.5, 1.23457e+06");
    EXPECT_EQ(outputOf([&] { p.debug(); }), "Point3: 1,-2.5,1.23457e+06\n");
}

TEST(Vector3, NormalsAndTheirWarnings) {
    const std::string warning = "warning: normalize(const Vector3& other), Null length vector!\n";
    const Point3 o(0, 0, 0), x(1, 0, 0), y(0, 3, 0), xx(2, 0, 0);
    const struct {
        const Point3 &p0, &p1, &p2;
        double z;
        std::string output;
    } rows[] = {
        {o, x, y, 1, ""},
        {o, y, x, -1, ""},
        {o, x, xx, 0, warning},  // collinear: only the cross product vanishes
        {o, o, x, 0, warning + warning},
        {o, o, o, 0, warning + warning + warning},
    };
    for (const auto& row : rows) {
        Vector3 normal(9, 9, 9);
        EXPECT_EQ(outputOf([&] { normal = getNormalVector(row.p0, row.p1, row.p2); }), row.output);
        EXPECT_EQ(normal.x, 0.0);
        EXPECT_EQ(normal.y, 0.0);
        EXPECT_EQ(normal.z, row.z);
    }
    // Too short for its square to be a number.
    EXPECT_EQ(outputOf([] { EXPECT_EQ(normalize(Vector3(1e-200, 0, 0)).x, 0.0); }), warning);
    const Vector3 unit = normalize(Vector3(2, -3, 6));
    EXPECT_DOUBLE_EQ(unit.x, 2.0 / 7.0);
    EXPECT_DOUBLE_EQ(unit.y, -3.0 / 7.0);
    EXPECT_DOUBLE_EQ(unit.z, 6.0 / 7.0);
}

TEST(Bbox3, GrowsAndTellsWhetherItDid) {
    Bbox3 box;
    EXPECT_FALSE(box.isValid());
    EXPECT_FALSE(box.add(std::vector<Point3>{}));
    EXPECT_FALSE(box.isValid());
    EXPECT_TRUE(box.add(Point3(1, 2, 3)));
    EXPECT_TRUE(box.isValid());
    EXPECT_FALSE(box.add(Point3(1, 2, 3)));
    for (int axis = 0; axis < 3; ++axis)
        for (const double step : {10.0, -10.0}) {
            const Point3 p(1 + (axis == 0) * step, 2 + (axis == 1) * step, 3 + (axis == 2) * step);
            EXPECT_TRUE(box.add(p));
            EXPECT_FALSE(box.add(std::vector<Point3>{p, p}));
        }
    EXPECT_EQ(outputOf([&] { box.debug(); }), "Bbox3: (-9,-8,-7) -> (11,12,13)\n");

    for (int turns = 0; turns < 3; ++turns) {  // each axis in each role
        const auto turned = [=](double a, double b, double c) {
            return turns == 0 ? Point3(a, b, c) : turns == 1 ? Point3(b, c, a) : Point3(c, a, b);
        };
        const Bbox3 b({turned(-3, 2, 7), turned(10, 20, 9)});
        EXPECT_EQ(Point3(b.getMinX(), b.getMinY(), b.getMinZ()), turned(-3, 2, 7));
        EXPECT_EQ(Point3(b.getMaxX(), b.getMaxY(), b.getMaxZ()), turned(10, 20, 9));
        EXPECT_EQ(Point3(b.getRangeX(), b.getRangeY(), b.getRangeZ()), turned(13, 18, 2));
        EXPECT_EQ(b.getMinCoord(), -3);
        EXPECT_EQ(b.getMaxCoord(), 20);
        EXPECT_EQ(b.getMaxRange(), 18);
    }

    // A box whose smallest x is the largest double counts as empty: its next points are its first.
    Bbox3 farthest;
    for (int twice = 0; twice < 2; ++twice)
        EXPECT_TRUE(farthest.add(std::vector<Point3>{Point3(DBL_MAX, DBL_MAX, DBL_MAX)}));
    const Bbox3 extreme({Point3(DBL_MAX, 0, 0), Point3(-1, 5, 0), Point3(0, 0, 0)});
    expectCoordinates(extreme.getMinPoint(), -1, 0, 0);
    expectCoordinates(extreme.getMaxPoint(), DBL_MAX, 5, 0);
}

TEST(Bbox3, SumsAndEnlargements) {
    Bbox3 a({Point3(0, 0, 0), Point3(1, 1, 1)});
    Bbox3 b({Point3(-1, 0.5, 2)});
    const Bbox3 sum = a + b;
    for (const Bbox3* box : {&sum, static_cast<const Bbox3*>(&a)}) {
        expectCoordinates(box->getMinPoint(), -1, 0, 0);
        expectCoordinates(box->getMaxPoint(), 1, 1, 2);
    }
    b.enlargeBounds(100.0);
    expectCoordinates(b.getMinPoint(), -1, 0.5, 2);
    expectCoordinates(b.getMaxPoint(), -1, 0.5, 2);
    a.enlargeBounds(0.0);
    a.enlargeBounds(1.0);
    expectCoordinates(a.getMinPoint(), -2, -0.5, -1);
    expectCoordinates(a.getMaxPoint(), 2, 1.5, 3);
}

TEST(Triangle3, CornersNeighboursAndOutput) {
    Point3 a(-1, 2, 4), b(3, 1, 1), c(1, 3, 4), d(1, 1, 1);
    Triangle3 triangle(&a, &b, &c);
    Triangle3 other(&b, &a, &d), third(&a, &c, &d);
    triangle.setNeig(2, &other);
    triangle.setNeig(0, &third);
    Point3* const corners[3] = {&a, &b, &c};
    Triangle3* const neighbours[3] = {&third, nullptr, &other};
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(triangle.getCorner(i), corners[i]);
        EXPECT_EQ(triangle.getNeig(i), neighbours[i]);
        EXPECT_EQ(triangle.getIntraTriangleIndex(corners[i]), i);
        EXPECT_EQ(triangle.getIntraTriangleIndex(corners[(i + 1) % 3], corners[(i + 2) % 3]), i);
        EXPECT_EQ(triangle.getIntraTriangleIndex(corners[(i + 2) % 3], corners[(i + 1) % 3]), i);
    }
    expectCoordinates(triangle.getBarycenter(), 1, 2, 3);
    EXPECT_THAT(printed(triangle),
                ::testing::AllOf(::testing::StartsWith("Triangle: "),
                                 ::testing::HasSubstr("ith=1, vertex (" + printed(&b) +
                                                      "): " + printed(b) + "  oppTet=0 (NULL)"),
                                 ::testing::HasSubstr("  oppTet=" + printed(&other))));
    const Triangle3 incomplete(&a, &b, nullptr);
    EXPECT_THAT(printed(incomplete), ::testing::EndsWith("ith=2, vertex (0):   oppTet=0 (NULL)\n"));
    EXPECT_EQ(support::failureOf([&] { incomplete.getBarycenter(); }),
              support::checkReport("corner!=NULL", "dt3Library/Triangle3.cpp:54"));

    ::testing::internal::CaptureStderr();
    EXPECT_EQ(triangle.getIntraTriangleIndex(&d), -999);
    EXPECT_EQ(triangle.getIntraTriangleIndex(&a, &d), -999);
    EXPECT_EQ(triangle.getIntraTriangleIndex(&a, &a), -999);
    EXPECT_THAT(::testing::internal::GetCapturedStderr(),
                ::testing::StartsWith("Triangle3::getIntraTriangleIndex(): invalid (p)\n"
                                      "Triangle3::getIntraTriangleIndex(): invalid (p1,p2)\n"
                                      "Have searched for " +
                                      printed(&a) + " and " + printed(&d) + " in Triangle: "));
    for (const int i : {-1, 3}) {
        const auto report = support::checkReport("i>-1 && i<3", "dt3Library/Triangle3.h:22");
        EXPECT_EQ(support::failureOf([&] { triangle.getCorner(i); }), report);
        EXPECT_EQ(support::failureOf([&] { triangle.getNeig(i); }), report);
        EXPECT_EQ(support::failureOf([&] { triangle.setNeig(i, nullptr); }), report);
    }
}

TEST(SegmentsAndBalls, Output) {
    const Segment3 segment(Point3(1, 2, 3), Point3(4, 5, 6));
    expectCoordinates(segment.getSrc(), 1, 2, 3);
    expectCoordinates(segment.getTrg(), 4, 5, 6);
    EXPECT_THAT(outputOf([&] { segment.debug(); }),
                ::testing::MatchesRegex("Segment3: 0x[0-9a-f]+\t       1,        2,        3,"
                                        "0x[0-9a-f]+\t       4,        5,        6\n"));
    const Ball3 ball(1, 2, 3, 6.25);
    EXPECT_EQ(ball.getSqRadius(), 6.25);
    expectCoordinates(ball.getCenter(), 1, 2, 3);
    EXPECT_THAT(
        outputOf([&] { ball.debug(); }),
        ::testing::MatchesRegex("Ball3: 0x[0-9a-f]+\t       1,        2,        3, r=2.5\n"));
}
