/// @file
/// Measures one span of time between a start and a stop.

#ifndef ZU_BASE_INTERVALTIMER_H
#define ZU_BASE_INTERVALTIMER_H

#include "baseApi.h"

#include <cstdint>

namespace Zu
{

/// One span of time. The name is kept as a pointer, which must outlive the timer. Copies have the
/// name and the stamps. A timer belongs to one thread at a time.
class ZU_BASE_API IntervalTimer
{
public:
    /// @{
    /// Copies the name, as a pointer.
    IntervalTimer(const IntervalTimer& other);
    IntervalTimer& operator=(const IntervalTimer& other);
    /// @}

    virtual ~IntervalTimer();

    /// Stamps the beginning of the span.
    virtual void start() = 0;

    /// Stamps the end of the span.
    virtual void stop() = 0;

    /// Seconds from the last start to the last stop. Nothing asks whether there were any: without
    /// a start they count from the clock's origin, and a stop before the start gives a negative
    /// value.
    virtual double timeInterval() const = 0;

    /// Seconds from the last start to now.
    virtual double sinceStart() const = 0;

    /// Another name, which is kept as a pointer.
    void setName(const char* name);

    /// The name that was given.
    const char* getName() const;

protected:
    /// The name is kept as a pointer.
    explicit IntervalTimer(const char* name);

private:
    const char* _name;
};

/// A span on the high-resolution counter. Its constructor makes sure of the counter's engine, so a
/// start costs a pointer load and a virtual call beside the platform's own.
class ZU_BASE_API HwIntervalTimer : public IntervalTimer
{
public:
    /// The name is kept as a pointer.
    explicit HwIntervalTimer(const char* name = "anonymous");

    void start() override;
    void stop() override;
    double timeInterval() const override;
    double sinceStart() const override;

private:
    std::uint64_t _start = 0;
    std::uint64_t _stop = 0;
};

/// A span on the wall clock, to the millisecond. It follows when the clock is set.
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

    /// The name is kept as a pointer.
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
