#include "dt3Library/Segment3.h"

#include "dt3Library/base/messages.h"

namespace VARN3D {

void Segment3::debug() const {
    messageStream() << "Segment3: " << source << "," << target << std::endl;
}

}  // namespace VARN3D
