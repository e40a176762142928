// What the tests of sample sources share: bitwise comparison of values, and sequences of all
// lengths at which a block begins or ends.

#ifndef ZU_TESTS_SAMPLECHECKS_H
#define ZU_TESTS_SAMPLECHECKS_H

#include "base/rnRng.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <iomanip>
#include <limits>
#include <memory>
#include <set>
#include <type_traits>
#include <vector>

// A separate namespace, as headers of other tests in the same program use the same names.
namespace support
{
inline namespace sampleTests
{

template <class T> auto bitsOf(T value)
{
    using Bits =
        std::conditional_t<sizeof(T) == sizeof(std::uint32_t), std::uint32_t, std::uint64_t>;
    return std::bit_cast<Bits>(value);
}

// Equal bit for bit; otherwise the first difference is reported.
template <class T>
testing::AssertionResult sameBits(const std::vector<T>& values, const std::vector<T>& expected)
{
    if (values.size() != expected.size())
        return testing::AssertionFailure()
               << values.size() << " values, expected " << expected.size();
    if (values.empty() ||
        std::memcmp(values.data(), expected.data(), values.size() * sizeof(T)) == 0)
        return testing::AssertionSuccess();
    std::size_t at = 0;
    while (bitsOf(values[at]) == bitsOf(expected[at])) ++at;
    return testing::AssertionFailure()
           << "value " << at << " of " << values.size() << " is "
           << std::setprecision(std::numeric_limits<T>::max_digits10) << values[at] << " (0x"
           << std::hex << bitsOf(values[at]) << "), expected " << expected[at] << " (0x"
           << bitsOf(expected[at]) << ")";
}

template <class T> testing::AssertionResult sameBits(T value, T expected)
{
    return sameBits(std::vector<T>{value}, std::vector<T>{expected});
}

// All lengths from 0 to 130; the neighbourhoods of 97, of its double, and of every power of two up
// to 4096.
inline std::vector<unsigned int> sequenceLengths()
{
    std::set<unsigned int> lengths = {193, 194, 195};
    for (unsigned int length = 0; length <= 130; ++length) lengths.insert(length);
    for (unsigned int power = 256; power <= 4096; power *= 2)
        lengths.insert({power - 1, power, power + 1, power + 8});
    return {lengths.begin(), lengths.end()};
}

// An array with guard values in front and behind that must not change. Its start cycles through the
// alignments.
template <class T> class GuardedArray
{
public:
    explicit GuardedArray(unsigned int n)
        : _front(1 + n % 3), _size(n), _values(_front + n + 2, GUARD)
    {
    }

    T* data()
    {
        return _values.data() + _front;
    }

    T operator[](std::size_t i) const
    {
        return _values[_front + i];
    }

    std::vector<T> values() const
    {
        return std::vector<T>(_values.begin() + static_cast<std::ptrdiff_t>(_front),
                              _values.begin() + static_cast<std::ptrdiff_t>(_front + _size));
    }

    // Whether the guard values, or all values, are unchanged.
    bool guardsAreIntact() const
    {
        return std::all_of(_values.begin(), _values.begin() + static_cast<std::ptrdiff_t>(_front),
                           isGuard) &&
               std::all_of(_values.begin() + static_cast<std::ptrdiff_t>(_front + _size),
                           _values.end(), isGuard);
    }

    bool isUntouched() const
    {
        return std::all_of(_values.begin(), _values.end(), isGuard);
    }

private:
    // A value that no source gives.
    static constexpr T GUARD = T(-12345.5);

    static bool isGuard(T value)
    {
        return bitsOf(value) == bitsOf(GUARD);
    }

    std::size_t _front;
    std::size_t _size;
    std::vector<T> _values;
};

template <class T> std::vector<T> sequenceOf(Zu::RnRng<T>& rng, unsigned int n)
{
    GuardedArray<T> array(n);
    rng.getSequence(n, array.data());
    EXPECT_TRUE(array.guardsAreIntact()) << "length " << n;
    return array.values();
}

// Single draws, alternately by both operations.
template <class T> std::vector<T> drawsOf(Zu::RnRng<T>& rng, unsigned int n)
{
    std::vector<T> values(n, T(-1));
    for (unsigned int i = 0; i < n; ++i)
        if (i % 2 == 0)
            values[i] = rng();
        else
            rng.getSample(values[i]);
    return values;
}

// The next values of a reference, which is called once for each.
template <class T, class Reference> std::vector<T> valuesOf(Reference& reference, unsigned int n)
{
    std::vector<T> values;
    for (unsigned int i = 0; i < n; ++i) values.push_back(reference());
    return values;
}

// Consecutive points, coordinate by coordinate.
template <class T, int N> std::vector<T> pointsOf(Zu::RnMultiRng<T, N>& rng, unsigned int n)
{
    std::vector<T> values;
    for (unsigned int i = 0; i < n; ++i)
    {
        GuardedArray<T> point(N);
        rng.getSample(point.data());
        EXPECT_TRUE(point.guardsAreIntact());
        const std::vector<T> coordinates = point.values();
        values.insert(values.end(), coordinates.begin(), coordinates.end());
    }
    return values;
}

template <class T> std::vector<T> pointsOf(Zu::RnBiRng<T>& rng, unsigned int n)
{
    std::vector<T> values(2 * std::size_t(n), T(-1));
    for (std::size_t i = 0; i < n; ++i) rng.getSample(values[2 * i], values[2 * i + 1]);
    return values;
}

template <class T, int N> std::vector<T> sequenceOf(Zu::RnMultiRng<T, N>& rng, unsigned int n)
{
    std::vector<GuardedArray<T>> coordinates(N, GuardedArray<T>(n));
    std::array<T*, N> arrays;
    for (std::size_t d = 0; d < N; ++d) arrays[d] = coordinates[d].data();
    const std::array<T*, N> before = arrays;
    rng.getSequence(n, arrays.data());
    EXPECT_EQ(arrays, before);

    std::vector<T> values;
    for (std::size_t i = 0; i < n; ++i)
        for (const GuardedArray<T>& coordinate : coordinates) values.push_back(coordinate[i]);
    for (const GuardedArray<T>& coordinate : coordinates)
        EXPECT_TRUE(coordinate.guardsAreIntact()) << "length " << n;
    return values;
}

template <class T> std::vector<T> sequenceOf(Zu::RnBiRng<T>& rng, unsigned int n)
{
    GuardedArray<T> x(n);
    GuardedArray<T> y(n);
    rng.getSequence(n, x.data(), y.data());
    EXPECT_TRUE(x.guardsAreIntact() && y.guardsAreIntact()) << "length " << n;
    std::vector<T> values;
    for (std::size_t i = 0; i < n; ++i) values.insert(values.end(), {x[i], y[i]});
    return values;
}

// What a reference gives for `n` points, coordinate by coordinate.
template <class T, class Reference>
std::vector<T> referencePoints(Reference& reference, unsigned int n)
{
    std::vector<T> values;
    for (unsigned int i = 0; i < n; ++i)
    {
        const auto point = reference();
        values.insert(values.end(), point.begin(), point.end());
    }
    return values;
}

// A sequence, single draws, another sequence and single draws again are the values that the
// reference gives, bit for bit.
template <class T, class Reference>
testing::AssertionResult streamIs(Zu::RnRng<T>& rng, Reference& reference, unsigned int length)
{
    const unsigned int second = 5 + length % 61;
    for (const unsigned int n : {length, second})
    {
        testing::AssertionResult result = sameBits(sequenceOf(rng, n), valuesOf<T>(reference, n));
        if (!result) return result << " in a sequence of " << n;
        result = sameBits(drawsOf(rng, 4), valuesOf<T>(reference, 4));
        if (!result) return result << " in draws behind a sequence of " << n;
    }
    return testing::AssertionSuccess();
}

// The same for points.
template <class T, class Rng, class Reference>
testing::AssertionResult pointsAre(Rng& rng, Reference& reference, unsigned int length)
{
    const unsigned int second = 5 + length % 61;
    for (const unsigned int n : {length, second})
    {
        testing::AssertionResult result =
            sameBits(sequenceOf(rng, n), referencePoints<T>(reference, n));
        if (!result) return result << " in a sequence of " << n;
        result = sameBits(pointsOf(rng, 3), referencePoints<T>(reference, 3));
        if (!result) return result << " in points behind a sequence of " << n;
    }
    return testing::AssertionSuccess();
}

// The properties of range and density that all uniform sources of single values share.
template <class T> void expectUniformOnUnitInterval(const Zu::RnRng<T>& rng)
{
    EXPECT_EQ(rng.getEfficientWidth(), T(1));
    EXPECT_EQ(rng.getEfficientMin(), T(0));
    EXPECT_EQ(rng.getEfficientMax(), T(1));
    EXPECT_EQ(rng.getEfficientFraction(), T(1));
    using Limits = std::numeric_limits<T>;
    constexpr T BELOW_ONE = T(1) - Limits::epsilon() / 2;
    for (const T inside : {T(0), -T(0), Limits::denorm_min(), T(0.5), BELOW_ONE})
        EXPECT_TRUE(sameBits(rng.getPdf(inside), T(1))) << inside;
    for (const T outside :
         {T(1), T(1) + Limits::epsilon(), T(2), Limits::infinity(), -Limits::denorm_min(), T(-1),
          -Limits::infinity(), Limits::quiet_NaN(), -Limits::quiet_NaN()})
        EXPECT_TRUE(sameBits(rng.getPdf(outside), T(0))) << outside;
}

template <class T> void expectUniformOnUnitSquare(const Zu::RnBiRng<T>& rng)
{
    T x = T(7);
    T y = T(7);
    rng.getEfficientWidth(x, y);
    EXPECT_EQ(std::vector<T>({x, y}), std::vector<T>(2, T(1)));
    rng.getEfficientMin(x, y);
    EXPECT_EQ(std::vector<T>({x, y}), std::vector<T>(2, T(0)));
    rng.getEfficientMax(x, y);
    EXPECT_EQ(std::vector<T>({x, y}), std::vector<T>(2, T(1)));
    EXPECT_EQ(rng.getEfficientFraction(), T(1));
    constexpr T NAN_VALUE = std::numeric_limits<T>::quiet_NaN();
    EXPECT_TRUE(sameBits(rng.getPdf(T(0), T(0)), T(1)));
    EXPECT_TRUE(sameBits(rng.getPdf(T(0.25), T(0.75)), T(1)));
    for (const T outside : {T(1), T(-0.25), NAN_VALUE})
    {
        EXPECT_TRUE(sameBits(rng.getPdf(outside, T(0.5)), T(0))) << outside;
        EXPECT_TRUE(sameBits(rng.getPdf(T(0.5), outside), T(0))) << outside;
    }
}

template <class T, int N> void expectUniformOnUnitBox(const Zu::RnMultiRng<T, N>& rng)
{
    GuardedArray<T> values(N);
    rng.getEfficientWidth(values.data());
    EXPECT_EQ(values.values(), std::vector<T>(N, T(1)));
    rng.getEfficientMin(values.data());
    EXPECT_EQ(values.values(), std::vector<T>(N, T(0)));
    rng.getEfficientMax(values.data());
    EXPECT_EQ(values.values(), std::vector<T>(N, T(1)));
    EXPECT_TRUE(values.guardsAreIntact());
    EXPECT_EQ(rng.getEfficientFraction(), T(1));

    std::array<T, N> point;
    point.fill(T(0));
    EXPECT_TRUE(sameBits(rng.getPdf(point.data()), T(1)));
    constexpr T NAN_VALUE = std::numeric_limits<T>::quiet_NaN();
    for (std::size_t d = 0; d < N; ++d)
        for (const T outside : {T(1), T(-0.25), NAN_VALUE})
        {
            point.fill(T(0.5));
            EXPECT_TRUE(sameBits(rng.getPdf(point.data()), T(1)));
            point[d] = outside;
            EXPECT_TRUE(sameBits(rng.getPdf(point.data()), T(0))) << d << " " << outside;
        }
}

// An object of a derived class, made from these arguments, is destroyed completely through this
// type.
template <class Rng, class... Arguments> void expectEndsThroughItsType(Arguments... arguments)
{
    struct Derived : Rng
    {
        Derived(bool& ended, Arguments... more) : Rng(more...), _ended(ended) {}
        ~Derived() override
        {
            _ended = true;
        }
        bool& _ended;
    };
    bool ended = false;
    std::unique_ptr<Rng> rng = std::make_unique<Derived>(ended, arguments...);
    rng.reset();
    EXPECT_TRUE(ended);
}

// Every way of drawing a sample advances the source by one step.
template <class T, class Rng, class Reference>
void expectEveryWayToDrawIsOneStep(Rng rng, Reference reference, int rounds)
{
    T value;
    for (int i = 0; i < rounds; ++i)
    {
        EXPECT_TRUE(sameBits(rng.eval(), reference()));
        EXPECT_TRUE(sameBits(rng(), reference()));
        rng.getSample(value);
        EXPECT_TRUE(sameBits(value, reference()));
        rng.getSequence(1, &value);
        EXPECT_TRUE(sameBits(value, reference()));
    }
}

} // namespace sampleTests
} // namespace support

#endif
