#pragma once

#include <cfloat>

// The geometric decisions are exact only where every operation rounds once, to double. A source
// file that takes part in them includes this header, so that a build which gives that up stops
// here instead of producing a wrong mesh.

#if defined(__FAST_MATH__) || defined(__ASSOCIATIVE_MATH__) || defined(__RECIPROCAL_MATH__) || \
    defined(_M_FP_FAST)
#error "Varn3D can't be exact under -ffast-math or options like it: compile without them."
#endif

#if defined(__FINITE_MATH_ONLY__) && __FINITE_MATH_ONLY__
#error "Varn3D must recognise infinities and NaN: compile without -ffinite-math-only."
#endif

#if FLT_EVAL_METHOD != 0
#error "Varn3D needs double operations rounded to double: on 32-bit x86 use -msse2 -mfpmath=sse."
#endif
