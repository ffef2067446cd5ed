#pragma once

// Where doubles are calculated in SSE registers, these have a control register of their own.
#if defined(__SSE2__) || defined(_M_X64) || (defined(_M_IX86_FP) && _M_IX86_FP >= 2)
#define VARN3D_HAS_MXCSR
#include <xmmintrin.h>
#else
#include <cfenv>
#endif

namespace VARN3D {

/// For the time of a call into the library: round to nearest and keep denormal numbers, whatever
/// the host has set. A host linked with -ffast-math flushes denormals to zero in the whole process,
/// and one that does interval arithmetic may have changed the rounding; either would make the
/// predicates wrong. The host's setting comes back at the end.
class FloatingPointScope {
  public:
#if defined(VARN3D_HAS_MXCSR)
    FloatingPointScope() : hostControl(_mm_getcsr()) {
        if ((hostControl & CHANGES_RESULTS) != 0) _mm_setcsr(hostControl & ~CHANGES_RESULTS);
    }
    ~FloatingPointScope() {
        if ((hostControl & CHANGES_RESULTS) != 0) _mm_setcsr(hostControl);
    }
#else
    FloatingPointScope() {
        std::fegetenv(&hostEnvironment);
        std::fesetenv(FE_DFL_ENV);
    }
    ~FloatingPointScope() {
        std::fesetenv(&hostEnvironment);
    }
#endif
    FloatingPointScope(const FloatingPointScope&) = delete;
    FloatingPointScope& operator=(const FloatingPointScope&) = delete;

  private:
#if defined(VARN3D_HAS_MXCSR)
    /// Rounding control, denormals-are-zero and flush-to-zero.
    static constexpr unsigned CHANGES_RESULTS = 0x6000U | 0x0040U | 0x8000U;
    unsigned hostControl;
#else
    std::fenv_t hostEnvironment;
#endif
};

}  // namespace VARN3D
