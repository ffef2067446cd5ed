// The module varn3d._core: the mesh behind the class varn3d.Delaunay, which checks what comes in.

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <array>
#include <chrono>
#include <string>

#include "python/SharedMesh.h"

namespace py = pybind11;

namespace varn3d_python {

namespace {

using Doubles = py::array_t<double, py::array::c_style>;
using Numbers = py::array_t<std::int32_t>;

/// Lets Ctrl-C, and whatever else a signal handler raises, end a computation. Takes the
/// interpreter's lock for it, but every 10 ms at most.
class SignalPoll {
  public:
    void operator()() {
        const auto now = std::chrono::steady_clock::now();
        if (now < next) return;
        next = now + std::chrono::milliseconds(10);
        const py::gil_scoped_acquire lock;
        if (PyErr_CheckSignals() != 0) throw py::error_already_set();
    }

  private:
    std::chrono::steady_clock::time_point next = std::chrono::steady_clock::now();
};

/// Runs a computation while other Python threads run as well.
template <class F>
auto unlocked(F compute) {
    const py::gil_scoped_release release;
    return compute();
}

std::size_t rows(const py::array& array) {
    return static_cast<std::size_t>(array.shape(0));
}

py::array::ShapeContainer shapeOf(const std::vector<std::int32_t>& column) {
    return {column.size()};
}

template <std::size_t numColumns>
py::array::ShapeContainer shapeOf(const std::vector<std::array<std::int32_t, numColumns>>& table) {
    return {table.size(), numColumns};
}

/// An array that shows a table without copying it, and keeps its owner alive. Not writable: others
/// may be looking at the same table.
template <class Table, class Owner>
Numbers arrayOf(const Table& table, const std::shared_ptr<const Owner>& owner) {
    using Keeper = std::shared_ptr<const Owner>;
    const py::capsule keeper(new Keeper(owner), [](void* p) { delete static_cast<Keeper*>(p); });
    const void* const first = table.data();
    Numbers array(shapeOf(table), static_cast<const std::int32_t*>(first), keeper);
    array.attr("setflags")(py::arg("write") = false);
    return array;
}

void insert(SharedMesh& mesh, const Doubles& points) {
    const double* const xyz = points.data();
    unlocked([&, n = rows(points)] { mesh.insert(xyz, n, SignalPoll()); });
}

/// What returns one part of the plain mesh.
template <class Table>
auto part(Table VARN3D::IndexedMesh::*table) {
    return [table](SharedMesh& mesh) {
        const auto indexed = unlocked([&] { return mesh.getIndexedMesh(); });
        return arrayOf((*indexed).*table, indexed);
    };
}

py::tuple getVertexGraph(SharedMesh& mesh) {
    const auto graph = unlocked([&] { return mesh.getVertexGraph(SignalPoll()); });
    return py::make_tuple(arrayOf(graph->getStarts(), graph),
                          arrayOf(graph->getNeighbours(), graph));
}

/// What answers each query by a number.
auto numbersBy(void (SharedMesh::*find)(const double*, std::size_t, std::int32_t*,
                                        const SharedMesh::Poll&)) {
    return [find](SharedMesh& mesh, const Doubles& queries) {
        Numbers found(queries.shape(0));
        std::int32_t* const numbers = found.mutable_data();
        const double* const xyz = queries.data();
        unlocked([&, n = rows(queries)] { (mesh.*find)(xyz, n, numbers, SignalPoll()); });
        return found;
    };
}

Doubles interpolate(SharedMesh& mesh, const Doubles& values, const Doubles& queries) {
    Doubles results({queries.shape(0), values.shape(1)});
    double* const result = results.mutable_data();
    unlocked([&, numColumns = static_cast<std::size_t>(values.shape(1))] {
        mesh.interpolate(values.data(), rows(values), numColumns, queries.data(), rows(queries),
                         result, SignalPoll());
    });
    return results;
}

Doubles getVoronoiVolumes(SharedMesh& mesh) {
    const auto volumes = unlocked([&] { return mesh.getVoronoiVolumes(SignalPoll()); });
    return Doubles(static_cast<py::ssize_t>(volumes.size()), volumes.data());
}

void translate(std::exception_ptr failure) {
    try {
        std::rethrow_exception(failure);
    } catch (const VARN3D::VarnException& exception) {
        PyErr_SetString(PyExc_RuntimeError, exception.getReason());
    }
}

/// The first batch of a process is stored with a narrower margin, which can decide between equally
/// good meshes of cospherical points. A mesh that one process has pickled is to be the same in
/// another.
void takeFirstMargin() {
    VARN3D::Varn_3D().insert({{0, 0, 0}});
}

std::string version() {
    return std::to_string(VARN3D::getMajorVersionNumber()) + "." +
           std::to_string(VARN3D::getMinorVersionNumber()) + "." +
           std::to_string(VARN3D::getRevisionNumber());
}

}  // namespace

PYBIND11_MODULE(_core, module) {
    using VARN3D::IndexedMesh;
    VARN3D::Varn_3D::setMessageStream(nullptr);
    takeFirstMargin();
    py::register_exception_translator(translate);
    module.attr("__version__") = version();
    const py::call_guard<py::gil_scoped_release> othersRun;
    py::class_<SharedMesh>(module, "Mesh")
        .def(py::init<>())
        .def("insert", insert)
        .def("dimension", &SharedMesh::getDimension, othersRun)
        .def("num_points", &SharedMesh::getNumPoints, othersRun)
        .def("simplices", part(&IndexedMesh::tetrahedra))
        .def("neighbors", part(&IndexedMesh::neighbours))
        .def("convex_hull", part(&IndexedMesh::hull))
        .def("duplicates", part(&IndexedMesh::duplicates))
        .def("vertex_neighbor_vertices", getVertexGraph)
        .def("find_simplex", numbersBy(&SharedMesh::findTetrahedra))
        .def("nearest_vertex", numbersBy(&SharedMesh::findNearest))
        .def("interpolate", interpolate)
        .def("voronoi_volumes", getVoronoiVolumes)
        .def("check", &SharedMesh::check, othersRun);
}

}  // namespace varn3d_python
