#include "base/rnVanDerCorputRng.h"

#include "base/ieeeDivide.h"

#include <algorithm>
#include <limits>

namespace Zu
{

namespace
{

// Adds four numbers to each value, one after the other.
template <class T> void addFour(const T* from, unsigned int n, const T* terms, T* values)
{
    const T term0 = terms[0];
    const T term1 = terms[1];
    const T term2 = terms[2];
    const T term3 = terms[3];
    for (unsigned int i = 0; i < n; ++i) values[i] = (((from[i] + term0) + term1) + term2) + term3;
}

template <class T> void addTwo(const T* from, unsigned int n, const T* terms, T* values)
{
    const T term0 = terms[0];
    const T term1 = terms[1];
    for (unsigned int i = 0; i < n; ++i) values[i] = (from[i] + term0) + term1;
}

template <class T> void addOne(const T* from, unsigned int n, const T* terms, T* values)
{
    const T term = terms[0];
    for (unsigned int i = 0; i < n; ++i) values[i] = from[i] + term;
}

template <class T>
void addAll(const T* from, unsigned int n, const T* terms, unsigned int nTerms, T* values)
{
    if (nTerms == 0) std::copy_n(from, n, values);
    for (unsigned int done = 0; done < nTerms;)
    {
        const unsigned int left = nTerms - done;
        if (left >= 4)
            addFour(from, n, terms + done, values);
        else if (left >= 2)
            addTwo(from, n, terms + done, values);
        else
            addOne(from, n, terms + done, values);
        done += left >= 4 ? 4 : left >= 2 ? 2 : 1;
        from = values;
    }
}

} // namespace

// Points whose numbers differ only in their low digits. A point is summed from its lowest digit on.
// So the sums of the low digits form a table, to which the terms of the high ones are added in
// their order. A digit of 0 adds 0, which changes no sum.
template <class T> class RnVanDerCorputRng<T>::Block
{
public:
    static constexpr unsigned int LARGEST = 512;

    // The number of points of a block that pays off for a sequence of this length; below the base
    // if none does. The bases 0 and 1 have blocks of 1, which behave as their single draws do.
    static unsigned int lengthFor(std::uint32_t base, unsigned int n)
    {
        const std::uint64_t largest = std::min(LARGEST, n / 2);
        std::uint64_t length = 1;
        if (base >= 2)
            while (length * base <= largest) length *= base;
        return static_cast<unsigned int>(length);
    }

    Block(std::uint32_t base, T invBase, unsigned int length)
        : _base(base), _invBase(invBase), _length(length), _weight(invBase)
    {
        _sums[0] = T(0);
        for (unsigned int size = 1; size < length; size *= base)
        {
            for (std::uint32_t digit = 1; digit < base; ++digit)
            {
                const T term = static_cast<T>(digit) * _weight;
                addOne(_sums, size, &term, _sums + digit * size);
            }
            _weight *= _invBase;
        }
    }

    // Writes the point of this number and the following ones, up to `n` and to the end of the
    // block; returns how many.
    unsigned int write(std::uint32_t index, unsigned int n, T* values)
    {
        const std::uint32_t low = index % _length;
        const std::uint32_t toWrap = ~index;
        const unsigned int count = std::min({n, _length - low, toWrap == ~0U ? n : toWrap + 1});
        setTerms(index / _length);
        if (_base == 2 && isExact(index + (count - 1))) joinTerms();
        addAll(_sums + low, count, _terms, _nTerms, values);
        return count;
    }

private:
    void setTerms(std::uint32_t high)
    {
        _nTerms = 0;
        T weight = _weight;
        for (; high != 0; high /= _base)
        {
            const std::uint32_t digit = high % _base;
            if (digit != 0) _terms[_nTerms++] = static_cast<T>(digit) * weight;
            weight *= _invBase;
        }
    }

    // Whether the sums of the points up to this one, in base 2, need no rounding.
    static bool isExact(std::uint32_t index)
    {
        return std::numeric_limits<T>::digits >= 32 ||
               index >> (std::numeric_limits<T>::digits % 32) == 0;
    }

    void joinTerms()
    {
        T sum = T(0);
        for (unsigned int i = 0; i < _nTerms; ++i) sum += _terms[i];
        _terms[0] = sum;
        _nTerms = 1;
    }

    std::uint32_t _base;
    T _invBase;
    unsigned int _length;
    T _weight;
    unsigned int _nTerms = 0;
    T _terms[32];
    T _sums[LARGEST];
};

template <class T> RnVanDerCorputRng<T>::RnVanDerCorputRng() : RnVanDerCorputRng(2) {}

template <class T> RnVanDerCorputRng<T>::RnVanDerCorputRng(unsigned int base) : _index(0)
{
    setBase(base);
}

template <class T> RnVanDerCorputRng<T>::~RnVanDerCorputRng() = default;

template <class T> T RnVanDerCorputRng<T>::draw()
{
    ++_index;
    T result = T(0);
    T weight = _invBase;
    for (std::uint32_t m = _index; m != 0; m /= _base)
    {
        result += static_cast<T>(m % _base) * weight;
        weight *= _invBase;
    }
    return result;
}

template <class T> T RnVanDerCorputRng<T>::operator()()
{
    return draw();
}

template <class T> void RnVanDerCorputRng<T>::getSample(T& value)
{
    value = draw();
}

template <class T> void RnVanDerCorputRng<T>::getSequence(unsigned int n, T* values)
{
    unsigned int done = 0;
    const unsigned int length = Block::lengthFor(_base, n);
    if (length >= _base)
    {
        Block block(_base, _invBase, length);
        while (done < n)
        {
            const unsigned int count = block.write(_index + 1, n - done, values + done);
            _index += count;
            done += count;
        }
    }
    for (; done < n; ++done) values[done] = draw();
}

template <class T> void RnVanDerCorputRng<T>::restart()
{
    _index = 0;
}

template <class T> void RnVanDerCorputRng<T>::restart(unsigned int n)
{
    _index = n;
}

// Numbers of points have 32 bits, and go on with 0.
template <class T> void RnVanDerCorputRng<T>::skip(std::uint64_t n)
{
    _index += static_cast<std::uint32_t>(n);
}

template <class T> const char* RnVanDerCorputRng<T>::getName() const
{
    return "Van der Corput";
}

template <class T> void RnVanDerCorputRng<T>::setBase(unsigned int base)
{
    _base = base;
    _invBase = ieeeDivide(T(1), static_cast<T>(base));
}

template <class T> unsigned int RnVanDerCorputRng<T>::getBase() const
{
    return _base;
}

template <class T> T RnVanDerCorputRng<T>::evalRange(T min, T max)
{
    return draw() * (max - min) + min;
}

template <class T> T RnVanDerCorputRng<T>::evalScaled(T max)
{
    return draw() * max;
}

template class ZU_BASE_API RnVanDerCorputRng<float>;
template class ZU_BASE_API RnVanDerCorputRng<double>;

} // namespace Zu
