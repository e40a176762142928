// The radical inverse, digit by digit, with the weights that repeated products give.

#ifndef ZU_TESTS_RADICALINVERSE_H
#define ZU_TESTS_RADICALINVERSE_H

#include <cstdint>

namespace support
{

template <class T> T radicalInverse(std::uint32_t base, std::uint32_t number)
{
    const T inverse = T(1) / T(base);
    T result = T(0);
    T weight = inverse;
    for (std::uint32_t m = number; m != 0;)
    {
        const std::uint32_t digit = m % base;
        m = m / base;
        if (digit != 0)
        {
            const T term = T(digit) * weight;
            result = result + term;
        }
        weight = weight * inverse;
    }
    return result;
}

// The consecutive points of a base; `_number` is that of the last one.
template <class T> struct RadicalInverses
{
    std::uint32_t _base;
    std::uint32_t _number = 0;

    T operator()()
    {
        ++_number;
        return radicalInverse<T>(_base, _number);
    }
};

// The bases that the tests use: the primes of the defaults, bases at which an algorithm might
// switch methods, and those for which one digit is enough.
inline constexpr std::uint32_t BASES[] = {2,   3,   4,   5,    6,    7,     8,         10,
                                          11,  16,  97,  255,  256,  257,   509,       512,
                                          513, 521, 997, 1024, 4096, 65537, 4294967295};

} // namespace support

#endif
