#include "dt3Library/Triangle3.h"

#include <iostream>

#include "dt3Library/base/EngineCheck.h"

namespace VARN3D {

namespace {

void checkIndex(int i) {
    engineCheck(i > -1 && i < 3, checks::TRIANGLE_CORNER);
}

}  // namespace

Triangle3::Triangle3(Point3* p0, Point3* p1, Point3* p2) : aCorners{p0, p1, p2} {}

Point3* Triangle3::getCorner(int i) const {
    checkIndex(i);
    return aCorners[i];
}

Triangle3* Triangle3::getNeig(int i) const {
    checkIndex(i);
    return aNeigs[i];
}

void Triangle3::setNeig(int i, Triangle3* p) {
    checkIndex(i);
    aNeigs[i] = p;
}

int Triangle3::getIntraTriangleIndex(Point3* p) const {
    for (int i = 0; i < 3; ++i)
        if (aCorners[i] == p) return i;
    std::cerr << "Triangle3::getIntraTriangleIndex(): invalid (p)" << std::endl;
    return -999;
}

int Triangle3::getIntraTriangleIndex(Point3* p1, Point3* p2) const {
    for (int i = 0; i < 3; ++i) {
        const Point3* q1 = aCorners[(i + 1) % 3];
        const Point3* q2 = aCorners[(i + 2) % 3];
        if ((q1 == p1 && q2 == p2) || (q1 == p2 && q2 == p1)) return i;
    }
    std::cerr << "Triangle3::getIntraTriangleIndex(): invalid (p1,p2)" << std::endl;
    std::cerr << "Have searched for " << static_cast<const void*>(p1) << " and "
              << static_cast<const void*>(p2) << " in " << *this << std::endl;
    return -999;
}

Point3 Triangle3::getBarycenter() const {
    for (const Point3* corner : aCorners)
        engineCheck(corner != nullptr, checks::TRIANGLE_OF_CORNERS);
    return Point3((aCorners[0]->x() + aCorners[1]->x() + aCorners[2]->x()) / 3,
                  (aCorners[0]->y() + aCorners[1]->y() + aCorners[2]->y()) / 3,
                  (aCorners[0]->z() + aCorners[1]->z() + aCorners[2]->z()) / 3);
}

std::ostream& operator<<(std::ostream& out, const Triangle3& triangle) {
    out << "Triangle: " << std::endl;
    for (int i = 0; i < 3; ++i) {
        const Point3* corner = triangle.getCorner(i);
        const Triangle3* neig = triangle.getNeig(i);
        out << "ith=" << i << ", vertex (" << static_cast<const void*>(corner) << "): ";
        if (corner != nullptr) out << *corner;
        out << "  oppTet=" << static_cast<const void*>(neig) << (neig == nullptr ? " (NULL)" : "")
            << std::endl;
    }
    return out;
}

}  // namespace VARN3D
