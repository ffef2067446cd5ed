#include "dt3Library/utilities.h"

#include <chrono>
#include <iomanip>
#include <map>
#include <mutex>

#include "dt3Library/base/messages.h"

namespace VARN3D {

double timer(const std::string& name) {
    using Clock = std::chrono::steady_clock;
    static std::mutex guard;
    static std::map<std::string, Clock::time_point> startTimes;
    const std::lock_guard<std::mutex> lock(guard);

    const auto running = startTimes.find(name);
    if (running == startTimes.end()) {
        startTimes[name] = Clock::now();
        messageStream() << std::endl << "*** Timer [" << name << "] start" << std::endl;
        return -1.0;
    }
    const std::chrono::duration<double> elapsed = Clock::now() - running->second;
    messageStream() << "*** Timer [" << name << "] stop, elapsed time: " << std::fixed
                    << std::setprecision(3) << elapsed.count() << " s" << std::endl
                    << std::setprecision(6);
    startTimes.erase(running);
    return elapsed.count();
}

}  // namespace VARN3D

void benchCounter(std::string& name) {
    static std::mutex guard;
    static std::map<std::string, std::int32_t> counts;
    const std::lock_guard<std::mutex> lock(guard);

    if (name != "GETCOUNTERS") {
        ++counts[name];
        return;
    }
    std::ostream& out = VARN3D::messageStream();
    out << std::endl << "Counters: " << std::endl;
    for (const auto& [counted, count] : counts) out << counted << "\t" << count << std::endl;
}
