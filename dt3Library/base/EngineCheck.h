#pragma once

#include "dt3Library/tools.h"

/// The engine's checks. Each has a line number of its own that stays the same in every version, so
/// that a report from any of them names the same check; it says nothing of where the check stands
/// in the source today.
#define engineCheck(condition, text, line) varnAssertAt(condition, text, "dt3Library/Dt3.cpp", line)

/// A check that has failed, with the reason for the exception.
#define engineFail(reason, text, line) \
    ::VARN3D::conditionFailed(text, "dt3Library/Dt3.cpp", line, reason)
