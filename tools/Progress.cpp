#include "Progress.h"

#include <cstdio>

#include "platform.h"

namespace tool {

Progress::Progress() {
    if (stderrIsTerminal()) {
        reporter = std::thread([this] { report(); });
    }
}

Progress::~Progress() {
    {
        const std::lock_guard<std::mutex> lock(mutex);
        bEnded = true;
    }
    ended.notify_one();
    if (reporter.joinable()) {
        reporter.join();
    }
}

void Progress::begin(const std::string& work) {
    const std::lock_guard<std::mutex> lock(mutex);
    currentWork = work;
    start = Clock::now();
}

void Progress::end() {
    const std::lock_guard<std::mutex> lock(mutex);
    erase();
    currentWork.clear();
}

void Progress::report() {
    std::unique_lock<std::mutex> lock(mutex);
    while (!ended.wait_for(lock, std::chrono::milliseconds(250), [this] { return bEnded; })) {
        const auto seconds =
            std::chrono::duration_cast<std::chrono::seconds>(Clock::now() - start).count();
        const std::string line = currentWork + ", " + std::to_string(seconds) + " s";
        if (seconds >= 1 && !currentWork.empty() && line != shown) {
            erase();
            std::fputs(line.c_str(), stderr);
            shown = line;
        }
    }
    erase();
}

void Progress::erase() {
    if (!shown.empty()) {
        std::fputs("\r\033[K", stderr);
        shown.clear();
    }
}

}  // namespace tool
