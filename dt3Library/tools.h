#pragma once

#include <string>

#include "dt3Library/VarnException.h"
#include "dt3Library/utilities.h"

namespace VARN3D {

/// Prints a warning on standard output, "      who, WARNING: text" between two empty lines.
void printWarning(const std::string& who, const std::string& text);
/// The same with "ERROR". Neither stops the caller.
void printError(const std::string& who, const std::string& text);
/// Prints text in a frame of asterisks.
void printBanner(const std::string& text);

/// The start of the name of the process's next dump file: "00001_", then "00002_" and so on. Safe
/// to call from several threads.
std::string getNextDumpPrefix();

/// For states that can't be: prints the reason and ends the process by an access fault, so that a
/// debugger stops at the broken state.
[[noreturn]] void goToHell(const std::string& reason);

/// Reports a failed condition and throws. `file` may be any path that ends in a path relative to
/// the repository's root: what stands before the last "dt3Library/" is not printed. The exception
/// has the reason, if there is one, or else condition and place.
[[noreturn]] void conditionFailed(const char* condition, const char* file, int line,
                                  const std::string& reason = {});

inline bool range03(int ith) {
    return ith >= 0 && ith <= 3;
}
inline bool range02(int ith) {
    return ith >= 0 && ith <= 2;
}

}  // namespace VARN3D

/// Checks a condition in every build; a failure is reported under the condition's source text.
#define varnAssert(condition) varnAssertAt(condition, #condition, __FILE__, __LINE__)

/// The same under a text, a file and a line that name the check in every version of the library,
/// wherever it stands today.
#define varnAssertAt(condition, text, file, line) \
    ((condition) ? static_cast<void>(0) : ::VARN3D::conditionFailed(text, file, line))
