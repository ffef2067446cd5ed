#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

namespace tool {

/// Tells on a terminal's standard error what the program is at, and for how long, once that takes
/// more than a second. Where standard error is no terminal it stays silent.
class Progress {
  public:
    Progress();
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Names what begins now, such as "triangulating 1000 points".
    void begin(const std::string& work);
    /// Takes the line off the terminal, before something else is printed.
    void end();

  private:
    using Clock = std::chrono::steady_clock;

    void report();
    void erase();

    std::mutex mutex;
    std::condition_variable ended;
    bool bEnded = false;
    std::string shown;
    std::string currentWork;
    Clock::time_point start = Clock::now();
    std::thread reporter;
};

}  // namespace tool
