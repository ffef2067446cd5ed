#include "dt3Library/Vector3.h"

#include <cmath>

#include "dt3Library/base/messages.h"

namespace VARN3D {

Vector3 normalize(const Vector3& v) {
    const double length = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
    if (length > 0.0) return Vector3(v.x / length, v.y / length, v.z / length);
    messageStream() << "warning: normalize(const Vector3& other), Null length vector!" << std::endl;
    return Vector3();
}

}  // namespace VARN3D
