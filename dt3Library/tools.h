#pragma once

#include <string>

#include "dt3Library/VarnException.h"
#include "dt3Library/utilities.h"

namespace VARN3D {

void printWarning(const std::string& who, const std::string& text);
void printError(const std::string& who, const std::string& text);
void printBanner(const std::string& text);
std::string getNextDumpPrefix();
[[noreturn]] void goToHell(const std::string& reason);

/// Reports a failed condition and throws. `file` may be any path that ends in a path relative to
/// the repository's root: what stands before the last "dt3Library/" is not printed.
[[noreturn]] void conditionFailed(const char* condition, const char* file, int line);

inline bool range03(int ith) { return ith >= 0 && ith <= 3; }
inline bool range02(int ith) { return ith >= 0 && ith <= 2; }

}  // namespace VARN3D

/// Checks a condition in every build.
#define varnAssert(condition) varnAssertIn(condition, __FILE__, __LINE__)

/// The same, under a line number that names the check in every version of the library.
#define varnAssertLine(condition, line) varnAssertIn(condition, __FILE__, line)

/// The same, where the check belongs to another file than the one that makes it.
#define varnAssertIn(condition, file, line) \
    ((condition) ? static_cast<void>(0) : ::VARN3D::conditionFailed(#condition, file, line))
