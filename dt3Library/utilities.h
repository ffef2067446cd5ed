#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "dt3Library/Export.h"
#include "dt3Library/Point3.h"

namespace VARN3D {

VARN3D_EXPORT double timer(const std::string& name);

VARN3D_EXPORT void generateRandomNumbers(std::uint64_t num, double min, double max,
                                         std::vector<double>& out, std::uint32_t seed);
VARN3D_EXPORT void generateRandomPoints(std::uint64_t num, double min, double max,
                                        std::vector<Point3>& out, std::uint32_t seed);

}  // namespace VARN3D

VARN3D_EXPORT void benchCounter(std::string& name);
