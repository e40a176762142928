// Numbers of which no bit may differ, and the lengths of sequences in which that is looked at.

#ifndef ZU_TESTS_SAMENUMBERS_H
#define ZU_TESTS_SAMENUMBERS_H

#include <cmath>
#include <cstddef>
#include <gtest/gtest.h>
#include <ios>
#include <type_traits>
#include <vector>

namespace support
{

// The same number to the sign of 0, or two NaNs, whose bits no platform promises.
template <class T> bool isSame(T a, T b)
{
    if (std::isnan(a) || std::isnan(b)) return std::isnan(a) && std::isnan(b);
    return a == b && std::signbit(a) == std::signbit(b);
}

template <class T> testing::AssertionResult same(T actual, std::type_identity_t<T> expected)
{
    if (isSame(actual, expected)) return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << std::hexfloat << actual << " and not " << expected << std::defaultfloat;
}

template <class T>
testing::AssertionResult same(const std::vector<T>& actual, const std::vector<T>& expected)
{
    if (actual.size() != expected.size())
        return testing::AssertionFailure()
               << actual.size() << " values and not " << expected.size();
    for (std::size_t i = 0; i < actual.size(); ++i)
        if (!isSame(actual[i], expected[i]))
            return same(actual[i], expected[i]) << " at " << i << " of " << actual.size();
    return testing::AssertionSuccess();
}

// Around the ends of every likely size of a block, and far beyond.
inline constexpr unsigned int SEQUENCE_LENGTHS[] = {
    0,   1,   2,   3,   4,   5,   7,   63,  64,  65,  126,  127,  128,  129,  130, 254,
    255, 256, 257, 258, 510, 511, 512, 513, 514, 769, 1023, 1025, 4095, 4096, 4097};

} // namespace support

#endif
