#include "platform.h"

#if defined(__unix__) || defined(__APPLE__)
#include <sys/resource.h>
#include <unistd.h>
#endif

namespace tool {

#if defined(__unix__) || defined(__APPLE__)

bool stderrIsTerminal() {
    return isatty(STDERR_FILENO) == 1;
}

std::uint64_t peakMemory() {
    rusage usage = {};
    if (getrusage(RUSAGE_SELF, &usage) != 0) {
        return 0;
    }
#if defined(__APPLE__)
    const std::uint64_t unit = 1;
#else
    const std::uint64_t unit = 1024;
#endif
    return static_cast<std::uint64_t>(usage.ru_maxrss) * unit;
}

#else

bool stderrIsTerminal() {
    return false;
}

std::uint64_t peakMemory() {
    return 0;
}

#endif

}  // namespace tool
