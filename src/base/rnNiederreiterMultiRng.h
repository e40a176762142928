/// @file
/// The Niederreiter sequence of four dimensions.

#ifndef ZU_BASE_RNNIEDERREITERMULTIRNG_H
#define ZU_BASE_RNNIEDERREITERMULTIRNG_H

#include "baseApi.h"
#include "rnUnitBox.h"

#include <cstdint>

namespace Zu
{

/// The sequence of base 2 in four dimensions, from point 4096 on: H. Niederreiter, "Low-discrepancy
/// and low-dispersion sequences", 1988, with the generator matrices of P. Bratley, B. Fox and H.
/// Niederreiter, "Algorithm 738", 1994. Points come in the order of their plain numbers, not in
/// that of a Gray code. Coordinates have 31 bits; in `float` the largest ones round to exactly 1.
/// Point numbers that differ by 2^31 give the same point. Objects may be copied.
template <class T> class ZU_BASE_VISIBLE RnNiederreiterMultiRng : public RnUnitBoxRng<T, 4>
{
public:
    /// At the first point.
    RnNiederreiterMultiRng();

    void getSample(T* const values) override;

    /// The tuples of `n` calls of getSample(), which a derived class may have overridden.
    void getSequence(unsigned int n, T** const arrays) override;

    /// Back to the first point.
    void restart() override;

    /// "Niederreiter".
    const char* getName() const override;

    virtual ~RnNiederreiterMultiRng();

    /// Goes to the `n`th point after the first one, at no cost.
    void restart(unsigned int n);

    /// Leaves out the next `n` points, at no cost.
    void skip(std::uint64_t n);

private:
    void getBlocks(unsigned int n, T** const arrays);

    std::uint32_t _index;
};

#if ZU_BASE_IMPORTS_TEMPLATES
extern template class ZU_BASE_API RnNiederreiterMultiRng<float>;
extern template class ZU_BASE_API RnNiederreiterMultiRng<double>;
#endif

} // namespace Zu

#endif
