#pragma once

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <memory>
#include <string>
#include <vector>

#include "dt3Library/Ball3.h"
#include "dt3Library/Bbox3.h"
#include "dt3Library/Edge3.h"
#include "dt3Library/Export.h"
#include "dt3Library/Facet3.h"
#include "dt3Library/IndexedMesh.h"
#include "dt3Library/Iterators.h"
#include "dt3Library/Point3.h"
#include "dt3Library/PointLocator.h"
#include "dt3Library/Segment3.h"
#include "dt3Library/Tet3.h"
#include "dt3Library/Triangle3.h"
#include "dt3Library/VarnException.h"
#include "dt3Library/Vector3.h"
#include "dt3Library/utilities.h"
#include "dt3Library/version.h"
#include "dt3Library/voronoi.h"

namespace VARN3D {

class Dt3;

/// The Delaunay tetrahedralisation of a set of points: no vertex lies strictly inside the
/// circumsphere of a tetrahedron, and the tetrahedra fill the convex hull of the points.
///
/// It owns the vertices and tetrahedra that it hands out: vertices are valid until it is destroyed,
/// tetrahedra until the next insertion. While all points lie in a plane there are no tetrahedra;
/// the vertices wait. All decisions are exact, so any finite coordinates will do, and the same
/// insertions give the same mesh everywhere.
///
/// The algorithm is incremental insertion (Bowyer 1981, Watson 1981) along a Hilbert curve in
/// rounds (after Amenta, Choi and Rote, Incremental constructions con BRIO, 2003) with exact
/// predicates (Shewchuk, Adaptive precision floating-point arithmetic, 1997).
///
/// A failed check prints the condition and throws VarnException; std::bad_alloc is passed on. Where
/// memory runs out in an insertion, either may be thrown; the mesh is then valid, and the object
/// can be used on. A first batch, and one of at least as many new points as there were vertices, is
/// then as if it had never been. Of a smaller batch, and of single insertions, the mesh has what
/// was inserted before. Further points of these may wait as vertices: each joins the mesh when it
/// is inserted singly again, and all do with the next batch. After any other failed check in an
/// insertion, but that of coordinates that are not finite, vertices can still be read; but for
/// that, the object can only be destroyed. Used by one thread at a time; different objects may be
/// used by different threads.
///
/// What ends the host's process: a file that can't be opened, in `show` and where `checkValidity`
/// dumps a fault, and two misuses of a `Tet3` (exit code 1, see there); and tetrahedra so damaged
/// by the host that an operation has none to begin at (an access fault, after a line with the
/// reason).
class VARN3D_EXPORT Varn_3D {
  public:
    /// A triangulation without points.
    Varn_3D();
    /// Frees all vertices and tetrahedra.
    ~Varn_3D();
    Varn_3D(const Varn_3D&) = delete;
    Varn_3D& operator=(const Varn_3D&) = delete;
    /// Takes the other one's triangulation over; all pointers into it stay valid. The other one can
    /// then only be destroyed or assigned to: any other use is a failed check. O(1).
    Varn_3D(Varn_3D&& other) noexcept;
    /// The same, and frees the own vertices and tetrahedra.
    Varn_3D& operator=(Varn_3D&& other) noexcept;

    /// Whether there are tetrahedra, which is so once a batch or a point was inserted that doesn't
    /// lie in one plane with all before. O(1).
    bool is3D() const;
    /// What the points inserted so far span, decided exactly: space (3), a plane (2), a line (1),
    /// a single place (0), or nothing as there are none (-1). O(1).
    int getDimension() const;

    /// Inserts a batch. vUserHandles gets one vertex for each point, in input order; points with
    /// equal coordinates get the same one, which may be from an earlier insertion. If vUserHandles
    /// is not empty, prints a warning and empties it first. Vertices that were waiting join the
    /// mesh with the batch that makes the first tetrahedron. The function of `setProgress` may stop
    /// the batch.
    ///
    /// Prints "numPoints=" and the number of points. A coordinate that is not finite is a failed
    /// check before anything is stored. O(n log n) expected for n points of which all but few lie
    /// as if at random in space; O(n^2) at worst, as the mesh itself may be of that size. A batch
    /// of at least as many new points as there are vertices takes the whole mesh over, and all
    /// pointers to tetrahedra from before are void. A mesh that could grow beyond 2^30 tetrahedra
    /// by such a batch counts as memory that runs out.
    ///
    /// The points are counted for their numbers (see `Point3::getIndex`). So are those of an
    /// insertion that fails, unless it is a batch that then has no vUserHandles, or a coordinate is
    /// not finite.
    void insert(const std::vector<Point3>& vInputPoints, std::vector<Point3*>& vUserHandles);
    /// The same without the vertices.
    void insert(const std::vector<Point3>& vInputPoints);
    /// The same for n points of which xyz holds x, y and z, one point after the other. They are
    /// read where they are.
    void insert(const double* xyz, std::size_t n, std::vector<Point3*>& vUserHandles);

    /// Inserts one point and returns its vertex, or the one that has these coordinates already.
    /// Vertices that wait when it makes the first tetrahedron go on waiting, apart from that
    /// tetrahedron's corners, and a line says "Attention: triangulate has got an empty vector". A
    /// coordinate that is not finite is a failed check. O(log n) to find the place, and time in
    /// proportion to the tetrahedra that change.
    Point3* insert(const Point3& point);

    /// Takes the vertices that wait into the mesh, as a batch of them would be inserted. Returns
    /// how many it has taken: none while all vertices lie in one plane, and fewer than wait where
    /// the function of `setProgress` stops it. Prints nothing. Where memory runs out, they wait as
    /// before, or, if they were fewer than the others, some have joined. O(1) if none wait, else
    /// as `insert`.
    std::size_t insertWaiting();

    /// Sets what the insertion of batches and of waiting vertices calls now and then, at most every
    /// 10 milliseconds: how many of how many new vertices are in the mesh. While points are being
    /// stored none are, and total is the number of points; where done has come to total, their
    /// tetrahedra are being written. False stops the insertion: all handles are given, the mesh is
    /// valid, and the vertices that are not in it wait, for `insertWaiting` or for being inserted
    /// singly. An exception passes through the insertion, with the same consequences as memory that
    /// runs out. An empty function ends the calls.
    ///
    /// It is called in the thread that inserts, under the library's floating-point settings, and
    /// must not use the Varn_3D.
    void setProgress(std::function<bool(std::size_t done, std::size_t total)> function);

    /// The tetrahedron that holds a point, in its inside, on its boundary or at a corner. Null
    /// while there is no tetrahedron, outside the convex hull, and on its surface unless at a
    /// vertex. Not const: makes a search table when it is needed for the first time after a batch,
    /// O(n log n); otherwise O(log n) and a short walk. A coordinate that is not finite is a failed
    /// check.
    Tet3* locate(const Point3& point);

    /// How many vertices there are, those that wait included. O(1).
    std::size_t getNumVertices() const;
    /// How many tetrahedra there are. O(1).
    std::size_t getNumTetrahedra() const;
    /// How many vertices wait, that is belong to no tetrahedron. O(1).
    std::size_t getNumWaiting() const;

    /// Appends all vertices, those that wait included, each once, along the Hilbert curve. O(n).
    void getVertices(std::vector<Point3*>& vVertices) const;

    /// Lists all tetrahedra. vTets must be empty, a failed check otherwise. While there are none,
    /// prints "Dt3::getAllTetrahedra(), oneTet==NULL". O(n).
    void getTetrahedra(std::vector<Tet3*>& vTets) const;

    /// Appends the facets of the convex hull, each once; their tetrahedra are the ones inside.
    /// Nothing while there are no tetrahedra. O(n).
    void getHullFacets(std::vector<Facet3>& vFacets) const;

    /// The mesh in plain numbers. Without tetrahedra there are none in it, but the duplicates are.
    /// More than 2^31 points inserted, or tetrahedra, are a failed check. O(n), one pass.
    IndexedMesh getIndexedMesh() const;

    /// Appends the tetrahedra that have a vertex of this mesh as a corner, each once. Prints an
    /// error and adds nothing for a vertex that waits. Linear in their number.
    void getTetsAroundVertex(Point3* pVtx, std::vector<Tet3*>& vTets);

    /// Checks every tetrahedron: each neighbour's opposite vertex lies beyond the shared facet,
    /// and, if checkSphereInc, not inside the circumsphere. Prints what it does, under the name
    /// `location`. At the first fault prints it, writes a Geomview file of it in the current
    /// directory ("00001_negSideBug.list", "00002_sphereIncBug.list": the number counts the
    /// process's dumps) and returns false. O(n).
    bool checkValidity(const std::string& location, bool checkSphereInc);

    /// Prints all tetrahedra under the label. O(n).
    void print(const std::string& label);

    /// Writes all tetrahedra to a file in Geomview's OOGL format, and marks pVertex unless it is
    /// null. Coordinates have 6 digits: a look at the mesh, not the mesh. A file that can't be
    /// opened ends the process with exit code 1; a write error goes unnoticed. O(n).
    void show(const std::string& filename, Point3* pVertex);

    /// Whether batch insertion announces itself; false at first. Warnings and errors are printed
    /// in any case.
    void setVerbosity(bool bVerbose);

    /// Sets the stream to which the library prints: std::cout at first, null for silence. Where
    /// this manual says that something is printed, or goes to standard output, it goes there.
    ///
    /// One for all objects of the process, so it has to outlive them, or be replaced before it
    /// ends. May be called at any time, but what other threads are about to print may still go to
    /// the former stream. Threads print without regard for each other: as long as several may
    /// print, the stream must stand being written to by several at once, as std::cout and null do.
    static void setMessageStream(std::ostream* pStream);

  private:
    friend class PointLocator;
    friend VoronoiCell getVoronoiCell(const Varn_3D& mesh, const Point3* pVtx);

    Dt3& engine() const;

    std::unique_ptr<Dt3> pDt3;
};

/// Whether this is a release build: false.
VARN3D_EXPORT bool isRelease();
/// @{
/// A part of the library's version.
VARN3D_EXPORT int getMajorVersionNumber();
VARN3D_EXPORT int getMinorVersionNumber();
VARN3D_EXPORT int getRevisionNumber();
/// @}
/// The library's version, as in "Varn3D, DEBUG, v0.99.0".
VARN3D_EXPORT std::string getVarn3DVersion();

}  // namespace VARN3D
