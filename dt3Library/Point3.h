#pragma once

#include <cstdint>
#include <iosfwd>

#include "dt3Library/Export.h"
#include "dt3Library/Vector3.h"

namespace VARN3D {

class Tet3;

/// A point in space, and at the same time the vertex of the mesh.
///
/// The host hands points in by value; the library stores each inserted vertex as a `Point3` of its
/// own and hands out pointers to it, which stay valid until the `Varn_3D` is destroyed. A vertex
/// knows one tetrahedron that has it as a corner. Coordinates are finite doubles in any unit.
///
/// Thread rule: a plain value; reading one from several threads is safe while nobody writes it.
class VARN3D_EXPORT Point3 {
  public:
    /// An unset point: all coordinates at the most negative finite double, below every real point.
    Point3();
    /// The point (x, y, z), without tetrahedron and with index -1.
    Point3(double x, double y, double z) : xx(x), yy(y), zz(z) {}

    /// Copies coordinates and index; a copy is never a mesh vertex, so its tetrahedron is null.
    Point3(const Point3& other) : xx(other.xx), yy(other.yy), zz(other.zz), index(other.index) {}
    /// Copies coordinates, index and the link to the tetrahedron.
    Point3& operator=(const Point3& other);
    ~Point3() = default;

    /// Takes over other's coordinates and forgets the tetrahedron; the index stays.
    void init(const Point3& other);
    /// Overwrites the coordinates only.
    void exchange(double x, double y, double z);

    /// @{
    /// A coordinate.
    double x() const { return xx; }
    double y() const { return yy; }
    double z() const { return zz; }
    /// @}
    /// Writes the three coordinates out.
    void xyz(double& x, double& y, double& z) const;

    /// One tetrahedron incident to this vertex; null while the point is no vertex of the mesh.
    Tet3* getOneTet() const { return pOneTet; }
    /// For the engine: sets that tetrahedron. A host that does so breaks its mesh.
    void setOneTet(Tet3* pTet) { pOneTet = pTet; }

    /// The vertex's number: that of the first input point with its coordinates, the points of all
    /// insertions counted from 0, until the host sets another. -1 in any other point, and where
    /// 2^31 points came before.
    int getIndex() const { return index; }
    /// Sets that number. The library doesn't read it.
    void setIndex(int value) { index = value; }

    /// The point moved by v, without tetrahedron and with index -1.
    Point3 operator+(const Vector3& v) const;
    /// The vector from other to this point.
    Vector3 operator-(const Point3& other) const;

    /// Lexicographic order of (x, y, z).
    bool operator<(const Point3& other) const;
    /// Exact equality of the coordinates; neither tetrahedron nor index counts.
    bool operator==(const Point3& other) const {
        return xx == other.xx && yy == other.yy && zz == other.zz;
    }

    /// Prints "Point3: x,y,z" and a line end on standard output.
    void debug() const;

  private:
    friend struct MeshAccess;

    double xx;
    double yy;
    double zz;
    Tet3* pOneTet = nullptr;
    std::int32_t index = -1;
    /// In a vertex, what the library made the index at first.
    std::int32_t number = -1;
};

/// Prints the address, a tab, and the coordinates in fields of width 8.
VARN3D_EXPORT std::ostream& operator<<(std::ostream& out, const Point3& p);

/// The unit normal of the plane through three points: it points to the side from which p0, p1, p2
/// run counter-clockwise. Degenerate points give (0, 0, 0) and one to three warning lines. In plain
/// floating point: an angle near 0 or 180 degrees at p0 leaves few digits or none, and differences
/// to p0 below 1e-162, or above 1e154, count as degenerate, for their squares leave a double's
/// range.
VARN3D_EXPORT Vector3 getNormalVector(const Point3& p0, const Point3& p1, const Point3& p2);

}  // namespace VARN3D
