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

// The insertion's steps for processors with four lanes of doubles and fused multiply-add, chosen at
// run time. All that the library shares is included above, so that it is compiled for any
// processor: only what has a name of its own here may use the newer instructions.
#if defined(__GNUC__) && defined(__x86_64__) && !defined(VARN3D_NO_AVX2)
#define VARN3D_HAS_AVX2
#include <immintrin.h>
#endif

#ifdef VARN3D_HAS_AVX2

#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2,fma,bmi,bmi2,popcnt"))), \
                             apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2,fma,bmi,bmi2,popcnt")
#endif

namespace VARN3D::avx2 {
namespace {
#include "dt3Library/kernel/lanesAvx2.h"
//
#include "dt3Library/kernel/InsertionSteps.h"
}  // namespace
}  // namespace VARN3D::avx2

#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

#endif
