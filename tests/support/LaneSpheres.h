#pragma once

#include <vector>

#include "dt3Library/kernel/stepsAvx2.h"
#include "dt3Library/kernel/stepsPortable.h"
#include "tests/support/SphereEdges.h"

#define LANE_TARGET
namespace VARN3D::portable {
namespace {
#include "tests/support/laneSphere.h"
}
}  // namespace VARN3D::portable
#undef LANE_TARGET

#ifdef VARN3D_HAS_AVX2
#define LANE_TARGET __attribute__((target("avx2,fma,bmi,popcnt")))
namespace VARN3D::avx2 {
namespace {
#include "tests/support/laneSphere.h"
}
}  // namespace VARN3D::avx2
#undef LANE_TARGET
#endif

namespace support {

/// The cached spheres as hosts have them: the kernel's, in each compilation that runs here.
inline std::vector<Spheres> kernelSpheres() {
    constexpr double ETA = VARN3D::ProvedCertificate::ETA;
    std::vector<Spheres> all{{"portable", VARN3D::portable::makeInLanes,
                              VARN3D::portable::sideInLanes, VARN3D::portable::signInLanes, ETA}};
#ifdef VARN3D_HAS_AVX2
    if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma"))
        all.push_back({"avx2", VARN3D::avx2::makeInLanes, VARN3D::avx2::sideInLanes,
                       VARN3D::avx2::signInLanes, ETA});
#endif
    return all;
}

}  // namespace support
