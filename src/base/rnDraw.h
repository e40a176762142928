/// @file
/// Many values of a source at once.

#ifndef ZU_BASE_RNDRAW_H
#define ZU_BASE_RNDRAW_H

#include "baseApi.h"
#include "rnRng.h"

namespace Zu
{

/// @{
/// Whether the source is one of the library's own whose getSequence() is known to equal as many
/// calls of its operator(). Only such a source may be asked for many values at once where single
/// draws are documented, because any other implementation of the interface sees the calls.
ZU_BASE_API bool rnDrawsAlike(const RnRng<float>& source);
ZU_BASE_API bool rnDrawsAlike(const RnRng<double>& source);
/// @}

/// @{
/// Writes the values of `n` calls of the source's operator() to `values`: all at once if it draws
/// alike.
ZU_BASE_API void rnDraw(RnRng<float>& source, unsigned int n, float* values);
ZU_BASE_API void rnDraw(RnRng<double>& source, unsigned int n, double* values);
/// @}

/// How many values are worth asking for at a time.
inline constexpr unsigned int RN_BLOCK = 256;

} // namespace Zu

#endif
