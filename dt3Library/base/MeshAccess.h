#pragma once

#include <cstddef>
#include <new>
#include <type_traits>

#include "dt3Library/Point3.h"
#include "dt3Library/Tet3.h"

namespace VARN3D {

/// The engine's unchecked way to the fields of its own records. Hosts use the checked accessors of
/// `Point3` and `Tet3`; here an index outside 0..3 is the engine's fault and undefined.
struct MeshAccess {
    static bool& visited(Tet3* t) { return t->hasBeenVisited; }
    static bool visited(const Tet3* t) { return t->hasBeenVisited; }
    static std::int32_t& label(Tet3* t) { return t->label; }
    static std::int32_t label(const Tet3* t) { return t->label; }
    static Point3*& corner(Tet3* t, int i) { return t->aVertexPointer[i]; }
    static Point3* corner(const Tet3* t, int i) { return t->aVertexPointer[i]; }
    static Tet3*& neighbour(Tet3* t, int i) { return t->aOppTets[i]; }
    static Tet3* neighbour(const Tet3* t, int i) { return t->aOppTets[i]; }
    /// The index of a neighbour, which must be one; else any index. No branch: the index is
    /// unpredictable.
    static int indexOfNeighbour(const Tet3* t, const Tet3* other) {
        return (t->aOppTets[1] == other ? 1 : 0) | (t->aOppTets[2] == other ? 2 : 0) |
               (t->aOppTets[3] == other ? 3 : 0);
    }
    /// Makes a record in raw memory a vertex with a number.
    static Point3* newVertex(void* memory, const Point3& point, std::int32_t number) {
        auto* const vertex = new (memory) Point3(point.xx, point.yy, point.zz);
        vertex->index = number;
        vertex->number = number;
        return vertex;
    }
    static std::int32_t number(const Point3* vertex) { return vertex->number; }
    /// x, y and z side by side.
    static const double* coordinates(const Point3& point) {
        static_assert(
            std::is_standard_layout_v<Point3> && offsetof(Point3, zz) == 2 * sizeof(double),
            "the coordinates come first");
        return &point.xx;
    }
    static std::int32_t& customIndex(Tet3* t) { return t->customIndex; }
    /// The first of n labels that belong to the caller from now on. The counter wraps around.
    static std::uint32_t reserveLabels(std::size_t n) {
        return static_cast<std::uint32_t>(
            Tet3::runningLabel.fetch_add(static_cast<std::int32_t>(n), std::memory_order_relaxed));
    }
    /// A record in raw memory, without label, corners and neighbours.
    static Tet3* newRecord(void* memory) { return new (memory) Tet3(Tet3::Blank{}); }
    /// What `Tet3::setProperties` does, under a label reserved before.
    static void fill(Tet3* t, std::uint32_t label, Point3* p0, Point3* p1, Point3* p2, Point3* p3) {
        t->hasBeenVisited = false;
        t->label = static_cast<std::int32_t>(label);
        t->customIndex = -1;
        Point3* const corners[4] = {p0, p1, p2, p3};
        for (int i = 0; i < 4; ++i) {
            t->aVertexPointer[i] = corners[i];
            t->aOppTets[i] = nullptr;
            corners[i]->setOneTet(t);
        }
    }
};

}  // namespace VARN3D
