#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <set>
#include <stdexcept>
#include <vector>

#include "dt3Library/Dt3.h"
#include "dt3Library/Varn_3D.h"
#include "tests/support/CaptureOutput.h"
#include "tests/support/MeshDigest.h"
#include "tests/support/PointSets.h"

namespace {

using namespace VARN3D;
using namespace support;

struct Interrupted : std::exception {};

struct Step {
    Points points;
    bool bSingle;
};
const std::vector<Step> STEPS = {
    {uniform(400, 1), false},              // the first batch
    {uniform(700, 2, -1.0, 2.0), false},   // takes the mesh over
    {uniform(100, 3), false},              // small
    {momentCurve(2), true},                // joins at once
    {uniform(1500, 4, -1.0, 1.0), false},  // takes the mesh over
};

void insert(Dt3& engine, const Step& step, Handles& handles) {
    if (!step.bSingle) return engine.insert(step.points, handles);
    for (const Point3& p : step.points) handles.push_back(engine.insert(p));
}

/// Inserts all, and from each batch's call `last` on it is to stop, or is interrupted. Returns
/// whether a call came to that.
bool insertAll(Dt3& engine, std::size_t last, bool bThrow, std::vector<std::size_t>& numWaiting) {
    std::size_t calls = 0;
    std::size_t before = 0;
    bool bEnded = false;
    const auto tell = [&](std::size_t done, std::size_t total) {
        EXPECT_LE(before, done);
        EXPECT_LE(done, total);
        before = done;
        EXPECT_LE(calls, last) << "called after the end";
        if (calls++ < last) return true;
        bEnded = bThrow || done < total;
        if (bThrow) throw Interrupted();
        return false;
    };
    for (const Step& step : STEPS) {
        calls = before = 0;
        engine.getProgress().setFunction(tell, BatchProgress::Duration(0));
        Handles handles;
        const std::size_t inStore = engine.getNumVertices();
        try {
            insert(engine, step, handles);
        } catch (const Interrupted&) {
            // Without handles, it is as if the batch had never been.
            EXPECT_EQ(engine.getNumVertices(),
                      inStore + (handles.empty() ? 0 : step.points.size()));
            engine.getProgress().setFunction({});
            if (handles.empty()) insert(engine, step, handles);
        }
        EXPECT_EQ(std::count(handles.begin(), handles.end(), nullptr), 0);
        EXPECT_EQ(handles.size(), step.points.size());
        EXPECT_TRUE(engine.checkValidity("stopped", true));
        numWaiting.push_back(engine.getNumWaiting());
    }
    return bEnded;
}

TEST(Progress, WhateverIsStoppedGoesOn) {
    Dt3 sound;
    std::vector<std::size_t> numWaiting;
    outputOf([&] {
        for (const Step& step : STEPS) {
            Handles handles;
            insert(sound, step, handles);
        }
    });
    const SortedMesh expected = sortedMesh(tetsOf(sound));
    bool bEnded = true;
    for (std::size_t last = 0; bEnded; last += last / 4 + 1) {
        bEnded = false;
        for (const bool bThrow : {false, true}) {
            Dt3 engine;
            numWaiting.clear();
            outputOf([&] { bEnded = insertAll(engine, last, bThrow, numWaiting) || bEnded; });
            EXPECT_EQ(numWaiting.back() > 0, bEnded && !bThrow) << last;
            // And again it is stopped, once in the middle.
            bool bStop = true;
            engine.getProgress().setFunction(
                [&](std::size_t done, std::size_t total) { return !(bStop && done > total / 2); },
                BatchProgress::Duration(0));
            outputOf([&] {
                EXPECT_EQ(engine.getNumWaiting(), numWaiting.back());
                const std::size_t joined = engine.insertWaiting();
                EXPECT_EQ(engine.getNumWaiting(), numWaiting.back() - joined);
                EXPECT_TRUE(engine.checkValidity("half", true));
                bStop = false;
                EXPECT_EQ(engine.insertWaiting(), numWaiting.back() - joined);
                EXPECT_EQ(engine.insertWaiting(), 0U);
                EXPECT_TRUE(engine.checkValidity("whole", true));
            });
            EXPECT_TRUE(sortedMesh(tetsOf(engine)) == expected) << last << bThrow;
        }
    }
}

TEST(Progress, AnInterruptionWhileRecordsAreWrittenTakesTheBatchBack) {
    Dt3 engine;
    Handles waiting;
    outputOf([&] { engine.insert(planar(50, 100, 1), waiting); });
    for (const Points& points : {uniform(3000, 1), uniform(5000, 2)}) {
        const bool bWas3D = engine.is3D();
        const std::size_t numBefore = engine.getNumVertices();
        const SortedMesh before = bWas3D ? sortedMesh(tetsOf(engine)) : SortedMesh();
        engine.getProgress().setFunction(
            [](std::size_t done, std::size_t total) {
                if (done == total) throw Interrupted();
                return true;
            },
            BatchProgress::Duration(0));
        outputOf([&] {
            Handles handles;
            EXPECT_THROW(engine.insert(points, handles), Interrupted);
        });
        EXPECT_EQ(engine.getNumVertices(), numBefore);
        EXPECT_EQ(engine.is3D(), bWas3D);
        std::set<Tet3*> ofVertices;
        std::vector<Point3*> vertices;
        engine.getVertices(vertices);
        for (const Point3* vertex : vertices) ofVertices.insert(vertex->getOneTet());
        if (bWas3D) {
            EXPECT_TRUE(sortedMesh(tetsOf(engine)) == before);
            std::vector<Tet3*> tets;
            engine.getAllTetrahedra(tets);
            std::sort(tets.begin(), tets.end());
            EXPECT_TRUE(
                std::includes(tets.begin(), tets.end(), ofVertices.begin(), ofVertices.end()));
        } else {
            EXPECT_EQ(ofVertices, std::set<Tet3*>{nullptr});
        }
        engine.getProgress().setFunction({});
        outputOf([&] {
            Handles handles;
            engine.insert(points, handles);
            EXPECT_TRUE(engine.checkValidity("again", true));
        });
        EXPECT_EQ(engine.getNumVertices(), numBefore + points.size());
        EXPECT_EQ(engine.getNumWaiting(), 0U);
    }
}

TEST(Progress, IsToldToHostsAndVerticesWaitForTheThirdDimension) {
    Varn_3D mesh;
    Handles handles;
    outputOf([&] {
        mesh.insert(planar(50, 100, 1), handles);
        EXPECT_EQ(mesh.insertWaiting(), 0U);
        mesh.insert(Point3(0, 0, 1));
    });
    const std::size_t numWaiting = mesh.getNumVertices() - 4;
    EXPECT_EQ(mesh.getNumWaiting(), numWaiting);
    EXPECT_EQ(outputOf([&] { EXPECT_EQ(mesh.insertWaiting(), numWaiting); }), "");
    EXPECT_EQ(mesh.getNumWaiting(), 0U);

    using Clock = std::chrono::steady_clock;
    std::vector<Clock::time_point> times = {Clock::now()};
    mesh.setProgress([&](std::size_t done, std::size_t total) {
        times.push_back(Clock::now());
        return done < total / 8;
    });
    const Points points = uniform(60000, 1);
    outputOf([&] { mesh.insert(points); });
    EXPECT_GT(times.size(), 1U);
    EXPECT_GT(mesh.getNumWaiting(), 0U);
    for (std::size_t i = 1; i < times.size(); ++i)
        EXPECT_GE(times[i] - times[i - 1], std::chrono::milliseconds(10));
    mesh.setProgress({});
    outputOf([&] {
        mesh.insertWaiting();
        EXPECT_TRUE(mesh.checkValidity("all", true));
    });
    EXPECT_EQ(mesh.getNumWaiting(), 0U);
}

}  // namespace
