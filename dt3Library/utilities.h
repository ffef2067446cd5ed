#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "dt3Library/Export.h"
#include "dt3Library/Point3.h"

namespace VARN3D {

/// A stopwatch by name: the first call starts it and returns -1.0, the next stops it and returns
/// the seconds between, and so on. Both print a line; after a stop, standard output stays in fixed
/// notation with precision 6. Safe to call from several threads.
VARN3D_EXPORT double timer(const std::string& name);

/// Appends num uniformly distributed numbers to out, in [min, max). The same seed gives the same
/// numbers; seed 0 takes the time and gives other numbers with each call, after as many
/// further seedings as there were such calls before: thousands of calls should draw their seeds
/// themselves. Unless min < max, a
/// failed check and VarnException. Uses, and seeds, the C library's `rand`, which all threads of
/// the process share.
VARN3D_EXPORT void generateRandomNumbers(std::uint64_t num, double min, double max,
                                         std::vector<double>& out, std::uint32_t seed);

/// Appends num points to out, uniformly distributed in the cube [min, max)^3; the rest as above.
VARN3D_EXPORT void generateRandomPoints(std::uint64_t num, double min, double max,
                                        std::vector<Point3>& out, std::uint32_t seed);

}  // namespace VARN3D

/// Counts an event by its name; the name "GETCOUNTERS" prints all counts instead, by name. Safe to
/// call from several threads.
VARN3D_EXPORT void benchCounter(std::string& name);
