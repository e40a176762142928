// Generators that leave out draws, compared with those that make them.

#ifndef ZU_TESTS_SKIPCHECKS_H
#define ZU_TESTS_SKIPCHECKS_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <utility>

namespace support
{

// The next point of N coordinates.
template <class T, std::size_t N> struct NextPoint
{
    template <class Rng> std::array<T, N> operator()(Rng& rng) const
    {
        std::array<T, N> values{};
        rng.getSample(values.data());
        return values;
    }
};

// The next pair.
template <class T> struct NextPair
{
    template <class Rng> std::pair<T, T> operator()(Rng& rng) const
    {
        std::pair<T, T> values{};
        rng.getSample(values.first, values.second);
        return values;
    }
};

// `draw` returns the next draw of a copy of `start`, in a form that can be compared.
template <class Rng, class Draw> void expectSkipLeavesOutDraws(const Rng& start, Draw draw)
{
    constexpr std::uint64_t MOST = 2000;
    Rng drawn = start;
    for (std::uint64_t n = 0; n <= MOST; ++n, draw(drawn))
    {
        Rng skipped = start;
        skipped.skip(n);
        Rng reference = drawn;
        for (int i = 0; i < 3; ++i) ASSERT_EQ(draw(skipped), draw(reference)) << n << " skipped";
    }
    // Two skips are one of their sum, also where numbers of 32 bits go on with 0.
    for (const std::uint64_t first : {0x7fffffffULL, 0x80000000ULL, 0xffffffffULL, 0x100000000ULL,
                                      0x123456789abULL, 0x7fffffffffffffffULL})
        for (const std::uint64_t second : {1ULL, 2ULL, 0xffffffffULL, 0x100000001ULL})
        {
            Rng twice = start;
            twice.skip(first);
            twice.skip(second);
            Rng once = start;
            once.skip(first + second);
            for (int i = 0; i < 3; ++i)
                ASSERT_EQ(draw(twice), draw(once)) << first << " and " << second << " skipped";
        }
}

} // namespace support

#endif
