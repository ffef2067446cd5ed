#include "tools/Progress.h"

#include <cmath>
#include <cstdio>
#include <utility>

#include "tools/platform.h"
#include "tools/temporaryFiles.h"

namespace tool {

Progress::Progress(bool bQuiet) {
    if (!bQuiet && stderrIsTerminal()) {
        // Signals are the main thread's business.
        const SignalBlock block;
        reporter = std::thread([this] { report(); });
    }
}

Progress::~Progress() {
    {
        const std::lock_guard<std::mutex> lock(mutex);
        bEnded = true;
    }
    ended.notify_one();
    if (reporter.joinable()) reporter.join();
}

void Progress::begin(const std::string& work, Share share) {
    const std::lock_guard<std::mutex> lock(mutex);
    currentWork = work;
    currentShare = std::move(share);
    start = Clock::now();
}

void Progress::end() {
    const std::lock_guard<std::mutex> lock(mutex);
    erase();
    currentWork.clear();
    currentShare = {};
}

void Progress::report() {
    std::unique_lock<std::mutex> lock(mutex);
    while (!ended.wait_for(lock, std::chrono::milliseconds(250), [this] { return bEnded; })) {
        const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
        const std::string line = lineAfter(seconds);
        if (seconds >= 1 && !currentWork.empty() && line != shown) {
            erase();
            std::fputs(line.c_str(), stderr);
            shown = line;
        }
    }
    erase();
}

std::string Progress::lineAfter(double seconds) const {
    const double share = currentShare ? currentShare() : 0;
    char text[64];
    if (share > 0.001 && share <= 1) {
        std::snprintf(text, sizeof text, ", %.0f %%, about %.0f s left", 100 * share,
                      std::ceil(seconds * (1 - share) / share));
    } else {
        std::snprintf(text, sizeof text, ", %.0f s", std::floor(seconds));
    }
    return currentWork + text;
}

void Progress::erase() {
    if (!shown.empty()) {
        std::fputs("\r\033[K", stderr);
        shown.clear();
    }
}

}  // namespace tool
