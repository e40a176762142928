#include "base/rnSeparableRng.h"

#include "base/assertions.h"

#include <algorithm>
#include <cmath>

namespace Zu
{

template <class T> RnSeparableBiRng<T>::RnSeparableBiRng(RnRng<T>* uniRng) : _uniRng(uniRng)
{
    ZU_ASSERT(_uniRng);
}

template <class T> RnSeparableBiRng<T>::~RnSeparableBiRng() = default;

template <class T> void RnSeparableBiRng<T>::getSample(T& x, T& y)
{
    x = (*_uniRng)();
    y = (*_uniRng)();
}

template <class T> void RnSeparableBiRng<T>::getSequence(unsigned int n, T* x, T* y)
{
    _uniRng->getSequence(n, x);
    _uniRng->getSequence(n, y);
}

template <class T> void RnSeparableBiRng<T>::getEfficientWidth(T& x, T& y) const
{
    x = y = _uniRng->getEfficientWidth();
}

template <class T> void RnSeparableBiRng<T>::getEfficientMin(T& x, T& y) const
{
    x = y = _uniRng->getEfficientMin();
}

template <class T> void RnSeparableBiRng<T>::getEfficientMax(T& x, T& y) const
{
    x = y = _uniRng->getEfficientMax();
}

template <class T> T RnSeparableBiRng<T>::getEfficientFraction() const
{
    const T fraction = _uniRng->getEfficientFraction();
    return fraction * fraction;
}

template <class T> T RnSeparableBiRng<T>::getPdf(T x, T y) const
{
    return _uniRng->getPdf(x) * _uniRng->getPdf(y);
}

template <class T> void RnSeparableBiRng<T>::restart()
{
    _uniRng->restart();
}

template <class T> const char* RnSeparableBiRng<T>::getName() const
{
    return "Symmetrical Bi Separable";
}

template <class T>
RnAsymmetricalSeparableBiRng<T>::RnAsymmetricalSeparableBiRng(RnRng<T>* uniRng0, RnRng<T>* uniRng1)
    : _uniRng0(uniRng0), _uniRng1(uniRng1)
{
    ZU_ASSERT(_uniRng0);
    ZU_ASSERT(_uniRng1);
}

template <class T> RnAsymmetricalSeparableBiRng<T>::~RnAsymmetricalSeparableBiRng() = default;

template <class T> void RnAsymmetricalSeparableBiRng<T>::getSample(T& x, T& y)
{
    x = (*_uniRng0)();
    y = (*_uniRng1)();
}

template <class T> void RnAsymmetricalSeparableBiRng<T>::getSequence(unsigned int n, T* x, T* y)
{
    _uniRng0->getSequence(n, x);
    _uniRng1->getSequence(n, y);
}

template <class T> void RnAsymmetricalSeparableBiRng<T>::getEfficientWidth(T& x, T& y) const
{
    x = _uniRng0->getEfficientWidth();
    y = _uniRng1->getEfficientWidth();
}

template <class T> void RnAsymmetricalSeparableBiRng<T>::getEfficientMin(T& x, T& y) const
{
    x = _uniRng0->getEfficientMin();
    y = _uniRng1->getEfficientMin();
}

template <class T> void RnAsymmetricalSeparableBiRng<T>::getEfficientMax(T& x, T& y) const
{
    x = _uniRng0->getEfficientMax();
    y = _uniRng1->getEfficientMax();
}

template <class T> T RnAsymmetricalSeparableBiRng<T>::getEfficientFraction() const
{
    return _uniRng0->getEfficientFraction() * _uniRng1->getEfficientFraction();
}

template <class T> T RnAsymmetricalSeparableBiRng<T>::getPdf(T x, T y) const
{
    return _uniRng0->getPdf(x) * _uniRng1->getPdf(y);
}

template <class T> void RnAsymmetricalSeparableBiRng<T>::restart()
{
    _uniRng0->restart();
    _uniRng1->restart();
}

template <class T> const char* RnAsymmetricalSeparableBiRng<T>::getName() const
{
    return "Assymetrical Bi Separable";
}

template <class T, int N>
RnSeparableMultiRng<T, N>::RnSeparableMultiRng(RnRng<T>* uniRng) : _uniRng(uniRng)
{
    ZU_ASSERT(_uniRng);
}

template <class T, int N> RnSeparableMultiRng<T, N>::~RnSeparableMultiRng() = default;

template <class T, int N> void RnSeparableMultiRng<T, N>::getSample(T* const values)
{
    for (int i = 0; i < N; ++i) values[i] = (*_uniRng)();
}

template <class T, int N>
void RnSeparableMultiRng<T, N>::getSequence(unsigned int n, T** const arrays)
{
    for (int i = 0; i < N; ++i) _uniRng->getSequence(n, arrays[i]);
}

template <class T, int N> void RnSeparableMultiRng<T, N>::getEfficientWidth(T* const widths) const
{
    std::fill_n(widths, N, _uniRng->getEfficientWidth());
}

template <class T, int N> void RnSeparableMultiRng<T, N>::getEfficientMin(T* const mins) const
{
    std::fill_n(mins, N, _uniRng->getEfficientMin());
}

template <class T, int N> void RnSeparableMultiRng<T, N>::getEfficientMax(T* const maxs) const
{
    std::fill_n(maxs, N, _uniRng->getEfficientMax());
}

template <class T, int N> T RnSeparableMultiRng<T, N>::getEfficientFraction() const
{
    return std::pow(_uniRng->getEfficientFraction(), static_cast<T>(N));
}

template <class T, int N> T RnSeparableMultiRng<T, N>::getPdf(T* const values) const
{
    T product = T(1);
    for (int i = 0; i < N; ++i) product *= _uniRng->getPdf(values[i]);
    return product;
}

template <class T, int N> void RnSeparableMultiRng<T, N>::restart()
{
    _uniRng->restart();
}

template <class T, int N> const char* RnSeparableMultiRng<T, N>::getName() const
{
    return "Multi Separable";
}

template class ZU_BASE_API RnSeparableBiRng<float>;
template class ZU_BASE_API RnSeparableBiRng<double>;
template class ZU_BASE_API RnAsymmetricalSeparableBiRng<float>;
template class ZU_BASE_API RnAsymmetricalSeparableBiRng<double>;
template class ZU_BASE_API RnSeparableMultiRng<float, 3>;
template class ZU_BASE_API RnSeparableMultiRng<double, 3>;

} // namespace Zu
