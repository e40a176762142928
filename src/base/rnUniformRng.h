/// @file
/// What the uniform sources have in common.

#ifndef ZU_BASE_RNUNIFORMRNG_H
#define ZU_BASE_RNUNIFORMRNG_H

#include "baseApi.h"
#include "rnRng.h"

namespace Zu
{

/// 1 where `x` is at least 0 and below 1, otherwise 0, also for a NaN.
template <class T> constexpr T rnUniformPdf(T x) noexcept
{
    return x >= T(0) && x < T(1) ? T(1) : T(0);
}

/// The joint density of `n` independent uniform coordinates.
template <class T> constexpr T rnUniformPdf(const T* values, int n) noexcept
{
    for (int i = 0; i < n; ++i)
        if (rnUniformPdf(values[i]) == T(0)) return T(0);
    return T(1);
}

/// A source whose samples are in [0, 1), with the same density everywhere. The density at 1 is 0
/// even for those few sources that reach 1.
template <class T> class ZU_BASE_VISIBLE RnUniformRng : public RnRng<T>
{
public:
    T getEfficientWidth() const override
    {
        return T(1);
    }

    T getEfficientMin() const override
    {
        return T(0);
    }

    T getEfficientMax() const override
    {
        return T(1);
    }

    T getEfficientFraction() const override
    {
        return T(1);
    }

    T getPdf(T x) const override
    {
        return rnUniformPdf(x);
    }

protected:
    RnUniformRng() = default;
    RnUniformRng(const RnUniformRng&) = default;
    RnUniformRng& operator=(const RnUniformRng&) = default;
    ~RnUniformRng() = default;
};

} // namespace Zu

#endif
