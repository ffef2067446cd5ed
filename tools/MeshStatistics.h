#pragma once

#include <dt3Library/Varn_3D.h>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

namespace tool {

/// Counts of values that fall between bounds: bin i is [bounds[i], bounds[i + 1]), the last one
/// holds its upper bound as well. Values outside count in the nearest bin.
class Histogram {
  public:
    explicit Histogram(std::vector<double> binBounds);

    void add(double value);
    std::uint64_t count(std::size_t bin) const { return counts[bin]; }
    /// Prints the title, the extremes, and for each bin its bounds, count, share and a bar.
    void print(const std::string& title, std::FILE* out) const;

  private:
    std::vector<double> bounds;
    std::vector<std::uint64_t> counts;
    std::uint64_t total = 0;
    double smallest = 0;
    double largest = 0;
};

/// How well shaped the tetrahedra are and how many neighbours the vertices have. The figures are
/// rounded: they describe the mesh, nothing is decided by them.
class MeshStatistics {
  public:
    /// tets: all tetrahedra of a mesh.
    explicit MeshStatistics(const std::vector<VARN3D::Tet3*>& tets);

    void print(std::FILE* out) const;

    /// The six angles between the facets of a tetrahedron, in degrees.
    Histogram dihedralAngles;
    /// Circumradius by shortest edge; 0.612 for the regular tetrahedron, the least there is.
    Histogram radiusEdgeRatios;
    /// The number of edges at a vertex.
    Histogram degrees;

  private:
    void addShape(const VARN3D::Tet3& tet);
    void addDegrees(const std::vector<VARN3D::Tet3*>& tets);
};

}  // namespace tool
