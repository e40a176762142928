/// @file
/// The square root, rounded as IEEE 754 has it.

#ifndef ZU_BASE_RNSQUAREROOT_H
#define ZU_BASE_RNSQUAREROOT_H

#include "compiler.h"

#include <emmintrin.h>

namespace Zu
{

/// @{
/// The processor's own instruction: a platform's function may round twice where the compiler does
/// not replace it.
ZU_ALWAYS_INLINE inline double rnSquareRoot(double value)
{
    const __m128d number = _mm_set_sd(value);
    return _mm_cvtsd_f64(_mm_sqrt_sd(number, number));
}

ZU_ALWAYS_INLINE inline float rnSquareRoot(float value)
{
    return _mm_cvtss_f32(_mm_sqrt_ss(_mm_set_ss(value)));
}
/// @}

} // namespace Zu

#endif
