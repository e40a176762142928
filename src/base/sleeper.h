/// @file
/// A time base in seconds and a precise sleep.

#ifndef ZU_BASE_SLEEPER_H
#define ZU_BASE_SLEEPER_H

#include "baseApi.h"
#include "inInit.h"
#include "inSingleton.h"

namespace Zu
{

/// Sleeps on a precise timer of the platform instead of the scheduler's coarse one. The package
/// "profiling" has the one instance.
///
/// Thread-safety: any thread may use it between the start and the end of the package; no thread may
/// be asleep at the end.
class ZU_BASE_API Sleeper
{
    friend class InInit<ZuInit::profiling>;
    friend class InSingleton<Sleeper>;

public:
    Sleeper(const Sleeper&) = delete;
    Sleeper& operator=(const Sleeper&) = delete;

    /// The instance. Raises InSingletonEx::ExNotInitialized before the start of the package and
    /// after its end. The first call of a thread provides what it needs to sleep.
    static Sleeper& getInstance();

    /// Seconds since some fixed moment, on the high-resolution counter. Raises ExSysErrorANSI if
    /// that fails.
    virtual double getTime() = 0;

    /// The shortest period of the platform's timers, in seconds.
    virtual double getResolution() = 0;

    /// Sleeps for so many seconds, truncated to milliseconds, of which only the low 32 bits count.
    /// Returns false without sleeping if that gives 0, as for a time below a millisecond, and for a
    /// negative time. On Windows the timer may be up to one resolution early.
    virtual bool sleep(double seconds) = 0;

protected:
    Sleeper() = default;
    virtual ~Sleeper();

private:
    static Sleeper* create();
    static void prepareThread(Sleeper& sleeper);
};

#if ZU_BASE_IMPORTS_TEMPLATES
extern template class ZU_BASE_API InSingleton<Sleeper>;
#endif

} // namespace Zu

#endif
