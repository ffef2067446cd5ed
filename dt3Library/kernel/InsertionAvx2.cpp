#include "dt3Library/kernel/stepsAvx2.h"

namespace VARN3D {

const KernelSteps& fastestSteps() {
#ifdef VARN3D_HAS_AVX2
    static constexpr KernelSteps STEPS{avx2::insertVertex, avx2::makeSpheres};
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma") &&
        __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2") &&
        __builtin_cpu_supports("popcnt"))
        return STEPS;
#endif
    return portableSteps();
}

}  // namespace VARN3D
