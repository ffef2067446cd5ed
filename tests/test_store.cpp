#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

#include "dt3Library/HC3.h"
#include "dt3Library/Tet3.h"
#include "dt3Library/VarnException.h"
#include "support/CaptureOutput.h"
#include "support/MeshDigest.h"
#include "support/PointSets.h"

namespace {

using namespace VARN3D;
using namespace support;

constexpr std::uint32_t MAX_CORNER_KEY = 90543705;

// Rows are octants, columns states; a and b stand for 10 and 11.
const char* const DIGITS[8] = {"000246462246", "173335775151", "317151353577", "264022044660",
                               "731577511335", "642404606022", "426660220404", "555713137713"};
const char* const NEXT_STATES[8] = {"1206b456a47a", "2690b4713423", "30a6085618b2", "279b783a1826",
                                    "48195019a27a", "581096143753", "30b90ab95284", "57b876ba9354"};

/// The Hilbert key (27 bits) of a point in a box, level by level from the curve's tables.
std::uint32_t plainHilbertKey(const Point3& p, const Coordinates& min, const Coordinates& max) {
    Coordinates half = {(max[0] - min[0]) / 2, (max[1] - min[1]) / 2, (max[2] - min[2]) / 2};
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

/// A store that keeps what its batches returned.
struct Store {
    HC3 hc3;
    std::vector<Point3*> handles;
    std::vector<Point3*> added;

    void insert(const Points& points) {
        handles.clear();
        added.clear();
        hc3.insert(points, handles, added);
    }
    std::uint32_t plainKey(const Point3& p) const {
        return plainHilbertKey(p, coordinatesOf(hc3.getBbox().getMinPoint()),
                               coordinatesOf(hc3.getBbox().getMaxPoint()));
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

TEST(Store, keysFollowTheTables) {
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

TEST(Store, cornersAndOctantsOfACube) {
    Store store;
    store.insert({{0, 0, 0}, {8, 8, 8}});
    EXPECT_EQ(store.hc3.hilbertIndex(store.hc3.getBbox().getMinPoint()), 0U);
    EXPECT_EQ(store.hc3.hilbertIndex(store.hc3.getBbox().getMaxPoint()), MAX_CORNER_KEY);
    EXPECT_EQ(store.hc3.hilbertIndex({99, 99, 99}), MAX_CORNER_KEY);
    const unsigned order[8] = {0, 1, 3, 2, 6, 7, 5, 4};
    for (unsigned digit = 0; digit < 8; ++digit) {
        const unsigned octant = order[digit];
        const Point3 p(octant & 4 ? 6 : 2, octant & 2 ? 6 : 2, octant & 1 ? 6 : 2);
        EXPECT_EQ(store.hc3.hilbertIndex(p) >> 24, digit);
    }
}

TEST(Store, shorterKeysAreTheFirstDigits) {
    for (const unsigned numBits : {3U, 12U, 30U}) {
        HC3 hc3(numBits);
        Store full;
        std::vector<Point3*> handles;
        std::vector<Point3*> added;
        hc3.insertOne({0, 0, 0});
        full.hc3.insertOne({0, 0, 0});
        hc3.insertOne({1, 2, 3});
        full.hc3.insertOne({1, 2, 3});
        for (const Point3& p : uniform(100, 3, 0.0, 3.0)) {
            const std::uint32_t key = full.hc3.hilbertIndex(p);
            EXPECT_EQ(numBits > 27 ? hc3.hilbertIndex(p) >> (numBits - 27) : hc3.hilbertIndex(p),
                      numBits > 27 ? key : key >> (27 - numBits));
        }
    }
}

TEST(Store, refusesOtherKeyLengths) {
    for (const unsigned numBits : {1U, 28U, 32U, 33U, 36U}) {
        const std::string output = outputOf([&] { EXPECT_THROW(HC3 hc3(numBits), VarnException); });
        EXPECT_THAT(output, testing::StartsWith("HC3::HC3(..): invalid bitlength\n")) << numBits;
    }
}

// In one process: the first batch that grows a box gets the narrow margin, nothing else ever does.
TEST(Store, boxesGrowByTheirFactors) {
    Store first;
    first.hc3.insertOne({1, 1, 1});
    EXPECT_EQ(first.box(), enlarged({1, 1, 1}, {1, 1, 1}, 1.0));
    first.hc3.insertOne({2, 3, 5});
    EXPECT_EQ(first.box(), enlarged({1, 1, 1}, {2, 3, 5}, 1.0));

    Store second;
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
}

TEST(Store, newVerticesComeInCurveOrderAndEqualKeysInInputOrder) {
    Store store;
    std::map<Coordinates, Point3*> known;
    for (std::uint64_t round = 0; round < 5; ++round) {
        // The last rounds leave the box; many points share a cell and some are equal.
        const double span = round < 3 ? 1.0 : 50.0 * static_cast<double>(round);
        Points points = uniform(300, round, 0.0, span) + lattice(100, 4, 4, 4, round) +
                        uniform(100, round, 0.5, 0.5001);
        points = shuffled(points, round);
        store.insert(points);
        std::vector<std::pair<std::uint32_t, std::size_t>> order;
        for (std::size_t i = 0; i < points.size(); ++i)
            order.emplace_back(store.plainKey(points[i]), i);
        std::sort(order.begin(), order.end());
        std::vector<Point3*> expected;
        for (const auto& [key, i] : order)
            if (known.emplace(coordinatesOf(points[i]), store.handles[i]).second)
                expected.push_back(store.handles[i]);
        EXPECT_EQ(store.added, expected);
        ASSERT_EQ(store.handles.size(), points.size());
        for (std::size_t i = 0; i < points.size(); ++i) {
            ASSERT_EQ(*store.handles[i], points[i]);
            ASSERT_EQ(store.handles[i], known.at(coordinatesOf(points[i])));
        }

        EXPECT_EQ(store.hc3.getNumVertices(), known.size());
        std::vector<Point3*> listed;
        store.hc3.getVertices(listed);
        EXPECT_EQ(listed.size(), known.size());
        EXPECT_EQ(std::set<Point3*>(listed.begin(), listed.end()).size(), known.size());
        EXPECT_TRUE(std::is_sorted(listed.begin(), listed.end(), [&](Point3* a, Point3* b) {
            return store.plainKey(*a) < store.plainKey(*b);
        }));
    }
}

TEST(Store, aStartTetrahedronIsFoundWhereverItIs) {
    Tet3 tet;
    for (const std::size_t owner : {0U, 57U, 199U}) {
        Store store;
        const Points points = uniform(200, 1);
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

TEST(Store, failedChecks) {
    Store store;
    EXPECT_THAT(outputOf([&] { EXPECT_THROW(store.hc3.hilbertIndex({}), VarnException); }),
                testing::HasSubstr("Condition [ bValid failed ]"));
    store.insert({{1, 1, 1}});
    std::vector<Point3*> added;
    EXPECT_THAT(
        outputOf([&] {
            EXPECT_THROW(store.hc3.insert({{2, 2, 2}}, store.handles, added), VarnException);
        }),
        testing::HasSubstr("Condition [ vUserHandles.empty() failed ]"));
    EXPECT_EQ(store.hc3.getNumVertices(), 1U);
}

}  // namespace
