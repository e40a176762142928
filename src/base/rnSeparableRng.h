/// @file
/// Points of independent coordinates.

#ifndef ZU_BASE_RNSEPARABLERNG_H
#define ZU_BASE_RNSEPARABLERNG_H

#include "baseApi.h"
#include "rnRng.h"

namespace Zu
{

/// Takes both coordinates from one source: getSample() first x and then y, but getSequence() first
/// all x and then all y. So a sequence is deliberately not the same as the pairs of as many
/// samples.
///
/// The source must live as long as it is drawn from; it is not owned. Copies share it.
template <class T> class ZU_BASE_VISIBLE RnSeparableBiRng : public RnBiRng<T>
{
public:
    /// Raises ExInternalError "Assertion '_uniRng' failed." for a null source.
    explicit RnSeparableBiRng(RnRng<T>* uniRng);

    void getSample(T& x, T& y) override;
    void getSequence(unsigned int n, T* x, T* y) override;
    void getEfficientWidth(T& x, T& y) const override;
    void getEfficientMin(T& x, T& y) const override;
    void getEfficientMax(T& x, T& y) const override;
    T getEfficientFraction() const override;
    T getPdf(T x, T y) const override;

    /// Restarts the source.
    void restart() override;

    /// "Symmetrical Bi Separable".
    const char* getName() const override;

    virtual ~RnSeparableBiRng();

private:
    RnRng<T>* _uniRng;
};

/// Takes each coordinate from a source of its own. Both must live as long as they are drawn from;
/// they are not owned. Copies share them.
template <class T> class ZU_BASE_VISIBLE RnAsymmetricalSeparableBiRng : public RnBiRng<T>
{
public:
    /// Raises ExInternalError "Assertion '_uniRng0' failed." or "Assertion '_uniRng1' failed." for
    /// a null source.
    RnAsymmetricalSeparableBiRng(RnRng<T>* uniRng0, RnRng<T>* uniRng1);

    void getSample(T& x, T& y) override;
    void getSequence(unsigned int n, T* x, T* y) override;
    void getEfficientWidth(T& x, T& y) const override;
    void getEfficientMin(T& x, T& y) const override;
    void getEfficientMax(T& x, T& y) const override;
    T getEfficientFraction() const override;
    T getPdf(T x, T y) const override;

    /// Restarts the sources, that of x first.
    void restart() override;

    /// "Assymetrical Bi Separable"; the spelling is frozen, see docs/compatibility.md.
    const char* getName() const override;

    virtual ~RnAsymmetricalSeparableBiRng();

private:
    RnRng<T>* _uniRng0;
    RnRng<T>* _uniRng1;
};

/// Takes N = 3 coordinates from one source, in the same orders as RnSeparableBiRng.
template <class T, int N> class ZU_BASE_VISIBLE RnSeparableMultiRng : public RnMultiRng<T, N>
{
public:
    /// Raises ExInternalError "Assertion '_uniRng' failed." for a null source.
    explicit RnSeparableMultiRng(RnRng<T>* uniRng);

    void getSample(T* const values) override;
    void getSequence(unsigned int n, T** const arrays) override;
    void getEfficientWidth(T* const widths) const override;
    void getEfficientMin(T* const mins) const override;
    void getEfficientMax(T* const maxs) const override;
    T getEfficientFraction() const override;
    T getPdf(T* const values) const override;

    /// Restarts the source.
    void restart() override;

    /// "Multi Separable".
    const char* getName() const override;

    virtual ~RnSeparableMultiRng();

private:
    RnRng<T>* _uniRng;
};

#if ZU_BASE_IMPORTS_TEMPLATES
extern template class ZU_BASE_API RnSeparableBiRng<float>;
extern template class ZU_BASE_API RnSeparableBiRng<double>;
extern template class ZU_BASE_API RnAsymmetricalSeparableBiRng<float>;
extern template class ZU_BASE_API RnAsymmetricalSeparableBiRng<double>;
extern template class ZU_BASE_API RnSeparableMultiRng<float, 3>;
extern template class ZU_BASE_API RnSeparableMultiRng<double, 3>;
#endif

} // namespace Zu

#endif
