#include <iostream>
#include <sstream>

#include "driver.h"
#include "dt3Library/PointLocator.h"
#include "dt3Library/Varn_3D.h"
#ifdef VARN3D_PROFILE
#include "dt3Library/base/Profile.h"
#include "dt3Library/predicates/predicateStages.h"
#endif

namespace bench {

namespace {

VARN3D::Point3 pointAt(const Position& position) {
    return {position[0], position[1], position[2]};
}

/// The input in the form that the library takes: a vector for each batch.
std::vector<std::vector<VARN3D::Point3>> batchesOf(const Job& job) {
    std::vector<std::vector<VARN3D::Point3>> batches;
    const auto add = [&](std::size_t first, std::size_t last) {
        batches.emplace_back().reserve(last - first);
        for (std::size_t i = first; i < last; ++i) batches.back().push_back(pointAt(job.points[i]));
    };
    for (std::size_t i = 0; i < job.batches; ++i) {
        const auto [first, last] = job.batch(i, job.points.size());
        add(first, last);
    }
    if (job.batches == 0) {
        add(0, job.head);
        add(job.head, job.points.size());
    }
    return batches;
}

void insertAll(VARN3D::Varn_3D& mesh, std::vector<std::vector<VARN3D::Point3>>& batches,
               bool lastOneByOne) {
    for (std::vector<VARN3D::Point3>& points : batches) {
        if (lastOneByOne && &points == &batches.back()) {
            for (VARN3D::Point3& point : points) mesh.insert(point);
        } else if (!points.empty()) {
            std::vector<VARN3D::Point3*> handles;
            mesh.insert(points, handles);
        }
    }
}

void examine(VARN3D::Varn_3D& mesh, bool fullCheck, Report& report) {
    std::vector<VARN3D::Tet3*> tetrahedra;
    std::vector<VARN3D::Point3*> vertices;
    report.listTetrahedra = secondsOf([&] { mesh.getTetrahedra(tetrahedra); });
    report.listVertices = secondsOf([&] { mesh.getVertices(vertices); });
    for (const VARN3D::Tet3* tetrahedron : tetrahedra) {
        double corners[4][3];
        for (int i = 0; i < 4; ++i)
            tetrahedron->getCorner(i)->xyz(corners[i][0], corners[i][1], corners[i][2]);
        report.addTetrahedron(corners[0], corners[1], corners[2], corners[3]);
    }
    for (const VARN3D::Point3* vertex : vertices) report.vertices += vertex->getOneTet() != nullptr;
    if (!mesh.is3D()) report.vertices = vertices.size();
    if (report.vertices != vertices.size())
        report.reject("vertices without a tetrahedron");
    else if (fullCheck && mesh.is3D() && !mesh.checkValidity("bench", true))
        report.reject("checkValidity found a fault");
}

/// Each pass has a locator of its own, so that its time holds all that a locator prepares.
void answerQueries(VARN3D::Varn_3D& mesh, const std::vector<Position>& queries, Report& report) {
    if (queries.empty()) return;
    report.locate = passOver(
        queries, [&](const Position& query) { return mesh.locate(pointAt(query)) != nullptr; });
    VARN3D::PointLocator places(mesh);
    const VARN3D::Location outside;  // by default, whatever a revision calls the enumerator
    report.locateOn = passOver(queries, [&](const Position& query) {
        return places.locate(pointAt(query)).kind != outside.kind;
    });
    VARN3D::PointLocator neighbours(mesh);
    report.nearestOn = passOver(queries, [&](const Position& query) {
        Position nearest;
        neighbours.nearestVertex(pointAt(query))->xyz(nearest[0], nearest[1], nearest[2]);
        return squaredDistance(query, nearest);
    });
    VARN3D::IndexedMesh indexed;
    report.indexedMesh = secondsOf([&] { indexed = mesh.getIndexedMesh(); });
    if (indexed.tetrahedra.size() != report.tetrahedra)
        report.reject("getIndexedMesh has other tetrahedra");
}

#ifdef VARN3D_PROFILE
std::string listOf(const std::uint64_t (&counts)[VARN3D::NUM_PREDICATE_STAGES]) {
    std::string list;
    for (const std::uint64_t count : counts)
        list += (list.empty() ? "" : ", ") + std::to_string(count);
    return "[" + list + "]";
}

void writeProfile(Report& report) {
    const VARN3D::Profile& work = VARN3D::profile();
    std::ostringstream json;
    auto add = [&, separator = ""](const char* name, auto value) mutable {
        json << separator << '"' << name << "\": " << value;
        separator = ", ";
    };
    add("insertions", work.insertions);
    add("hullInsertions", work.hullInsertions);
    add("facetTests", work.facetTests);
    add("longestWalk", work.longestWalk);
    add("sphereTests", work.sphereTests);
    add("sphereTestsBeyondBound", work.sphereTestsBeyondBound);
    add("tetsPassed", work.tetsPassed);
    add("openLooks", work.openLooks);
    add("doomed", work.doomed);
    add("created", work.created);
    add("secondsStore", work.secondsStore);
    add("secondsKernel", work.secondsKernel);
    add("secondsWalk", work.secondsWalk);
    add("secondsConflict", work.secondsConflict);
    add("secondsCreation", work.secondsCreation);
    add("secondsHull", work.secondsHull);
    add("orientationStages", listOf(VARN3D::predicateCounters().orientation));
    add("sphereStages", listOf(VARN3D::predicateCounters().sphere));
    report.profile = json.str();
}
#else
void writeProfile(Report&) {}
#endif

}  // namespace

const char* const ENGINE_NAME = BENCH_ENGINE_NAME;

void triangulate(Job& job, Report& report) {
    std::vector<std::vector<VARN3D::Point3>> batches = batchesOf(job);
    job.points.release();
    std::ostringstream messages;
    VARN3D::Varn_3D::setMessageStream(&messages);
    try {
        const Measurement measurement;
        VARN3D::Varn_3D mesh;
        insertAll(mesh, batches, job.batches == 0);
        measurement.stop(report);
        writeProfile(report);
        examine(mesh, job.fullCheck, report);
        answerQueries(mesh, job.queries, report);
    } catch (const VARN3D::VarnException&) {
        report.reject("VarnException");
    }
    VARN3D::Varn_3D::setMessageStream(&std::cout);
    if (!report.valid) std::cerr << messages.str();
}

}  // namespace bench
