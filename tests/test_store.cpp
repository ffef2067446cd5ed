#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <set>

#include "dt3Library/HC3.h"
#include "dt3Library/Tet3.h"
#include "dt3Library/VarnException.h"
#include "tests/support/CaptureOutput.h"
#include "tests/support/MeshDigest.h"
#include "tests/support/PointSets.h"

namespace {

using namespace VARN3D;
using namespace support;

// Rows are octants, columns states; a and b stand for 10 and 11.
const char* const DIGITS[8] = {"000246462246", "173335775151", "317151353577", "264022044660",
                               "731577511335", "642404606022", "426660220404", "555713137713"};
const char* const NEXT_STATES[8] = {"1206b456a47a", "2690b4713423", "30a6085618b2", "279b783a1826",
                                    "48195019a27a", "581096143753", "30b90ab95284", "57b876ba9354"};

/// The Hilbert key (27 bits) of a point in a box, level by level from the curve's tables.
std::uint32_t plainHilbertKey(const Point3& p, const Coordinates& min, const Coordinates& extent) {
    Coordinates half = {extent[0] / 2, extent[1] / 2, extent[2] / 2};
    Coordinates d = {p.x() - min[0], p.y() - min[1], p.z() - min[2]};
    std::size_t state = 0;
    std::uint32_t key = 0;
    for (int shift = 24; shift >= 0; shift -= 3) {
        std::size_t octant = 0;
        const double threshold = half[0];  // of x, for all three axes
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const bool bUpper = d[axis] >= threshold;
            octant = 2 * octant + (bUpper ? 1 : 0);
            if (bUpper) d[axis] -= half[axis];
            half[axis] /= 2;
        }
        key += static_cast<std::uint32_t>(DIGITS[octant][state] - '0') << shift;
        const char next = NEXT_STATES[octant][state];
        state = static_cast<std::size_t>(next >= 'a' ? next - 'a' + 10 : next - '0');
    }
    return key;
}

/// Orders vertices along a curve over the cube around them, those of a cell that more than eight
/// share along a curve over theirs, and so on.
Handles alongFinerCurves(Handles vertices) {
    Coordinates min = coordinatesOf(*vertices.front()), max = min;
    for (const Point3* p : vertices)
        for (std::size_t axis = 0; axis < 3; ++axis) {
            min[axis] = std::min(min[axis], coordinatesOf(*p)[axis]);
            max[axis] = std::max(max[axis], coordinatesOf(*p)[axis]);
        }
    const double side = std::max({max[0] - min[0], max[1] - min[1], max[2] - min[2]});
    std::map<std::uint32_t, Handles> cells;
    for (Point3* p : vertices) cells[plainHilbertKey(*p, min, {side, side, side})].push_back(p);
    if (cells.size() == 1) return vertices;
    vertices.clear();
    for (const auto& [key, cell] : cells) {
        const Handles ordered = cell.size() > 8 ? alongFinerCurves(cell) : cell;
        vertices.insert(vertices.end(), ordered.begin(), ordered.end());
    }
    return vertices;
}

/// A store that keeps what its batches returned.
struct Store {
    HC3 hc3;
    BatchProgress progress;
    std::vector<Point3*> handles;
    std::vector<Point3*> added;

    void insert(const Points& points) {
        handles.clear();
        added.clear();
        hc3.insert(points, handles, added, progress);
    }
    std::uint32_t plainKey(const Point3& p) const {
        const auto [min, max] = box();
        return plainHilbertKey(p, min, {max[0] - min[0], max[1] - min[1], max[2] - min[2]});
    }
    std::pair<Coordinates, Coordinates> box() const {
        return {coordinatesOf(hc3.getBbox().getMinPoint()),
                coordinatesOf(hc3.getBbox().getMaxPoint())};
    }
};

std::pair<Coordinates, Coordinates> enlarged(Coordinates min, Coordinates max, double factor) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double d = (max[axis] - min[axis]) * factor * 0.5;
        min[axis] -= d;
        max[axis] += d;
    }
    return {min, max};
}

TEST(Store, KeysFollowTheTables) {
    for (const Point3& extent : {Point3(1, 1, 1), Point3(1, 20, 0.01), Point3(0.3, 0.2, 7),
                                 Point3(1e-3, 1, 1), Point3(0, 1, 1), Point3(1, 0, 0)}) {
        Store store;
        Points points = uniform(500, 1, -1.0, 1.0);
        for (Point3& p : points)
            p.exchange(p.x() * extent.x(), p.y() * extent.y(), p.z() * extent.z());
        store.insert(points);
        for (const Point3& p : points + uniform(500, 2, -3.0, 3.0))
            ASSERT_EQ(store.hc3.hilbertIndex(p), store.plainKey(p)) << extent << p;
    }
}

TEST(Store, RefusesOtherKeyLengths) {
    for (const unsigned numBits : {1U, 28U, 32U, 33U, 36U}) {
        const std::string output = outputOf([&] { EXPECT_THROW(HC3 hc3(numBits), VarnException); });
        EXPECT_THAT(output, testing::StartsWith("HC3::HC3(..): invalid bitlength\n")) << numBits;
    }
}

// The first batch of a process that grows a box gets the narrow margin, nothing else ever does.
void growBoxes() {
    Store first;
    first.hc3.insertOne({1, 1, 1});
    EXPECT_EQ(first.box(), enlarged({1, 1, 1}, {1, 1, 1}, 1.0));
    first.hc3.insertOne({2, 3, 5});
    EXPECT_EQ(first.box(), enlarged({1, 1, 1}, {2, 3, 5}, 1.0));

    Store second;
    const HC3::Mark mark = second.hc3.mark();
    second.insert({{0, 0, 0}, {7, 7, 7}});
    second.hc3.rewind(mark);  // with the margin, which is there for the next
    second.insert({{0, 0, 0}, {10, 20, 40}});
    const auto narrow = enlarged({0, 0, 0}, {10, 20, 40}, 0.1);
    EXPECT_EQ(second.box(), narrow);
    second.insert({{-0.25, 20.5, 41}, {5, 5, 5}});
    EXPECT_EQ(second.box(), narrow) << "inside the margin nothing grows";
    second.insert({{5, 5, 100}, {5, 5, 5}});
    EXPECT_EQ(second.box(), enlarged(narrow.first, {narrow.second[0], narrow.second[1], 100}, 1.0));

    Store third;
    third.insert({{0, 0, 0}, {1, 1, 1}});
    EXPECT_EQ(third.box(), enlarged({0, 0, 0}, {1, 1, 1}, 1.0));
    std::exit(testing::Test::HasFailure() ? EXIT_FAILURE : EXIT_SUCCESS);
}

TEST(Store, BoxesGrowByTheirFactors) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";  // in a process that runs nothing else
    EXPECT_EXIT(growBoxes(), testing::ExitedWithCode(EXIT_SUCCESS), "");
}

TEST(Store, NewVerticesComeInCurveOrderAndEqualKeysInInputOrderOrAlongAFinerCurve) {
    Store store;
    std::map<Coordinates, Point3*> known;
    Handles stored;  // in the order of their storing
    std::size_t mostInACell = 0;
    for (std::uint64_t round = 0; round < 6; ++round) {
        // Later rounds leave the box; many points share a cell and some are equal, and the last
        // box is too large for doubles.
        const double span = round < 3 ? 1.0 : round < 5 ? 50.0 * static_cast<double>(round) : 1e308;
        Points points = uniform(300, round, 0.0, span) + lattice(100, 4, 4, 4, round) +
                        uniform(100, round, 0.5, 0.5001) + uniform(60, round, 0.5, 0.5 + 1e-9);
        if (round == 5) points = std::move(points) + uniform(300, 6, -1e308, 1e308);
        points = shuffled(points, round);
        store.insert(points);
        std::map<std::uint32_t, Handles> cells;
        for (std::size_t i = 0; i < points.size(); ++i)
            if (known.emplace(coordinatesOf(points[i]), store.handles[i]).second)
                cells[store.plainKey(points[i])].push_back(store.handles[i]);
        std::vector<Point3*> expected;
        for (const auto& [key, cell] : cells) {
            stored.insert(stored.end(), cell.begin(), cell.end());
            const Handles ordered = cell.size() > 8 ? alongFinerCurves(cell) : cell;
            expected.insert(expected.end(), ordered.begin(), ordered.end());
            mostInACell = std::max(mostInACell, cell.size());
        }
        EXPECT_EQ(store.added, expected);
        ASSERT_EQ(store.handles.size(), points.size());
        for (std::size_t i = 0; i < points.size(); ++i) {
            ASSERT_EQ(*store.handles[i], points[i]);
            ASSERT_EQ(store.handles[i], known.at(coordinatesOf(points[i])));
        }

        // A list follows what stands in the vector, in curve order as the box is now; singles in
        // the box leave that as it is.
        for (const bool bSingle : {false, true}) {
            const Point3 single = *store.handles[0] + Vector3(0.0, 0.0, bSingle ? 1e-3 : 0.0);
            Point3* const handle = store.hc3.insertOne(single).first;
            if (known.emplace(coordinatesOf(single), handle).second) stored.push_back(handle);
            EXPECT_EQ(handle, known.at(coordinatesOf(single)));
            EXPECT_EQ(store.hc3.getNumVertices(), known.size());
            Handles inOrder = stored, listed{handle};
            std::stable_sort(inOrder.begin(), inOrder.end(), [&](Point3* a, Point3* b) {
                return store.plainKey(*a) < store.plainKey(*b);
            });
            inOrder.insert(inOrder.begin(), handle);
            store.hc3.getVertices(listed);
            EXPECT_EQ(listed, inOrder);
        }
    }
    EXPECT_GT(mostInACell, 50U);
}

// Whatever the coordinates: cells of thousands, denormals, zeros of either sign.
TEST(Store, PointsAreFoundAgainAndNothingIsNew) {
    const Points sets[] = {uniform(1500, 1, -1.0, 1.0), lattice(1500, 30, 30, 30, 1),
                           nestedClusters(1500),
                           mixedExponents(1500, -1074, -1000) + mixedExponents(500, -1, 1)};
    for (Points points : sets)
        for (const double far : {1.0, 1e15, 1e308}) {
            Store store;
            points.push_back({-far, far, 0.0});
            const auto third = points.begin() + 500;
            store.insert({points.begin(), third});
            Handles handles = store.handles;
            store.insert({third, points.end()});
            handles.insert(handles.end(), store.handles.begin(), store.handles.end());
            const std::size_t numVertices = store.hc3.getNumVertices();
            points = withSignsOfZerosExchanged(points);
            store.insert(points);
            EXPECT_EQ(store.handles, handles);
            EXPECT_TRUE(store.added.empty());
            for (std::size_t i = 0; i < points.size(); ++i)
                EXPECT_EQ(store.hc3.insertOne(points[i]).first, handles[i]);
            EXPECT_EQ(store.hc3.getNumVertices(), numVertices);
        }
}

TEST(Store, AStartTetrahedronIsFoundWhereverItIs) {
    Tet3 tet;
    for (const std::size_t owner : {0U, 57U, 599U}) {
        Store store;
        const Points points = uniform(600, 1);
        store.insert(points);
        EXPECT_EQ(store.hc3.findStartTet({0.5, 0.5, 0.5}), nullptr);
        EXPECT_EQ(store.hc3.insertOne({0.5, 0.5, 0.5}).second, nullptr);
        store.handles[owner]->setOneTet(&tet);
        for (const Point3& p : points + uniform(20, 2, -1.0, 2.0)) {
            EXPECT_EQ(store.hc3.findStartTet(p), &tet);
            EXPECT_EQ(store.hc3.insertOne(p).second, &tet);
        }
    }
}

// After a rewind within the box, beyond it, and of the first batch.
TEST(Store, RewoundIsAsThoughNothingHadBeenStored) {
    takeFirstMargin();
    for (const double span : {0.5, 9.0})
        for (const std::size_t numBatches : {0U, 1U, 2U}) {
            const auto seen = [&](bool bRewound) {
                Store store;
                for (std::size_t i = 0; i < numBatches; ++i) store.insert(uniform(300, i));
                const HC3::Mark mark = store.hc3.mark();
                const Points taken = uniform(300, 7, -span, span);
                if (bRewound) store.insert(taken), store.hc3.rewind(mark);
                Points all;
                for (const Points& points : {taken, uniform(200, 8)}) {
                    store.insert(points);
                    store.hc3.getVertices(store.added);
                    for (const Point3* p : store.added) all.push_back(*p);
                }
                return all;
            };
            EXPECT_TRUE(seen(true) == seen(false)) << span << " " << numBatches;
        }
}

TEST(Store, FailedChecks) {
    Store store;
    EXPECT_THAT(outputOf([&] { EXPECT_THROW(store.hc3.hilbertIndex({}), VarnException); }),
                testing::HasSubstr("Condition [ bValid failed ]"));
    store.insert({{1, 1, 1}});
    std::vector<Point3*> added;
    EXPECT_THAT(outputOf([&] {
                    EXPECT_THROW(
                        store.hc3.insert(Points{{2, 2, 2}}, store.handles, added, store.progress),
                        VarnException);
                }),
                testing::HasSubstr("Condition [ vUserHandles.empty() failed ]"));
    EXPECT_EQ(store.hc3.getNumVertices(), 1U);
}

}  // namespace
