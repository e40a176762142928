/// @file
/// The random numbers of the runtime library, with a stream for each thread.

#ifndef ZU_BASE_RNSTDRAND_H
#define ZU_BASE_RNSTDRAND_H

#include "baseApi.h"

namespace Zu
{

/// The calling thread's next number, from 0 to 32767: what `rand` returns on Windows, and the same
/// stream elsewhere.
ZU_BASE_API int rnStdRand();

/// Restarts the calling thread's stream, as `srand` does. A stream begins with the seed 1.
ZU_BASE_API void rnStdSeed(unsigned int seed);

} // namespace Zu

#endif
