/// @file
/// Range and density of sources that are uniform on the unit square, cube or box.

#ifndef ZU_BASE_RNUNITBOX_H
#define ZU_BASE_RNUNITBOX_H

#include "baseApi.h"
#include "rnUniformRng.h"

#include <algorithm>
#include <cstdint>

namespace Zu
{

/// An interface of points in which the queries of range and density are implemented.
template <class T, int N> class ZU_BASE_VISIBLE RnUnitBoxRng : public RnMultiRng<T, N>
{
public:
    /// 1 for each coordinate.
    void getEfficientWidth(T* const widths) const override
    {
        std::fill_n(widths, N, T(1));
    }

    /// 0 for each coordinate.
    void getEfficientMin(T* const mins) const override
    {
        std::fill_n(mins, N, T(0));
    }

    /// 1 for each coordinate.
    void getEfficientMax(T* const maxs) const override
    {
        std::fill_n(maxs, N, T(1));
    }

    /// 1: all of the probability.
    T getEfficientFraction() const override
    {
        return T(1);
    }

    /// 1 inside the box, 0 outside.
    T getPdf(T* const values) const override
    {
        return rnUniformPdf(values, N);
    }

protected:
    RnUnitBoxRng() = default;
    RnUnitBoxRng(const RnUnitBoxRng&) = default;
    RnUnitBoxRng& operator=(const RnUnitBoxRng&) = default;
    ~RnUnitBoxRng() = default;
};

/// A two-dimensional source, `Rng`, in the form of pairs. It computes the density itself, by the
/// same rule.
template <class T, class Rng> class ZU_BASE_VISIBLE RnUnitSquareRng : public RnBiRng<T>
{
public:
    /// The next point of `Rng`.
    void getSample(T& x, T& y) override
    {
        T values[2];
        _rng.getSample(values);
        x = values[0];
        y = values[1];
    }

    /// The next `n` points, as a sequence of `Rng`.
    void getSequence(unsigned int n, T* x, T* y) override
    {
        T* arrays[2] = {x, y};
        _rng.getSequence(n, arrays);
    }

    /// 1 for each coordinate.
    void getEfficientWidth(T& x, T& y) const override
    {
        x = y = T(1);
    }

    /// 0 for each coordinate.
    void getEfficientMin(T& x, T& y) const override
    {
        x = y = T(0);
    }

    /// 1 for each coordinate.
    void getEfficientMax(T& x, T& y) const override
    {
        x = y = T(1);
    }

    /// 1: all of the probability.
    T getEfficientFraction() const override
    {
        return T(1);
    }

    /// 1 inside the square, 0 outside.
    T getPdf(T x, T y) const override
    {
        const T values[2] = {x, y};
        return rnUniformPdf(values, 2);
    }

    /// Restarts `Rng`.
    void restart() override
    {
        _rng.restart();
    }

    /// Leaves out the next `n` points.
    void skip(std::uint64_t n)
    {
        _rng.skip(n);
    }

    /// The name of `Rng`.
    const char* getName() const override
    {
        return _rng.getName();
    }

protected:
    /// Constructs `Rng` from the arguments.
    template <class... Arguments>
    explicit RnUnitSquareRng(Arguments... arguments) : _rng(arguments...)
    {
    }

    RnUnitSquareRng(const RnUnitSquareRng&) = default;
    RnUnitSquareRng& operator=(const RnUnitSquareRng&) = default;
    ~RnUnitSquareRng() = default;

    /// The source of the points.
    Rng _rng;
};

} // namespace Zu

#endif
