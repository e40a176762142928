/// @file
/// The runtime library's generator as a source.

#ifndef ZU_BASE_RNSTDUNIFORMRNG_H
#define ZU_BASE_RNSTDUNIFORMRNG_H

#include "rnUniformRng.h"

#include <cstdint>

namespace Zu
{

/// Draws the runtime library's numbers from 0 to 32767 and divides them by 32767, so it often
/// reaches 1, unlike any other uniform source. All objects of a thread draw from the thread's one
/// stream; restarting one of them restarts it for all.
template <class T> class RnStdUniformRng : public RnUniformRng<T>
{
public:
    /// Leaves the stream as it is. restart() goes to the seed 1.
    RnStdUniformRng();

    /// Starts the stream with this seed.
    explicit RnStdUniformRng(unsigned int seed);

    T operator()() override;
    void getSample(T& value) override;
    void getSequence(unsigned int n, T* values) override;

    /// Starts the stream with the seed.
    void restart() override;

    /// "Std OS-specific generator".
    const char* getName() const override;

    virtual ~RnStdUniformRng();

    /// The next value, scaled to a range.
    T evalRange(T min, T max);

    /// The next value times `max`.
    T evalScaled(T max);

private:
    static T draw();

    std::uint32_t _seed;
};

} // namespace Zu

#include "rnStdUniformRng.imp"

#endif
