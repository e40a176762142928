/// @file
/// The van der Corput sequence.

#ifndef ZU_BASE_RNVANDERCORPUTRNG_H
#define ZU_BASE_RNVANDERCORPUTRNG_H

#include "baseApi.h"
#include "rnUniformRng.h"

#include <cstdint>

namespace Zu
{

/// The radical inverses of 1, 2, 3...: J. van der Corput, "Verteilungsfunktionen", 1935. The digits
/// of a point's number are mirrored at the radix point, with repeated products of the rounded
/// reciprocal of the base as weights. The results are in [0, 1); in `float` the sum may round to
/// exactly 1, in base 2 from point 33554431 on. Point 0, which comes after point 4294967295, is 0.
///
/// The base is not checked: with 0 the first draw divides by zero, with 1 it never ends. Objects
/// may be copied; the copy continues on its own.
template <class T> class ZU_BASE_VISIBLE RnVanDerCorputRng : public RnUniformRng<T>
{
public:
    /// @{
    /// Base 2 unless it is given; the first point is number 1.
    RnVanDerCorputRng();
    explicit RnVanDerCorputRng(unsigned int base);
    /// @}

    T operator()() override;
    void getSample(T& value) override;
    void getSequence(unsigned int n, T* values) override;

    /// The next point is number 1.
    void restart() override;

    /// "Van der Corput".
    const char* getName() const override;

    virtual ~RnVanDerCorputRng();

    /// The next point is number `n + 1`.
    void restart(unsigned int n);

    /// Leaves out the next `n` points, at no cost.
    void skip(std::uint64_t n);

    /// Another base, from the next point on; the points' numbers go on.
    void setBase(unsigned int base);

    /// The base of the digits.
    unsigned int getBase() const;

    /// The next value, scaled to a range.
    T evalRange(T min, T max);

    /// The next value times `max`.
    T evalScaled(T max);

private:
    class Block;

    T draw();

    std::uint32_t _base;
    T _invBase;
    std::uint32_t _index;
};

#if ZU_BASE_IMPORTS_TEMPLATES
extern template class ZU_BASE_API RnVanDerCorputRng<float>;
extern template class ZU_BASE_API RnVanDerCorputRng<double>;
#endif

} // namespace Zu

#endif
