#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <map>

#include "dt3Library/Dt3.h"
#include "dt3Library/Varn_3D.h"
#include "dt3Library/base/MeshAccess.h"
#include "dt3Library/engine/Locator.h"
#include "tests/support/CaptureOutput.h"
#include "tests/support/Exact.h"
#include "tests/support/PointSets.h"

namespace {

using namespace VARN3D;
using namespace support;

/// Positive if p lies on the inner side of facet i.
int side(const Tet3* tet, int i, const Point3& p) {
    Point3 corners[4];
    for (int k = 0; k < 4; ++k) corners[k] = *tet->getCorner(k);
    corners[i] = p;
    return exactOrientation(corners[0], corners[1], corners[2], corners[3]);
}

bool contains(const Tet3* tet, const Point3& p) {
    return side(tet, 0, p) >= 0 && side(tet, 1, p) >= 0 && side(tet, 2, p) >= 0 &&
           side(tet, 3, p) >= 0;
}

enum Place { OUTSIDE, SURFACE, EDGE_INSIDE, FACET_INSIDE, INTERIOR, VERTEX };

/// By looking at every tetrahedron.
Place findPlace(const std::vector<Tet3*>& tets, const Point3& p) {
    Place place = OUTSIDE;
    for (const Tet3* tet : tets) {
        if (!contains(tet, p)) continue;
        if (tet->hasVertex(p)) return VERTEX;
        int numCoplanar = 0;
        for (int i = 0; i < 4; ++i) {
            if (side(tet, i, p) != 0) continue;
            ++numCoplanar;
            if (tet->getOppTet(i) == nullptr) place = SURFACE;
        }
        if (place != SURFACE)
            place = numCoplanar == 0 ? INTERIOR : numCoplanar == 1 ? FACET_INSIDE : EDGE_INSIDE;
    }
    return place;
}

void expectLocated(Place place, const Point3& p, const WalkEnd& end) {
    switch (place) {
        case VERTEX:
            EXPECT_EQ(end.place, WalkEnd::Place::AT_VERTEX);
            EXPECT_EQ(*end.tet->getCorner(end.index), p);
            break;
        case OUTSIDE:
        case SURFACE:
            EXPECT_EQ(end.place, WalkEnd::Place::AT_HULL);
            EXPECT_EQ(end.tet->getOppTet(end.index), nullptr);
            EXPECT_EQ(side(end.tet, end.index, p), place == OUTSIDE ? -1 : 0);
            EXPECT_EQ(contains(end.tet, p), place == SURFACE);
            break;
        default:
            EXPECT_EQ(end.place, WalkEnd::Place::INSIDE);
            EXPECT_TRUE(contains(end.tet, p));
    }
}

const GeomTest3 PREDICATES;
const Locator LOCATOR(PREDICATES);

TEST(Location, LatticeQueriesFromEveryTetrahedron) {
    std::map<Place, int> counts;
    for (std::uint64_t seed = 0; seed < 12; ++seed) {
        Dt3 engine;
        std::vector<Point3*> handles;
        outputOf([&] { engine.insert(lattice(14, 4, 4, 4, seed), handles); });
        std::vector<Tet3*> tets;
        engine.getAllTetrahedra(tets);
        for (const Point3& half : lattice(150, 9, 9, 9, seed + 100)) {
            const Point3 p(half.x() / 2 - 0.5, half.y() / 2 - 0.5, half.z() / 2 - 0.5);
            const Place place = findPlace(tets, p);
            ++counts[place];
            for (Tet3* tet : tets) expectLocated(place, p, LOCATOR.locate(&p, tet));
            const Tet3* located = engine.locate(p);
            ASSERT_EQ(located != nullptr, place != OUTSIDE && place != SURFACE);
            EXPECT_TRUE(located == nullptr || contains(located, p));
        }
    }
    for (const Place place : {OUTSIDE, SURFACE, EDGE_INSIDE, FACET_INSIDE, INTERIOR, VERTEX})
        EXPECT_GT(counts[place], 10) << place;
}

// No sound mesh leads a walk in circles, so links that do have to be planted.
TEST(Location, TheWatchdogStopsAWalkWithoutEnd) {
    Dt3 engine;
    Points points = {{0, 0, 0}, {4, 0, 0}, {0, 4, 0}, {1, 1, 4}, {1, 1, -4}};
    std::vector<Point3*> handles;
    outputOf([&] { engine.insert(points, handles); });
    std::vector<Tet3*> tets;
    engine.getAllTetrahedra(tets);
    ASSERT_EQ(tets.size(), 2U);
    for (int i = 0; i < 4; ++i) {
        MeshAccess::neighbour(tets[0], i) = tets[1];
        MeshAccess::neighbour(tets[1], i) = tets[0];
    }
    // Both tetrahedra have these points beyond two facets, so beyond one that the walk didn't enter
    // by.
    const auto leavesBoth = [&](const Point3& p) {
        return std::all_of(tets.begin(), tets.end(), [&](const Tet3* tet) {
            int numBeyond = 0;
            for (int i = 0; i < 4; ++i) numBeyond += side(tet, i, p) < 0 ? 1 : 0;
            return numBeyond >= 2;
        });
    };
    int numQueries = 0;
    for (const Point3& p :
         {Point3(99, 99, 1), Point3(-99, -99, 0), Point3(-99, 9, 0), Point3(9, -99, 0)}) {
        if (!leavesBoth(p)) continue;
        ++numQueries;
        std::srand(7);
        std::rand();
        const int second = std::rand();
        std::srand(7);
        WalkEnd end{WalkEnd::Place::INSIDE, nullptr};
        EXPECT_EQ(outputOf([&] { end = LOCATOR.locate(&p, tets[0]); }), "watchDog: bad point\n");
        EXPECT_EQ(end.place, WalkEnd::Place::ON_THE_WAY);
        EXPECT_EQ(std::rand(), second) << "the watchdog draws one number";
        EXPECT_EQ(outputOf([&] { EXPECT_EQ(engine.locate(p), nullptr); }), "watchDog: bad point\n");
        EXPECT_THAT(outputOf([&] { EXPECT_THROW(engine.insert(p), VarnException); }),
                    testing::EndsWith("Condition [ locateResult!=-99 failed ]\n\n"
                                      "      dt3Library/Dt3.cpp:802\n"));
    }
    EXPECT_GT(numQueries, 0);
}

}  // namespace
