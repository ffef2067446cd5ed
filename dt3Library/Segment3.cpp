#include "dt3Library/Segment3.h"

#include <iostream>

namespace VARN3D {

void Segment3::debug() const {
    std::cout << "Segment3: " << source << "," << target << std::endl;
}

}  // namespace VARN3D
