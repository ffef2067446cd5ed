#include <gtest/gtest.h>

#include <ostream>

#include "dt3Library/Tet3.h"
#include "dt3Library/Varn_3D.h"
#include "tests/support/CaptureOutput.h"
#include "tests/support/MeshDigest.h"
#include "tests/support/PointSets.h"
#include "tests/support/Scenarios.h"

// The numbers below were confirmed by a second engine, as simple as can be, that inserted the same
// points one by one in the same order: a change that alters one of them alters what hosts see.

namespace {

using namespace VARN3D;
using namespace support;

/// Of all that can be seen after each step.
std::uint64_t digestOf(const std::vector<Scenario>& scenarios) {
    Fnv hash;
    outputOf([&] {
        takeFirstMargin();
        for (const Scenario& scenario : scenarios) {
            const std::int32_t firstLabel = Tet3::runningLabel;
            Varn_3D mesh;
            Handles handles;
            for (Step step : scenario) {
                Handles found;
                if (step.bBatch) mesh.insert(step.points, found);
                if (!step.bBatch)
                    for (Point3& p : step.points) found.push_back(mesh.insert(p));
                handles.insert(handles.end(), found.begin(), found.end());
                hash.add(meshDigest(mesh, handles));
                hash.add(labelDigest(mesh, handles, firstLabel));
            }
        }
    });
    return hash.value();
}

struct NamedSet {
    const char* name;
    Points points;
    std::uint64_t batch, singles;
    friend void PrintTo(const NamedSet& set, std::ostream* out) { *out << set.name; }
};
const NamedSet SETS[] = {
    {"gaussian", gaussian(1500, 1), 0xba04ced147baa69eU, 0xf3f55c9dfaea9cc9U},
    {"lattice", lattice(400, 6, 6, 6, 2), 0x1a0d6f058bbf5af4U, 0xc2dbcb1994a5c71eU},
    {"flatLattice", lattice(300, 30, 30, 2, 3), 0x2f6c9efbac1da7f9U, 0xcdf66975cf12ebdcU},
    {"sortedGrid", grid(7, 7, 7), 0xd03d7866359b96a2U, 0x7fcf044bb47ccf6aU},
    {"shuffledGrid", shuffled(grid(8, 8, 8, 0.1), 4), 0x2311d9d071e86ef8U, 0xb0de7f3878ad30e6U},
    {"sphere", sphere(800, 5), 0x060c09042ce43b35U, 0x5e662e282e045ea9U},
    {"integerSphere", shuffled(integerSphere(81), 6) + integerSphere(9), 0x3862359110eb5bd7U,
     0x7648d8c28ba0c9b7U},
    {"helix", helix(700), 0x64e17466ea655bebU, 0x9636477c1bfd592eU},
    {"skewSegments", skewSegments(40), 0x0d3aad36c7f3134bU, 0x86731d4cd246cd4dU},
    {"planeThenApex", planar(40, 5, 7) + Points{Point3(2, 2, 50)}, 0x6ff0c2e9ec86f31fU,
     0x1c16ee88dc3c01eaU},
    {"apexFirst", Points{Point3(2, 2, 50)} + planar(300, 20, 8), 0x037ac02a39897f90U,
     0x338823a1acfa6aabU},
    {"oneOutlier", uniform(300, 9) + Points{Point3(-3, 20, 1e-9)}, 0x8e174fd25f351783U,
     0x40ad892fb739c5caU},
    {"lastBits", uniform(200, 10, 1.0, 1.0 + 0x1p-48), 0xaee6f7016b3cc930U, 0x971bec68a6099ab8U},
};
class Digest : public testing::TestWithParam<NamedSet> {};
TEST_P(Digest, Batch) {
    EXPECT_EQ(digestOf({{{true, GetParam().points}}}), GetParam().batch);
}
TEST_P(Digest, Singles) {
    EXPECT_EQ(digestOf({{{false, GetParam().points}}}), GetParam().singles);
}
INSTANTIATE_TEST_SUITE_P(Sets, Digest, testing::ValuesIn(SETS), testing::PrintToStringParamName());

/// Around powers of two another level of the insertion order begins.
std::vector<Scenario> sizes() {
    std::vector<Scenario> scenarios;
    const std::size_t counts[] = {1, 3, 4, 5, 15, 16, 17, 31, 32, 33, 64, 65, 257, 1000, 5000};
    for (const std::size_t n : counts) scenarios.push_back({{true, uniform(n, 100 + n)}});
    return scenarios;
}

/// Where the order of insertion leads to long walks, they start elsewhere.
std::vector<Scenario> longWalks() {
    std::vector<Scenario> scenarios;
    for (const Point3& size : {Point3(1, 1000, 1), Point3(1e-3, 1, 1)}) {
        Points box = uniform(1500, 25);
        for (Point3& p : box) p.exchange(p.x() * size.x(), p.y() * size.y(), p.z() * size.z());
        scenarios.push_back({{true, box}});
    }
    return scenarios;
}

/// The first point near the centre of a sphere is in conflict with all tetrahedra.
std::vector<Scenario> largeCavities() {
    const Points points = shuffled(integerSphere(861), 4);
    return {{{true, points}, {true, lattice(400, 9, 9, 9, 8)}},
            {{true, points}, {false, Points{Point3(0, 0, 0)}}}};
}

std::vector<Scenario> insideABox() {
    const Points box = {{-10, -10.1, -10.3}, {-10, -10.1, 10.3}, {-10, 10.1, -10.3},
                        {-10, 10.1, 10.3},   {10, -10.1, -10.3}, {10, -10.1, 10.3},
                        {10, 10.1, -10.3},   {10, 10.1, 10.3}};
    return {{{true, box + uniform(200, 21)},
             {true, gaussian(500, 22)},
             {false, uniform(300, 23, -4.0, 5.0)},
             {true, uniform(700, 24, -5.0, 5.0)}}};
}

std::vector<Scenario> growingBoxes() {
    Scenario scenario;
    for (int i = 0; i < 6; ++i)
        for (const bool bBatch : {true, false})
            scenario.push_back({bBatch, uniform(bBatch ? 60 : 20, 30 + scenario.size(),
                                                -(1 << 2 * i), 1 << 3 * i)});
    return {scenario};
}

template <Scenario make(Random&)>
std::vector<Scenario> fifty() {
    std::vector<Scenario> scenarios;
    for (std::uint64_t seed = 0; seed < 50; ++seed) {
        Random random(seed);
        scenarios.push_back(make(random));
    }
    return scenarios;
}

struct NamedSuccession {
    const char* name;
    std::vector<Scenario> (*make)();
    std::uint64_t digest;
    friend void PrintTo(const NamedSuccession& row, std::ostream* out) { *out << row.name; }
};
const NamedSuccession SUCCESSIONS[] = {
    {"sizes", sizes, 0x37a145cfd78b5d22U},
    {"longWalks", longWalks, 0x00011728c0f67d54U},
    {"largeCavities", largeCavities, 0x12caca259d9a8d53U},
    {"insideABox", insideABox, 0xc230f25c88a45cbfU},
    {"growingBoxes", growingBoxes, 0x315c93b8397812c1U},
    {"lattices", fifty<lattices>, 0xdc66c93e563a65e0U},
    {"onTheHull", fifty<onTheHull>, 0xc759956b4a9eac15U},
    {"extremes", fifty<extremes>, 0x702fed25cde9d58cU},
    {"mixed", fifty<mixed>, 0x86c39029b638349bU},
    {"waiting", fifty<waiting>, 0xbf3d740308f3272dU},
    // What shares a cell of the curve is taken in an order of the library's own.
    {"crowded", fifty<crowded>, 0x145b8e9c9f8fec98U},
};
class SuccessionDigest : public testing::TestWithParam<NamedSuccession> {};
TEST_P(SuccessionDigest, IsRecorded) {
    EXPECT_EQ(digestOf(GetParam().make()), GetParam().digest);
}
INSTANTIATE_TEST_SUITE_P(Successions, SuccessionDigest, testing::ValuesIn(SUCCESSIONS),
                         testing::PrintToStringParamName());

}  // namespace
