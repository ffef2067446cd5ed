#include "tools/platform.h"

#if defined(__unix__) || defined(__APPLE__)
#include <sys/resource.h>
#include <unistd.h>
#elif defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include <cstdio>
#endif

namespace tool {

#if defined(__unix__) || defined(__APPLE__)

void prepareStreams() {}

bool stderrIsTerminal() {
    return isatty(STDERR_FILENO) == 1;
}

std::uint64_t peakMemory() {
    rusage usage = {};
    if (getrusage(RUSAGE_SELF, &usage) != 0) return 0;
#if defined(__APPLE__)
    const std::uint64_t unit = 1;
#else
    const std::uint64_t unit = 1024;
#endif
    return static_cast<std::uint64_t>(usage.ru_maxrss) * unit;
}

#else

#if defined(_WIN32)

void prepareStreams() {
    _setmode(_fileno(stdin), _O_BINARY);
    SetConsoleOutputCP(CP_UTF8);
}

bool stderrIsTerminal() {
    // Only one that takes escape sequences will do.
    const HANDLE console = GetStdHandle(STD_ERROR_HANDLE);
    DWORD mode = 0;
    return GetConsoleMode(console, &mode) != 0 &&
           SetConsoleMode(console, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != 0;
}

#else

void prepareStreams() {}

bool stderrIsTerminal() {
    return false;
}

#endif

std::uint64_t peakMemory() {
    return 0;
}

#endif

}  // namespace tool
