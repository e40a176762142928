/// @file
/// The library's source of elapsed time.

#ifndef ZU_BASE_HWCOUNTER_H
#define ZU_BASE_HWCOUNTER_H

#include "baseApi.h"
#include "hwCounterEng.h"
#include "inInit.h"

#include <atomic>
#include <cstdint>
#include <iosfwd>

namespace Zu
{

/// A steadily rising 64-bit tick count with a known rate, which the platform states; the library
/// never measures it. The package "profiling" makes the engine. An earlier call, for instance from
/// a static object, makes the same engine.
///
/// Thread-safety: any thread may make any call, including the first one. The engine lives until the
/// end of the process.
///
/// Cost of timeStamp(): a load and a shift in addition to the platform's own call. The others make
/// a virtual call.
class ZU_BASE_API HwCounter
{
    friend class InInit<ZuInit::profiling>;
    friend class HwIntervalTimer;

public:
    HwCounter() = delete;

    /// Makes the engine if there is none, for the frequency that the platform states. Raises
    /// ExSysErrorANSI if the platform has no counter.
    static void init();

    /// The current tick count. Makes the engine if there is none.
    static std::uint64_t timeStamp();

    /// The current tick count, in seconds. Makes the engine if there is none.
    static double seconds();

    /// Seconds from `start` to `end`; negative if `end` is the earlier one. Makes the engine if
    /// there is none.
    static double seconds(std::uint64_t start, std::uint64_t end);

    /// Writes the engine's name, rate and cycle. Makes the engine if there is none.
    static void dump(std::ostream& os);

    /// Seconds per tick. The engine must exist, here and for the two operations below.
    static double resolution();

    /// @{
    /// Ticks per second are the numerator divided by the denominator.
    static int getRateNumerator();
    static int getRateDenominator();
    /// @}

private:
    // The same for callers that have made sure that the engine exists.
    static std::uint64_t timeStampInline()
    {
        return engine()->timeStamp();
    }

    static double secondsInline()
    {
        return engine()->seconds();
    }

    static double secondsInline(std::uint64_t start, std::uint64_t end)
    {
        return engine()->seconds(start, end);
    }

    // Pairs with the release in init() and so acquires the complete engine; a plain load on x86.
    static HwCounterEng* engine()
    {
        return _theHwCounter.load(std::memory_order_acquire);
    }

    static std::atomic<HwCounterEng*> _theHwCounter;
};

} // namespace Zu

#endif
