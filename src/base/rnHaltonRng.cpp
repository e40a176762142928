#include "base/rnHaltonRng.h"

namespace Zu
{

namespace
{

constexpr unsigned int PRIMES[] = {2, 3, 5};

} // namespace

template <class T, int N>
RnHaltonMultiRng<T, N>::RnHaltonMultiRng() : RnHaltonMultiRng(static_cast<const unsigned*>(PRIMES))
{
}

template <class T, int N> RnHaltonMultiRng<T, N>::RnHaltonMultiRng(const unsigned int* const primes)
{
    setPrimeNumbers(primes);
}

template <class T, int N> RnHaltonMultiRng<T, N>::~RnHaltonMultiRng() = default;

template <class T, int N> void RnHaltonMultiRng<T, N>::getSample(T* const values)
{
    for (int i = 0; i < N; ++i) values[i] = _rngs[i]();
}

template <class T, int N> void RnHaltonMultiRng<T, N>::getSequence(unsigned int n, T** const arrays)
{
    for (int i = 0; i < N; ++i) _rngs[i].getSequence(n, arrays[i]);
}

template <class T, int N> void RnHaltonMultiRng<T, N>::restart()
{
    restart(0);
}

template <class T, int N> void RnHaltonMultiRng<T, N>::restart(unsigned int n)
{
    for (RnVanDerCorputRng<T>& rng : _rngs) rng.restart(n);
}

template <class T, int N> void RnHaltonMultiRng<T, N>::skip(std::uint64_t n)
{
    for (RnVanDerCorputRng<T>& rng : _rngs) rng.skip(n);
}

template <class T, int N> const char* RnHaltonMultiRng<T, N>::getName() const
{
    return "Halton";
}

template <class T, int N>
void RnHaltonMultiRng<T, N>::getPrimeNumbers(unsigned int* const primes) const
{
    for (int i = 0; i < N; ++i) primes[i] = _rngs[i].getBase();
}

template <class T, int N>
void RnHaltonMultiRng<T, N>::setPrimeNumbers(const unsigned int* const primes)
{
    for (int i = 0; i < N; ++i) _rngs[i].setBase(primes[i]);
}

template <class T> RnHaltonBiRng<T>::RnHaltonBiRng() = default;

template <class T> RnHaltonBiRng<T>::RnHaltonBiRng(unsigned int prime0, unsigned int prime1)
{
    const unsigned int primes[2] = {prime0, prime1};
    _rng.setPrimeNumbers(primes);
}

template <class T> RnHaltonBiRng<T>::~RnHaltonBiRng() = default;

template <class T> void RnHaltonBiRng<T>::restart(unsigned int n)
{
    _rng.restart(n);
}

template <class T>
void RnHaltonBiRng<T>::getPrimeNumbers(unsigned int& prime0, unsigned int& prime1) const
{
    unsigned int primes[2];
    _rng.getPrimeNumbers(primes);
    prime0 = primes[0];
    prime1 = primes[1];
}

template class ZU_BASE_API RnHaltonMultiRng<float, 2>;
template class ZU_BASE_API RnHaltonMultiRng<float, 3>;
template class ZU_BASE_API RnHaltonMultiRng<double, 2>;
template class ZU_BASE_API RnHaltonMultiRng<double, 3>;
template class ZU_BASE_API RnHaltonBiRng<float>;
template class ZU_BASE_API RnHaltonBiRng<double>;

} // namespace Zu
