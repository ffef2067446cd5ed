#pragma once

#include "dt3Library/Point3.h"
#include "dt3Library/Vector3.h"

namespace VARN3D {

inline double dot(const Vector3& u, const Vector3& v) {
    return u.x * v.x + u.y * v.y + u.z * v.z;
}

inline Vector3 cross(const Vector3& u, const Vector3& v) {
    return {u.y * v.z - u.z * v.y, u.z * v.x - u.x * v.z, u.x * v.y - u.y * v.x};
}

inline double squaredDistance(const Point3& a, const Point3& b) {
    const Vector3 difference(a.x() - b.x(), a.y() - b.y(), a.z() - b.z());
    return dot(difference, difference);
}

}  // namespace VARN3D
