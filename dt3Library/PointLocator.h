#pragma once

#include <memory>
#include <vector>

#include "dt3Library/Export.h"
#include "dt3Library/Location.h"

namespace VARN3D {

class MeshSearch;
class Varn_3D;

/// Finds the places of points in a mesh. All answers are exact.
///
/// Each query starts where the last one ended, so that points in a spatial order, or along a path,
/// are found in nearly constant time. Where points jump about, it starts at the nearest of a sample
/// of the vertices, which the locator takes when it is first needed: O(n) at little cost, and some
/// 30 bytes for every 8 vertices.
///
/// A locator is used by one thread at a time. Several threads may have locators of the same mesh
/// and use them at once while nobody inserts. The mesh must outlive its locators. They see what is
/// inserted: the first query after an insertion forgets all about the mesh as it was.
///
/// A coordinate that is not finite is a failed check and throws VarnException, and changes nothing.
/// std::bad_alloc is passed on after a message.
class VARN3D_EXPORT PointLocator {
  public:
    /// O(1).
    explicit PointLocator(const Varn_3D& mesh);
    ~PointLocator();
    PointLocator(const PointLocator&) = delete;
    PointLocator& operator=(const PointLocator&) = delete;
    /// @{
    /// A locator that was moved from can only be destroyed or assigned to.
    PointLocator(PointLocator&& other) noexcept;
    PointLocator& operator=(PointLocator&& other) noexcept;
    /// @}

    /// Where a point lies. Of several tetrahedra that have the facet, edge or vertex it names any.
    /// Outside while there are no tetrahedra.
    Location locate(const Point3& point);

    /// The vertex nearest to a point anywhere; of several at the same distance the one with the
    /// lowest number. Vertices that wait count as well: they are compared one by one. Null while
    /// there are no vertices. Looks at all neighbours of all nearest vertices, which are few unless
    /// many have the same distance.
    Point3* nearestVertex(const Point3& point);

    /// Appends the tetrahedra that an insertion of the point would replace, each once: those whose
    /// circumsphere strictly holds it. Inside the hull there are some unless the point is at a
    /// vertex; outside there may be some, and they need not hang together. O(tetrahedra at the
    /// region's facets), and outside also O(hull facets that the point sees).
    void conflictRegion(const Point3& point, std::vector<Tet3*>& vTets);

  private:
    std::unique_ptr<MeshSearch> search;
};

}  // namespace VARN3D
