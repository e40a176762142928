#include "base/rnMexicanHatRng.h"

#include "base/assertions.h"
#include "base/ieeeDivide.h"
#include "base/rnDraw.h"
#include "base/rnSquareRoot.h"

#include <cmath>

namespace Zu
{

template <class T>
RnMexicanHatRng<T>::RnMexicanHatRng(RnRng<T>* rng) : RnMexicanHatRng(rng, T(0), T(1))
{
}

template <class T>
RnMexicanHatRng<T>::RnMexicanHatRng(RnRng<T>* rng, T center, T width)
    : _center(center), _width(width), _halfwidth(width * T(0.5)),
      _invHalfwidth(ieeeDivide(T(1), width * T(0.5))), _uniRng(rng)
{
    ZU_ASSERT_TEXT(rng, "rng != 0");
    // A NaN passes.
    ZU_ASSERT_TEXT(!(_halfwidth <= 0), "_halfwidth > 0");
}

template <class T> RnMexicanHatRng<T>::~RnMexicanHatRng() = default;

template <class T> T RnMexicanHatRng<T>::mapped(T r)
{
    const bool isRight = r >= T(0.5);
    const T root = rnSquareRoot((isRight ? T(1) - r : r) * T(2));
    return isRight ? T(1) - root : root - T(1);
}

template <class T> T RnMexicanHatRng<T>::evalUnit()
{
    return mapped((*_uniRng)());
}

template <class T> T RnMexicanHatRng<T>::operator()()
{
    return evalUnit() * _halfwidth + _center;
}

template <class T> void RnMexicanHatRng<T>::getSample(T& value)
{
    value = evalUnit() * _halfwidth + _center;
}

template <class T> void RnMexicanHatRng<T>::getSequence(unsigned int n, T* values)
{
    if (!rnDrawsAlike(*_uniRng))
    {
        for (unsigned int i = 0; i < n; ++i) values[i] = evalUnit() * _halfwidth + _center;
        return;
    }
    _uniRng->getSequence(n, values);
    for (unsigned int i = 0; i < n; ++i) values[i] = mapped(values[i]) * _halfwidth + _center;
}

template <class T> T RnMexicanHatRng<T>::getEfficientWidth() const
{
    return _width;
}

template <class T> T RnMexicanHatRng<T>::getEfficientMin() const
{
    return _center - this->getEfficientWidth() / T(2);
}

template <class T> T RnMexicanHatRng<T>::getEfficientMax() const
{
    return _center + this->getEfficientWidth() / T(2);
}

template <class T> T RnMexicanHatRng<T>::getEfficientFraction() const
{
    return T(1);
}

template <class T> T RnMexicanHatRng<T>::getPdf(T x) const
{
    const T p = (T(1) - std::abs(x - _center) * _invHalfwidth) * _invHalfwidth;
    return p > T(0) ? p : T(0);
}

template <class T> void RnMexicanHatRng<T>::restart()
{
    _uniRng->restart();
}

template <class T> const char* RnMexicanHatRng<T>::getName() const
{
    return "Mexican Hat";
}

template <class T> RnRng<T>* RnMexicanHatRng<T>::getUniRng() const
{
    return _uniRng;
}

template class ZU_BASE_API RnMexicanHatRng<float>;
template class ZU_BASE_API RnMexicanHatRng<double>;

} // namespace Zu
