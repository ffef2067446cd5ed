#include "dt3Library/Ball3.h"

#include <cmath>
#include <iostream>

namespace VARN3D {

double Ball3::getRadius() const {
    return std::sqrt(squaredRadius);
}

void Ball3::debug() const {
    std::cout << "Ball3: " << centre << ", r=" << getRadius() << std::endl;
}

}  // namespace VARN3D
