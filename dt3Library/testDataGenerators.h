#pragma once

#include "dt3Library/utilities.h"

namespace VARN3D {

/// Maps a value of `rand` to [min, max). Rounding never reaches max, and a range that is larger
/// than the largest double is no obstacle.
double toRange(int random, double min, double max);

}  // namespace VARN3D
