#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace tool {

/// Tells on a terminal's standard error what the program is at, once that takes more than a second:
/// the share of the work that is done and the time that the rest will take, where the share can be
/// told, and the time passed otherwise. Where standard error is no terminal it stays silent.
class Progress {
  public:
    /// The share of the work that is done, from 0 to 1; anything else means that it is not known.
    /// Called from another thread.
    using Share = std::function<double()>;

    explicit Progress(bool bQuiet);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Names what begins now, such as "triangulating 1000 points".
    void begin(const std::string& work, Share share = {});
    /// Takes the line off the terminal, before something else is printed.
    void end();

  private:
    using Clock = std::chrono::steady_clock;

    void report();
    std::string lineAfter(double seconds) const;
    void erase();

    std::mutex mutex;
    std::condition_variable ended;
    bool bEnded = false;
    std::string shown;
    std::string currentWork;
    Share currentShare;
    Clock::time_point start = Clock::now();
    std::thread reporter;
};

}  // namespace tool
