#include "dt3Library/Point3.h"

#include <cfloat>
#include <iomanip>

#include "dt3Library/base/messages.h"
#include "dt3Library/base/vectors.h"

namespace VARN3D {

Point3::Point3() : Point3(-DBL_MAX, -DBL_MAX, -DBL_MAX) {}

Point3& Point3::operator=(const Point3& other) {
    xx = other.xx;
    yy = other.yy;
    zz = other.zz;
    pOneTet = other.pOneTet;
    index = other.index;
    return *this;
}

void Point3::init(const Point3& other) {
    exchange(other.xx, other.yy, other.zz);
    pOneTet = nullptr;
}

void Point3::exchange(double x, double y, double z) {
    xx = x;
    yy = y;
    zz = z;
}

void Point3::xyz(double& x, double& y, double& z) const {
    x = xx;
    y = yy;
    z = zz;
}

Point3 Point3::operator+(const Vector3& v) const {
    return Point3(xx + v.x, yy + v.y, zz + v.z);
}

Vector3 Point3::operator-(const Point3& other) const {
    return Vector3(xx - other.xx, yy - other.yy, zz - other.zz);
}

bool Point3::operator<(const Point3& other) const {
    if (xx < other.xx) return true;
    if (xx > other.xx) return false;
    if (yy < other.yy) return true;
    if (yy > other.yy) return false;
    return zz < other.zz;
}

void Point3::debug() const {
    messageStream() << "Point3: " << xx << "," << yy << "," << zz << std::endl;
}

std::ostream& operator<<(std::ostream& out, const Point3& p) {
    return out << static_cast<const void*>(&p) << "\t" << std::setw(8) << p.x() << ", "
               << std::setw(8) << p.y() << ", " << std::setw(8) << p.z();
}

Vector3 getNormalVector(const Point3& p0, const Point3& p1, const Point3& p2) {
    const Vector3 a = normalize(p1 - p0);
    const Vector3 b = normalize(p2 - p0);
    return normalize(cross(a, b));
}

}  // namespace VARN3D
