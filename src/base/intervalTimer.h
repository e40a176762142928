/// @file
/// Measures one span of time between a start and a stop.

#ifndef ZU_BASE_INTERVALTIMER_H
#define ZU_BASE_INTERVALTIMER_H

#include "baseApi.h"

#include <cstdint>

namespace Zu
{

/// One span of time. The name is stored as a pointer and must outlive the timer. Copies have the
/// same name and stamps. A timer belongs to one thread at a time.
class ZU_BASE_API IntervalTimer
{
public:
    /// @{
    /// Copies the pointer to the name.
    IntervalTimer(const IntervalTimer& other);
    IntervalTimer& operator=(const IntervalTimer& other);
    /// @}

    virtual ~IntervalTimer();

    /// Stamps the beginning of the span.
    virtual void start() = 0;

    /// Stamps the end of the span.
    virtual void stop() = 0;

    /// Seconds from the last start to the last stop. It does not check whether there were any:
    /// without a start it counts from the clock's origin, and a stop before the start gives a
    /// negative value.
    virtual double timeInterval() const = 0;

    /// Seconds from the last start to now.
    virtual double sinceStart() const = 0;

    /// Sets another name, which is stored as a pointer.
    void setName(const char* name);

    /// The current name.
    const char* getName() const;

protected:
    /// The name is stored as a pointer.
    explicit IntervalTimer(const char* name);

private:
    const char* _name;
};

/// A span measured on the high-resolution counter. Its constructor makes sure that the counter's
/// engine exists, so a start costs only a pointer load and a virtual call in addition to the
/// platform's own call.
class ZU_BASE_API HwIntervalTimer : public IntervalTimer
{
public:
    /// The name is stored as a pointer.
    explicit HwIntervalTimer(const char* name = "anonymous");

    void start() override;
    void stop() override;
    double timeInterval() const override;
    double sinceStart() const override;

private:
    std::uint64_t _start = 0;
    std::uint64_t _stop = 0;
};

/// A span measured on the wall clock, to the millisecond. Setting the clock affects it.
class ZU_BASE_API TodIntervalTimer : public IntervalTimer
{
public:
    /// A reading of the wall clock.
    struct ZU_BASE_API NativeTimer
    {
        /// Reads the clock: whole seconds since an epoch, and the milliseconds of that second.
        void refresh();

        /// The whole seconds.
        double seconds = 0;
        /// 0 to 999.
        double milliseconds = 0;
    };

    /// The name is stored as a pointer.
    explicit TodIntervalTimer(const char* name = "anonymous");

    void start() override;
    void stop() override;
    double timeInterval() const override;
    double sinceStart() const override;

protected:
    /// When the span began.
    NativeTimer _start;
    /// When the span ended.
    NativeTimer _stop;
};

} // namespace Zu

#endif
