#include "dt3Library/Vector3.h"

#include <cmath>

#include "dt3Library/base/messages.h"

namespace VARN3D {

Vector3 Vector3::unit() const {
    const double length = std::sqrt(xx * xx + yy * yy + zz * zz);
    if (length > 0.0) return Vector3(xx / length, yy / length, zz / length);
    messageStream() << "warning: normalize(const Vector3& other), Null length vector!" << std::endl;
    return Vector3();
}

}  // namespace VARN3D
