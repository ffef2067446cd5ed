#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <set>
#include <streambuf>
#include <thread>
#include <vector>

#include "dt3Library/Varn_3D.h"
#include "dt3Library/base/MeshAccess.h"
#include "tests/support/MeshDigest.h"
#include "tests/support/PointSets.h"

// One engine a thread: they share nothing but what is made for it. Or one mesh at rest for all. Run
// under the thread sanitizer as well.

namespace {

using VARN3D::Point3;
using VARN3D::Tet3;
using VARN3D::Varn_3D;

struct Work {
    std::size_t numTets = 0;
    std::vector<std::int32_t> labels;

    void run(std::uint64_t seed) {
        Varn_3D triangulation;
        std::vector<Point3> batch = support::uniform(2000, seed);
        triangulation.insert(batch);
        for (Point3& p : support::uniform(200, seed + 100)) triangulation.insert(p);
        std::vector<Tet3*> tets = support::tetsOf(triangulation);
        for (const Tet3* tet : tets) labels.push_back(VARN3D::MeshAccess::label(tet));
        numTets = tets.size();
        EXPECT_TRUE(triangulation.checkValidity("thread", true));
        EXPECT_NE(triangulation.locate(Point3(0.5, 0.5, 0.5)), nullptr);
        std::string name = "engine";
        benchCounter(name);
        VARN3D::timer("thread " + std::to_string(seed));
    }
};

TEST(Threads, EightEnginesDoNotDisturbEachOther) {
    constexpr std::size_t NUM_THREADS = 8;
    Varn_3D::setMessageStream(nullptr);  // one that keeps them all would be a race
    std::vector<Work> together(NUM_THREADS);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < NUM_THREADS; ++i)
        threads.emplace_back([&together, i] { together[i].run(i / 2); });
    for (std::thread& thread : threads) thread.join();

    std::set<std::int32_t> labels;
    std::size_t total = 0;
    for (std::size_t i = 0; i < NUM_THREADS; ++i) {
        Work alone;
        alone.run(i / 2);
        EXPECT_EQ(together[i].numTets, alone.numTets);
        labels.insert(together[i].labels.begin(), together[i].labels.end());
        total += together[i].numTets;
    }
    Varn_3D::setMessageStream(&std::cout);
    EXPECT_EQ(labels.size(), total) << "labels are unique in the process";
}

/// What a locator says of points inside the hull and outside.
std::vector<const void*> answersOf(const Varn_3D& mesh) {
    VARN3D::PointLocator locator(mesh);
    std::vector<const void*> answers;
    std::vector<Tet3*> region;
    for (const Point3& p : support::uniform(500, 3, -0.5, 1.5)) {
        answers.push_back(locator.nearestVertex(p));
        const VARN3D::Location location = locator.locate(p);
        if (location.kind == VARN3D::LocationKind::INSIDE) answers.push_back(location.tet);
        locator.conflictRegion(p, region);
    }
    std::sort(region.begin(), region.end());
    answers.insert(answers.end(), region.begin(), region.end());
    return answers;
}

TEST(Threads, LocatorsOfOneMeshDoNotDisturbEachOther) {
    Varn_3D mesh;
    mesh.insert(support::uniform(2000, 1));
    const std::vector<const void*> expected = answersOf(mesh);
    std::vector<std::vector<const void*>> together(2);
    std::vector<std::thread> threads;
    for (std::vector<const void*>& answers : together)
        threads.emplace_back([&answers, &mesh] { answers = answersOf(mesh); });
    for (std::thread& thread : threads) thread.join();
    for (const std::vector<const void*>& answers : together) EXPECT_EQ(answers, expected);
}

}  // namespace
