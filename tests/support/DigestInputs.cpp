#include "DigestInputs.h"

#include <cfenv>

namespace support {

std::vector<DigestInput> digestInputs() {
    std::fenv_t hostEnvironment;
    std::fegetenv(&hostEnvironment);
    std::fesetenv(FE_DFL_ENV);
    std::vector<DigestInput> inputs{
        {"uniform", uniform(2000, 1), 0xdddb27b1fc7dc53fU},
        {"gaussian", gaussian(1000, 2), 0xcc6012286b582f6fU},
        {"sphere", sphere(1000, 3), 0x7c333a2cbd9b3ba6U},
        {"integer sphere", shuffled(integerSphere(861), 4), 0xd790a490835c6915U},
        {"grid", shuffled(grid(10, 10, 10), 5), 0x891a1691813c2277U},
        {"tenths", grid(10, 10, 10, 0.1), 0x45893a5d65f7ecd1U},
        {"lattice", lattice(1000, 9, 9, 9, 6), 0xe2069763d4f440ceU},
        {"helix", helix(1000), 0xf297708639258d19U},
        {"skew segments", skewSegments(60), 0x8f4a9237720aa7e5U},
        {"last bits", uniform(1000, 7, 1.0, 1.0 + 0x1p-47), 0xae5610dde1d6fd73U},
        {"tiny", uniform(500, 8, -0x1p-1060, 0x1p-1060), 0x5c5da2a47a026062U},
        {"huge", uniform(500, 9, -0x1p1000, 0x1p1000), 0x8cdef81af356ddccU},
    };
    std::fesetenv(&hostEnvironment);
    return inputs;
}

}  // namespace support
