#include "tests/support/DigestInputs.h"

#include <cfenv>

namespace support {

std::vector<DigestInput> digestInputs() {
    std::fenv_t hostEnvironment;
    std::fegetenv(&hostEnvironment);
    std::fesetenv(FE_DFL_ENV);
    std::vector<DigestInput> inputs{
        {"uniform", uniform(2000, 1), 0x34406aeeda8933e2U},
        {"gaussian", gaussian(1000, 2), 0xe900619141fbfde3U},
        {"sphere", sphere(1000, 3), 0xa3694c573fc7e442U},
        {"integer sphere", shuffled(integerSphere(861), 4), 0x3f4f609394788c65U},
        {"grid", shuffled(grid(10, 10, 10), 5), 0x0680940d6ac4d7d5U},
        {"tenths", grid(10, 10, 10, 0.1), 0x7118113686fe839fU},
        {"lattice", lattice(1000, 9, 9, 9, 6), 0xee25cd7efd835a94U},
        {"helix", helix(1000), 0x0b3f7d135d8b3944U},
        {"skew segments", skewSegments(60), 0xbc5084ac7799a5d7U},
        {"last bits", uniform(1000, 7, 1.0, 1.0 + 0x1p-47), 0x98d398cde652aa08U},
        {"tiny", uniform(500, 8, -0x1p-1060, 0x1p-1060), 0xb811bcb7221cd1f3U},
        {"huge", uniform(500, 9, -0x1p1000, 0x1p1000), 0x5a793e003204e828U},
    };
    std::fesetenv(&hostEnvironment);
    return inputs;
}

}  // namespace support
