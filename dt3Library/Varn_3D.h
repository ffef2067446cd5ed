#pragma once

#include <string>
#include <vector>

#include "dt3Library/Ball3.h"
#include "dt3Library/Bbox3.h"
#include "dt3Library/Edge3.h"
#include "dt3Library/Export.h"
#include "dt3Library/Facet3.h"
#include "dt3Library/Iterators.h"
#include "dt3Library/Point3.h"
#include "dt3Library/Segment3.h"
#include "dt3Library/Tet3.h"
#include "dt3Library/Triangle3.h"
#include "dt3Library/VarnException.h"
#include "dt3Library/Vector3.h"
#include "dt3Library/utilities.h"

namespace VARN3D {

class Dt3;

/// The Delaunay tetrahedralisation of a set of points.
class VARN3D_EXPORT Varn_3D {
  public:
    Varn_3D();
    ~Varn_3D();
    Varn_3D(const Varn_3D&) = delete;
    Varn_3D& operator=(const Varn_3D&) = delete;

    bool is3D() const;
    void insert(std::vector<Point3>& vInputPoints, std::vector<Point3*>& vUserHandles);
    void insert(std::vector<Point3>& vInputPoints);
    Point3* insert(Point3& point);
    Tet3* locate(const Point3& point);
    void getVertices(std::vector<Point3*>& vVertices) const;
    void getTetrahedra(std::vector<Tet3*>& vTets) const;
    void getTetsAroundVertex(Point3* pVtx, std::vector<Tet3*>& vTets);
    bool checkValidity(const std::string& location, bool checkSphereInc);
    void print(const std::string& label);
    void show(const std::string& filename, Point3* pVertex);
    void setVerbosity(bool bVerbose);

  private:
    Dt3* pDt3;
};

VARN3D_EXPORT bool isRelease();
VARN3D_EXPORT int getMajorVersionNumber();
VARN3D_EXPORT int getMinorVersionNumber();
VARN3D_EXPORT int getRevisionNumber();
VARN3D_EXPORT std::string getVarn3DVersion();

}  // namespace VARN3D
