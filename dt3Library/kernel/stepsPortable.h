#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

#include "dt3Library/base/EngineCheck.h"
#include "dt3Library/base/Profile.h"
#include "dt3Library/base/bits.h"
#include "dt3Library/kernel/BatchState.h"
#include "dt3Library/kernel/CertifiedSphere.h"
#include "dt3Library/predicates/FloatingPoint.h"
#include "dt3Library/predicates/predicateStages.h"

namespace VARN3D::portable {
namespace {
#include "dt3Library/kernel/lanesPortable.h"
//
#include "dt3Library/kernel/InsertionSteps.h"
}  // namespace
}  // namespace VARN3D::portable
