#include <CGAL/Delaunay_triangulation_3.h>
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>

#include "driver.h"

namespace bench {

namespace {

using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
using Point = Kernel::Point_3;
/// For batches, whose spatial sorting finds every place nearby.
using BatchMesh = CGAL::Delaunay_triangulation_3<Kernel>;
/// For points that come one by one and for queries: CGAL's own recommendation.
using LocatingMesh = CGAL::Delaunay_triangulation_3<Kernel, CGAL::Fast_location>;

Point pointAt(const Position& position) {
    return {position[0], position[1], position[2]};
}

template <typename Mesh>
void insertAll(Mesh& mesh, const std::vector<Point>& input, const Job& job) {
    if (job.batches == 0) {
        mesh.insert(input.data(), input.data() + job.head);
        for (std::size_t i = job.head; i < input.size(); ++i) mesh.insert(input[i]);
    }
    for (std::size_t i = 0; i < job.batches; ++i) {
        const auto [first, last] = job.batch(i, input.size());
        mesh.insert(input.data() + first, input.data() + last);
    }
}

template <typename Mesh>
void examine(const Mesh& mesh, bool fullCheck, Report& report) {
    std::vector<typename Mesh::Cell_handle> cells;
    std::vector<typename Mesh::Vertex_handle> vertices;
    report.listTetrahedra = secondsOf([&] {
        for (auto cell : mesh.finite_cell_handles()) cells.push_back(cell);
    });
    report.listVertices = secondsOf([&] {
        for (auto vertex : mesh.finite_vertex_handles()) vertices.push_back(vertex);
    });
    report.vertices = vertices.size();
    for (const auto cell : cells) {
        const auto corner = [&](int i) { return &*cell->vertex(i)->point().cartesian_begin(); };
        report.addTetrahedron(corner(0), corner(1), corner(2), corner(3));
    }
    if (fullCheck && !mesh.is_valid()) report.reject("is_valid found a fault");
}

/// With a hint CGAL walks from there; without one it descends its hierarchy of meshes.
template <typename Mesh>
void answerQueries(const Mesh& mesh, const std::vector<Position>& queries, Report& report) {
    const auto distanceTo = [](typename Mesh::Vertex_handle vertex, const Position& query) {
        const Point& p = vertex->point();
        return squaredDistance(query, {p.x(), p.y(), p.z()});
    };
    report.locate = passOver(queries, [&](const Position& query) {
        return !mesh.is_infinite(mesh.locate(pointAt(query)));
    });
    typename Mesh::Cell_handle last;
    report.locateOn = passOver(queries, [&](const Position& query) {
        last = mesh.locate(pointAt(query), last);
        return !mesh.is_infinite(last);
    });
    report.nearest = passOver(queries, [&](const Position& query) {
        return distanceTo(mesh.nearest_vertex(pointAt(query)), query);
    });
    last = {};
    report.nearestOn = passOver(queries, [&](const Position& query) {
        const auto nearest = mesh.nearest_vertex(pointAt(query), last);
        last = nearest->cell();
        return distanceTo(nearest, query);
    });
}

template <typename Mesh>
void run(Job& job, Report& report) {
    std::vector<Point> input;
    input.reserve(job.points.size());
    for (const Position& position : job.points) input.push_back(pointAt(position));
    job.points.release();

    const Measurement measurement;
    Mesh mesh;
    insertAll(mesh, input, job);
    measurement.stop(report);
    examine(mesh, job.fullCheck, report);
    if (!job.queries.empty()) answerQueries(mesh, job.queries, report);
}

}  // namespace

const char* const ENGINE_NAME = BENCH_ENGINE_NAME;

void triangulate(Job& job, Report& report) {
    if (job.batches == 0 || !job.queries.empty())
        run<LocatingMesh>(job, report);
    else
        run<BatchMesh>(job, report);
}

}  // namespace bench
