#include "dt3Library/tools.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>

#include "dt3Library/base/messages.h"

namespace VARN3D {

namespace {

void printMessage(const std::string& who, const std::string& kind, const std::string& text) {
    messageStream() << std::endl;
    messageStream() << "      " + who + ", " + kind + ": " + text << std::endl << std::endl;
}

/// The same path on every build, wherever the sources lie.
std::string getPathInRepository(const std::string& file) {
    const std::size_t start = file.rfind("dt3Library/");
    return start == std::string::npos ? file : file.substr(start);
}

}  // namespace

void printWarning(const std::string& who, const std::string& text) {
    printMessage(who, "WARNING", text);
}

void printError(const std::string& who, const std::string& text) {
    printMessage(who, "ERROR", text);
}

void conditionFailed(const char* condition, const char* file, int line, const std::string& reason) {
    const std::string text = std::string("Condition [ ") + condition + " failed ]";
    const std::string place = getPathInRepository(file) + ":" + std::to_string(line);
    printError("Varn, ", text);
    messageStream() << "      " << place << std::endl;
    throw VarnException(reason.empty() ? text + " at " + place : reason);
}

void goToHell(const std::string& reason) {
    printError("goToHell", " reason: " + reason);
    // Volatile on both levels, or the compiler may assume that this point is never reached.
    const volatile int* const volatile pNowhere = nullptr;
    messageStream() << *pNowhere << std::endl;
    std::abort();  // where address 0 can be read
}

std::string getNextDumpPrefix() {
    static std::atomic<std::int32_t> dumpNumber{0};
    const std::string number = std::to_string(dumpNumber.fetch_add(1) + 1);
    return std::string(5 - std::min<std::size_t>(number.length(), 5), '0') + number + "_";
}

void printBanner(const std::string& text) {
    const std::string rule = std::string(text.length() + 36, '*') + "\n";
    messageStream() << "\n\n" + rule + rule + std::string(16, ' ') + text + "\n" + rule + rule
                    << std::flush;
}

}  // namespace VARN3D
