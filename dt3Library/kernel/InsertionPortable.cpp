#include "dt3Library/kernel/stepsPortable.h"

namespace VARN3D {

const KernelSteps& portableSteps() {
    static constexpr KernelSteps STEPS{portable::insertVertex, portable::makeSpheres};
    return STEPS;
}

}  // namespace VARN3D
