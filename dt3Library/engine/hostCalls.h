#pragma once

#include <cmath>
#include <cstddef>
#include <new>
#include <string>

#include "dt3Library/Point3.h"
#include "dt3Library/base/EngineCheck.h"
#include "dt3Library/predicates/FloatingPointScope.h"
#include "dt3Library/tools.h"

// What the calls of a host pass through on their way to the engine.

namespace VARN3D {

/// Runs an operation of the engine under the library's own floating-point settings; memory that
/// runs out is reported before the exception goes on to the host.
template <class Operation>
auto guarded(const char* who, Operation operation) {
    const FloatingPointScope scope;
    try {
        return operation();
    } catch (const std::bad_alloc&) {
        printError(who, "Out of memory");
        throw;
    }
}

inline void requireFinite(const Point3& point, std::size_t position, const char* who) {
    if (std::isfinite(point.x()) && std::isfinite(point.y()) && std::isfinite(point.z())) return;
    const std::string reason = "point " + std::to_string(position) + " has a non-finite coordinate";
    printError(who, reason);
    engineFail(reason, checks::FINITE_COORDINATES);
}

}  // namespace VARN3D
