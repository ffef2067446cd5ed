#include "dt3Library/Ball3.h"

#include <cmath>

#include "dt3Library/base/messages.h"

namespace VARN3D {

double Ball3::getRadius() const {
    return std::sqrt(squaredRadius);
}

void Ball3::debug() const {
    messageStream() << "Ball3: " << centre << ", r=" << getRadius() << std::endl;
}

}  // namespace VARN3D
