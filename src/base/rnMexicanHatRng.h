/// @file
/// Samples of a triangular density.

#ifndef ZU_BASE_RNMEXICANHATRNG_H
#define ZU_BASE_RNMEXICANHATRNG_H

#include "baseApi.h"
#include "rnRng.h"

namespace Zu
{

/// Shapes a uniform source to a triangle by inverting the distribution function, with one draw of
/// the source for each sample. The peak is at the center, and the sides extend half the width from
/// it.
///
/// The source must live as long as it is drawn from; it is not owned. Copies share it.
template <class T> class ZU_BASE_VISIBLE RnMexicanHatRng : public RnRng<T>
{
public:
    /// @{
    /// Center 0 and width 1 unless they are given. Raises ExInternalError "Assertion 'rng != 0'
    /// failed." for a null source, and then "Assertion '_halfwidth > 0' failed."; a NaN passes.
    explicit RnMexicanHatRng(RnRng<T>* rng);
    RnMexicanHatRng(RnRng<T>* rng, T center, T width);
    /// @}

    T operator()() override;
    void getSample(T& value) override;
    void getSequence(unsigned int n, T* values) override;
    T getEfficientWidth() const override;
    T getEfficientMin() const override;
    T getEfficientMax() const override;
    T getEfficientFraction() const override;
    T getPdf(T x) const override;

    /// Restarts the source.
    void restart() override;

    /// "Mexican Hat".
    const char* getName() const override;

    virtual ~RnMexicanHatRng();

    /// The source that is shaped.
    RnRng<T>* getUniRng() const;

    /// The next value for center 0 and sides of length 1.
    T evalUnit();

private:
    static T mapped(T r);

    T _center;
    T _width;
    T _halfwidth;
    T _invHalfwidth;
    RnRng<T>* _uniRng;
};

#if ZU_BASE_IMPORTS_TEMPLATES
extern template class ZU_BASE_API RnMexicanHatRng<float>;
extern template class ZU_BASE_API RnMexicanHatRng<double>;
#endif

} // namespace Zu

#endif
