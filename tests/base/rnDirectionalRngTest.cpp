#include "base/rnDirectionalRng.h"

#include "base/rnHaltonRng.h"
#include "base/rnSeparableRng.h"

#include "support/scriptedRng.h"

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace
{

using support::failureOf;
using support::roomFor;
using support::same;
using support::SEQUENCE_LENGTHS;
using support::written;
using Zu::RnAsymmetricalSeparableBiRng;
using Zu::RnBiRng;
using Zu::RnCosineHemisphericalRng;
using Zu::RnHaltonBiRng;
using Zu::RnHemisphericalRng;
using Zu::RnSeparableBiRng;
using Zu::RnSphericalRng;
using Zu::RnUniformHemisphericalRng;
using Zu::RnUniformSphericalRng;

template <class T> constexpr T NO_NUMBER = std::numeric_limits<T>::quiet_NaN();

template <class T> struct Constants;

template <> struct Constants<float>
{
    static constexpr float TWO_PI = std::bit_cast<float>(0x40C90FDBU);
    static constexpr float INVERSE_PI = std::bit_cast<float>(0x3EA2F983U);
};

template <> struct Constants<double>
{
    static constexpr double TWO_PI = std::bit_cast<double>(0x401921FB54442D18U);
    static constexpr double INVERSE_PI = std::bit_cast<double>(0x3FD45F306DC9C883U);
};

static_assert(Constants<float>::TWO_PI == 6.2831855F);
static_assert(Constants<double>::TWO_PI == 6.283185307179586);
static_assert(Constants<float>::INVERSE_PI == 0.31830987F);
static_assert(Constants<double>::INVERSE_PI == 0.3183098861837907);
static_assert(Constants<float>::INVERSE_PI / 2 == 0.15915494F);
static_assert(Constants<double>::INVERSE_PI / 2 == 0.15915494309189535);
static_assert(Constants<float>::INVERSE_PI / 4 == 0.07957747F);
static_assert(Constants<double>::INVERSE_PI / 4 == 0.07957747154594767);

// The classes, each with its expected results.
template <class T> struct Sphere
{
    using Value = T;
    using Rng = RnUniformSphericalRng<T>;
    static constexpr const char* NAME = "Uniform spherical";

    static T cosTheta(T u)
    {
        return 2 * u - 1;
    }

    static T density(T)
    {
        return Constants<T>::INVERSE_PI / 4;
    }
};

template <class T> struct Hemisphere
{
    using Value = T;
    using Rng = RnUniformHemisphericalRng<T>;
    static constexpr const char* NAME = "Uniform hemispherical";

    static T cosTheta(T u)
    {
        return u;
    }

    static T density(T)
    {
        return Constants<T>::INVERSE_PI / 2;
    }
};

template <class T> struct CosineHemisphere
{
    using Value = T;
    using Rng = RnCosineHemisphericalRng<T>;
    static constexpr const char* NAME = "Cosine hemispherical";

    static T cosTheta(T u)
    {
        return std::sqrt(u);
    }

    static T density(T cosTheta)
    {
        return cosTheta * Constants<T>::INVERSE_PI;
    }
};

template <class Shape> class RnDirectionalRngTyped : public testing::Test
{
};

using Shapes = testing::Types<Sphere<float>, Sphere<double>, Hemisphere<float>, Hemisphere<double>,
                              CosineHemisphere<float>, CosineHemisphere<double>>;
TYPED_TEST_SUITE(RnDirectionalRngTyped, Shapes);

template <class T> constexpr bool haveTheirInterfaces()
{
    return std::is_base_of_v<RnSphericalRng<T>, RnUniformSphericalRng<T>> &&
           !std::is_base_of_v<RnHemisphericalRng<T>, RnUniformSphericalRng<T>> &&
           std::is_base_of_v<RnHemisphericalRng<T>, RnUniformHemisphericalRng<T>> &&
           std::is_base_of_v<RnHemisphericalRng<T>, RnCosineHemisphericalRng<T>> &&
           std::is_base_of_v<RnSphericalRng<T>, RnHemisphericalRng<T>> &&
           std::has_virtual_destructor_v<RnUniformSphericalRng<T>> &&
           std::has_virtual_destructor_v<RnUniformHemisphericalRng<T>> &&
           std::has_virtual_destructor_v<RnCosineHemisphericalRng<T>> &&
           !std::has_virtual_destructor_v<RnSphericalRng<T>>;
}

static_assert(haveTheirInterfaces<float>() && haveTheirInterfaces<double>());

#if defined(__clang__)
#define ALONE [[gnu::noinline]]
#else
#define ALONE [[gnu::noipa]]
#endif

// Each on its own, so that no compiler joins them to a call of another function of the platform.
template <class T> ALONE T cosineOf(T angle)
{
    return std::cos(angle);
}

template <class T> ALONE T sineOf(T angle)
{
    return std::sin(angle);
}

template <class T> struct Point
{
    T _x;
    T _y;
    T _z;
};

template <class T> T phiOf(T v)
{
    return v * Constants<T>::TWO_PI;
}

template <class T> Point<T> pointOf(T cosTheta, T phi)
{
    const T s = std::sqrt(1 - cosTheta * cosTheta);
    return {cosineOf(phi) * s, sineOf(phi) * s, cosTheta};
}

// Plays back pairs, and writes down where sequences were to go.
template <class T> class ScriptedBiRng : public RnBiRng<T>
{
public:
    explicit ScriptedBiRng(std::vector<std::pair<T, T>> script) : _script(std::move(script)) {}

    virtual ~ScriptedBiRng() = default;

    void getSample(T& x, T& y) override
    {
        ++_nSamples;
        const std::pair<T, T> pair = next();
        x = pair.first;
        y = pair.second;
    }

    void getSequence(unsigned int n, T* x, T* y) override
    {
        ++_nSequences;
        _length = n;
        _arrays = {x, y};
        for (unsigned int i = 0; i < n; ++i)
        {
            const std::pair<T, T> pair = next();
            x[i] = pair.first;
            y[i] = pair.second;
        }
    }

    void getEfficientWidth(T& x, T& y) const override
    {
        x = y = T(1);
    }

    void getEfficientMin(T& x, T& y) const override
    {
        x = y = T(0);
    }

    void getEfficientMax(T& x, T& y) const override
    {
        x = y = T(1);
    }

    T getEfficientFraction() const override
    {
        return T(1);
    }

    T getPdf(T, T) const override
    {
        return T(1);
    }

    void restart() override
    {
        ++_nRestarts;
        _next = 0;
    }

    const char* getName() const override
    {
        return "Scripted";
    }

    unsigned int nSamples() const
    {
        return _nSamples;
    }

    unsigned int nSequences() const
    {
        return _nSequences;
    }

    unsigned int nRestarts() const
    {
        return _nRestarts;
    }

    // Of the last sequence.
    unsigned int length() const
    {
        return _length;
    }

    std::pair<T*, T*> arrays() const
    {
        return _arrays;
    }

private:
    std::pair<T, T> next()
    {
        if (_next == _script.size()) throw std::out_of_range("the script has ended");
        return _script[_next++];
    }

    std::vector<std::pair<T, T>> _script;
    std::size_t _next = 0;
    unsigned int _nSamples = 0;
    unsigned int _nSequences = 0;
    unsigned int _nRestarts = 0;
    unsigned int _length = 0;
    std::pair<T*, T*> _arrays;
};

// The ends, the quarters and pairs at random.
template <class T> std::vector<std::pair<T, T>> manyPairs(unsigned int n)
{
    const T below = std::nextafter(T(1), T(0));
    std::vector<std::pair<T, T>> pairs = {
        {T(0), T(0)},       {T(1), T(1)},     {T(0), T(1)},        {T(1), T(0)},
        {T(0.5), T(0.5)},   {below, below},   {T(0.25), T(0.75)},  {T(0.5), T(0.25)},
        {T(0.125), T(0.0)}, {T(0.1), T(0.9)}, {T(1e-20), T(1e-20)}};
    Zu::RnLecuyerUniformRng<T> random(1, 1618);
    while (pairs.size() < n)
    {
        const T u = random();
        pairs.emplace_back(u, random());
    }
    return pairs;
}

TYPED_TEST(RnDirectionalRngTyped, ASampleIsMappedFromOnePairInEachForm)
{
    using Shape = TypeParam;
    using T = typename Shape::Value;
    const std::vector<std::pair<T, T>> script = manyPairs<T>(500);
    ScriptedBiRng<T> source(script);
    typename Shape::Rng directions(&source);
    for (const auto& [u, v] : script)
    {
        Point<T> point;
        directions.getSampleXYZ(point._x, point._y, point._z);
        const Point<T> expected = pointOf(Shape::cosTheta(u), phiOf(v));
        EXPECT_TRUE(same(point._x, expected._x)) << u << " " << v;
        EXPECT_TRUE(same(point._y, expected._y)) << u << " " << v;
        EXPECT_TRUE(same(point._z, expected._z)) << u << " " << v;
    }
    EXPECT_EQ(source.nSamples(), 500U);
    directions.restart();
    for (const auto& [u, v] : script)
    {
        T cosTheta;
        T phi;
        directions.getSampleCosine(cosTheta, phi);
        EXPECT_TRUE(same(cosTheta, Shape::cosTheta(u))) << u << " " << v;
        EXPECT_TRUE(same(phi, phiOf(v))) << u << " " << v;
    }
    directions.restart();
    for (const auto& [u, v] : script)
    {
        T theta;
        T phi;
        directions.getSampleAngles(theta, phi);
        EXPECT_TRUE(same(theta, std::acos(Shape::cosTheta(u)))) << u << " " << v;
        EXPECT_TRUE(same(phi, phiOf(v))) << u << " " << v;
    }
    EXPECT_EQ(source.nSamples(), 1500U);
    EXPECT_EQ(source.nSequences(), 0U);
}

// The whole block is requested at once, directly into the caller's arrays.
template <class T>
void expectOneBlock(const ScriptedBiRng<T>& source, unsigned int n, const T* first, const T* second)
{
    EXPECT_EQ(source.nSamples(), 0U);
    if (n == 0)
    {
        EXPECT_LE(source.nSequences(), 1U);
        return;
    }
    EXPECT_EQ(source.nSequences(), 1U);
    EXPECT_EQ(source.length(), n);
    EXPECT_EQ(source.arrays().first, first);
    EXPECT_EQ(source.arrays().second, second);
}

TYPED_TEST(RnDirectionalRngTyped, ASequenceOfAnglesIsMappedInTheCallersArrays)
{
    using Shape = TypeParam;
    using T = typename Shape::Value;
    const std::vector<std::pair<T, T>> script = manyPairs<T>(4097);
    for (const unsigned int n : SEQUENCE_LENGTHS)
    {
        ScriptedBiRng<T> source(script);
        typename Shape::Rng directions(&source);
        std::vector<T> theta = roomFor<T>(n);
        std::vector<T> phi = roomFor<T>(n);
        directions.getSequenceAngles(n, theta.data(), phi.data());
        std::vector<T> expectedTheta;
        std::vector<T> expectedPhi;
        for (unsigned int i = 0; i < n; ++i)
        {
            expectedTheta.push_back(std::acos(Shape::cosTheta(script[i].first)));
            expectedPhi.push_back(phiOf(script[i].second));
        }
        EXPECT_TRUE(same(written(theta, n), expectedTheta)) << n;
        EXPECT_TRUE(same(written(phi, n), expectedPhi)) << n;
        expectOneBlock<T>(source, n, theta.data(), phi.data());
    }
}

TYPED_TEST(RnDirectionalRngTyped, ASequenceOfCosinesIsMappedInTheCallersArrays)
{
    using Shape = TypeParam;
    using T = typename Shape::Value;
    const std::vector<std::pair<T, T>> script = manyPairs<T>(4097);
    for (const unsigned int n : SEQUENCE_LENGTHS)
    {
        ScriptedBiRng<T> source(script);
        typename Shape::Rng directions(&source);
        std::vector<T> cosTheta = roomFor<T>(n);
        std::vector<T> phi = roomFor<T>(n);
        directions.getSequenceCosine(n, cosTheta.data(), phi.data());
        std::vector<T> expectedCosine;
        std::vector<T> expectedPhi;
        for (unsigned int i = 0; i < n; ++i)
        {
            expectedCosine.push_back(Shape::cosTheta(script[i].first));
            expectedPhi.push_back(phiOf(script[i].second));
        }
        EXPECT_TRUE(same(written(cosTheta, n), expectedCosine)) << n;
        EXPECT_TRUE(same(written(phi, n), expectedPhi)) << n;
        expectOneBlock<T>(source, n, cosTheta.data(), phi.data());
    }
}

TYPED_TEST(RnDirectionalRngTyped,
           ASequenceOfPointsTakesPhiFromTheFirstValuesAndTheRestFromTheSecond)
{
    using Shape = TypeParam;
    using T = typename Shape::Value;
    const std::vector<std::pair<T, T>> script = manyPairs<T>(4097);
    for (const unsigned int n : SEQUENCE_LENGTHS)
    {
        ScriptedBiRng<T> source(script);
        typename Shape::Rng directions(&source);
        std::vector<T> x = roomFor<T>(n);
        std::vector<T> y = roomFor<T>(n);
        std::vector<T> z = roomFor<T>(n);
        directions.getSequenceXYZ(n, x.data(), y.data(), z.data());
        std::vector<T> expectedX;
        std::vector<T> expectedY;
        std::vector<T> expectedZ;
        for (unsigned int i = 0; i < n; ++i)
        {
            const Point<T> point =
                pointOf(Shape::cosTheta(script[i].second), phiOf(script[i].first));
            expectedX.push_back(point._x);
            expectedY.push_back(point._y);
            expectedZ.push_back(point._z);
        }
        EXPECT_TRUE(same(written(x, n), expectedX)) << n;
        EXPECT_TRUE(same(written(y, n), expectedY)) << n;
        EXPECT_TRUE(same(written(z, n), expectedZ)) << n;
        expectOneBlock<T>(source, n, x.data(), z.data());
    }
}

// The samples of one source after `n` directions of another one, in each form.
template <class Shape, class Source> void expectSameSequences(Source& source, Source& told)
{
    using T = typename Shape::Value;
    typename Shape::Rng directions(&source);
    for (const unsigned int n : SEQUENCE_LENGTHS)
    {
        std::vector<T> u(n);
        std::vector<T> v(n);
        std::vector<T> x = roomFor<T>(n);
        std::vector<T> y = roomFor<T>(n);
        std::vector<T> z = roomFor<T>(n);
        directions.getSequenceXYZ(n, x.data(), y.data(), z.data());
        told.getSequence(n, v.data(), u.data());
        for (unsigned int i = 0; i < n; ++i)
        {
            const Point<T> point = pointOf(Shape::cosTheta(u[i]), phiOf(v[i]));
            u[i] = point._x;
            v[i] = point._y;
            EXPECT_TRUE(same(z[i], point._z)) << i << " of " << n;
        }
        EXPECT_TRUE(same(written(x, n), u)) << n;
        EXPECT_TRUE(same(written(y, n), v)) << n;

        std::vector<T> theta = roomFor<T>(n);
        std::vector<T> phi = roomFor<T>(n);
        directions.getSequenceAngles(n, theta.data(), phi.data());
        told.getSequence(n, u.data(), v.data());
        for (unsigned int i = 0; i < n; ++i)
        {
            u[i] = std::acos(Shape::cosTheta(u[i]));
            v[i] = phiOf(v[i]);
        }
        EXPECT_TRUE(same(written(theta, n), u)) << n;
        EXPECT_TRUE(same(written(phi, n), v)) << n;

        T cosTheta;
        directions.getSampleCosine(cosTheta, phi[0]);
        T expected[2];
        told.getSample(expected[0], expected[1]);
        EXPECT_TRUE(same(cosTheta, Shape::cosTheta(expected[0]))) << n;
        EXPECT_TRUE(same(phi[0], phiOf(expected[1]))) << n;
    }
}

TYPED_TEST(RnDirectionalRngTyped, SequencesFollowALowDiscrepancySource)
{
    using T = typename TypeParam::Value;
    RnHaltonBiRng<T> source;
    RnHaltonBiRng<T> told;
    expectSameSequences<TypeParam>(source, told);
}

TYPED_TEST(RnDirectionalRngTyped, SequencesFollowASeparableSource)
{
    using T = typename TypeParam::Value;
    support::LecuyerSource<T> first;
    support::LecuyerSource<T> second;
    RnSeparableBiRng<T> source(&first._rng);
    RnSeparableBiRng<T> told(&second._rng);
    expectSameSequences<TypeParam>(source, told);
}

TYPED_TEST(RnDirectionalRngTyped, SequencesFollowASourceOfUnlikeCoordinates)
{
    using T = typename TypeParam::Value;
    support::NumRecSource<T> first;
    support::NumRecSource<T> second;
    support::VanDerCorputSource<T> third;
    support::VanDerCorputSource<T> fourth;
    RnAsymmetricalSeparableBiRng<T> source(&first._rng, &third._rng);
    RnAsymmetricalSeparableBiRng<T> told(&second._rng, &fourth._rng);
    expectSameSequences<TypeParam>(source, told);
}

// The first point is (1/2, 1/3), so the polar part comes from the one or the other.
TYPED_TEST(RnDirectionalRngTyped, SamplesAndSequencesOfPointsDifferOnALowDiscrepancySource)
{
    using Shape = TypeParam;
    using T = typename Shape::Value;
    RnHaltonBiRng<T> source;
    typename Shape::Rng directions(&source);
    Point<T> sample;
    directions.getSampleXYZ(sample._x, sample._y, sample._z);
    directions.restart();
    Point<T> first;
    directions.getSequenceXYZ(1, &first._x, &first._y, &first._z);
    EXPECT_TRUE(same(sample._z, Shape::cosTheta(T(0.5))));
    EXPECT_NEAR(static_cast<double>(first._z), static_cast<double>(Shape::cosTheta(T(1) / T(3))),
                1e-6);
    EXPECT_NE(sample._x, first._x);
    EXPECT_NE(sample._y, first._y);
    EXPECT_NE(sample._z, first._z);
}

TYPED_TEST(RnDirectionalRngTyped, PointsLieOnTheUnitSphereOnTheSideOfTheirShape)
{
    using T = typename TypeParam::Value;
    RnHaltonBiRng<T> source;
    typename TypeParam::Rng directions(&source);
    const bool bothSides = std::is_same_v<TypeParam, Sphere<T>>;
    unsigned int nBelow = 0;
    for (int i = 0; i < 500; ++i)
    {
        Point<T> p;
        directions.getSampleXYZ(p._x, p._y, p._z);
        EXPECT_NEAR(static_cast<double>(p._x * p._x + p._y * p._y + p._z * p._z), 1, 1e-6);
        if (p._z < 0) ++nBelow;
    }
    EXPECT_EQ(nBelow > 200, bothSides);
    EXPECT_EQ(nBelow == 0, !bothSides);
}

TYPED_TEST(RnDirectionalRngTyped, TheDensityIsThatOfTheShapeInEachForm)
{
    using Shape = TypeParam;
    using T = typename Shape::Value;
    ScriptedBiRng<T> source({});
    const typename Shape::Rng directions(&source);
    for (int i = -20; i <= 20; ++i)
    {
        const T z = T(i) / T(20);
        const T theta = T(i + 20) * T(0.0785);
        EXPECT_TRUE(same(directions.getPdfXYZ(T(0.6), T(-0.8), z), Shape::density(z))) << z;
        EXPECT_TRUE(same(directions.getPdfCosine(z, T(2)), Shape::density(z))) << z;
        EXPECT_TRUE(same(directions.getPdfAngles(theta, T(2)), Shape::density(cosineOf(theta))))
            << theta;
    }
}

// Only the polar part counts.
TYPED_TEST(RnDirectionalRngTyped, TheDensityDoesNotLookAtTheOtherArguments)
{
    using Shape = TypeParam;
    using T = typename Shape::Value;
    ScriptedBiRng<T> source({});
    const typename Shape::Rng directions(&source);
    for (const T other : {T(0), T(100), T(-1), NO_NUMBER<T>, std::numeric_limits<T>::infinity()})
    {
        EXPECT_TRUE(same(directions.getPdfXYZ(other, -other, T(0.5)), Shape::density(T(0.5))));
        EXPECT_TRUE(same(directions.getPdfCosine(T(0.5), other), Shape::density(T(0.5))));
        EXPECT_TRUE(same(directions.getPdfAngles(T(1), other), Shape::density(cosineOf(T(1)))));
    }
}

TYPED_TEST(RnDirectionalRngTyped, AMissingSourceRaises)
{
    EXPECT_EQ(failureOf([] { typename TypeParam::Rng directions(nullptr); }),
              "Assertion '_rng' failed.");
}

TYPED_TEST(RnDirectionalRngTyped, IsNamedAfterItsShape)
{
    using T = typename TypeParam::Value;
    ScriptedBiRng<T> source({});
    const typename TypeParam::Rng directions(&source);
    EXPECT_STREQ(directions.getName(), TypeParam::NAME);
}

TYPED_TEST(RnDirectionalRngTyped, ARestartIsTheSourcesOnce)
{
    using Shape = TypeParam;
    using T = typename Shape::Value;
    ScriptedBiRng<T> source({{T(0.25), T(0.5)}, {T(0.75), T(0.125)}});
    typename Shape::Rng directions(&source);
    T cosTheta;
    T phi;
    directions.getSampleCosine(cosTheta, phi);
    EXPECT_EQ(source.nRestarts(), 0U);
    directions.restart();
    EXPECT_EQ(source.nRestarts(), 1U);
    directions.getSampleCosine(cosTheta, phi);
    EXPECT_TRUE(same(cosTheta, Shape::cosTheta(T(0.25))));
}

TYPED_TEST(RnDirectionalRngTyped, TwoOnOneSourceAndCopiesShareItsPairs)
{
    using Shape = TypeParam;
    using T = typename Shape::Value;
    const std::vector<std::pair<T, T>> script = manyPairs<T>(20);
    ScriptedBiRng<T> source(script);
    typename Shape::Rng first(&source);
    typename Shape::Rng second(&source);
    typename Shape::Rng copy(first);
    for (std::size_t i = 0; i + 3 <= script.size(); i += 3)
    {
        T cosTheta;
        T phi;
        first.getSampleCosine(cosTheta, phi);
        EXPECT_TRUE(same(cosTheta, Shape::cosTheta(script[i].first)));
        second.getSampleCosine(cosTheta, phi);
        EXPECT_TRUE(same(cosTheta, Shape::cosTheta(script[i + 1].first)));
        copy.getSampleCosine(cosTheta, phi);
        EXPECT_TRUE(same(cosTheta, Shape::cosTheta(script[i + 2].first)));
    }
}

TYPED_TEST(RnDirectionalRngTyped, ItsEndLeavesTheSourceAlone)
{
    using T = typename TypeParam::Value;
    ScriptedBiRng<T> source({{T(0.25), T(0.5)}});
    {
        const typename TypeParam::Rng directions(&source);
    }
    EXPECT_EQ(source.nRestarts(), 0U);
    EXPECT_EQ(source.nSamples(), 0U);
}

// A source may reach 1 in both values.
TYPED_TEST(RnDirectionalRngTyped, ValuesOfOneGiveTheNorthPole)
{
    using T = typename TypeParam::Value;
    ScriptedBiRng<T> source({{T(1), T(1)}, {T(1), T(1)}, {T(1), T(1)}});
    typename TypeParam::Rng directions(&source);
    T theta;
    T phi;
    directions.getSampleAngles(theta, phi);
    EXPECT_TRUE(same(theta, T(0)));
    EXPECT_TRUE(same(phi, Constants<T>::TWO_PI));
    Point<T> point;
    directions.getSampleXYZ(point._x, point._y, point._z);
    EXPECT_EQ(point._x, T(0));
    EXPECT_EQ(point._y, T(0));
    EXPECT_EQ(point._z, T(1));
}

template <class T> class RnDirectionalRngPrecisions : public testing::Test
{
};

using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(RnDirectionalRngPrecisions, Precisions);

TYPED_TEST(RnDirectionalRngPrecisions, ZerosGiveTheSouthPoleOfTheSphere)
{
    using T = TypeParam;
    ScriptedBiRng<T> source({{T(0), T(0)}, {T(0), T(0)}});
    RnUniformSphericalRng<T> directions(&source);
    T cosTheta;
    T phi;
    directions.getSampleCosine(cosTheta, phi);
    EXPECT_TRUE(same(cosTheta, T(-1)));
    EXPECT_TRUE(same(phi, T(0)));
    Point<T> point;
    directions.getSampleXYZ(point._x, point._y, point._z);
    EXPECT_TRUE(same(point._x, T(0)));
    EXPECT_TRUE(same(point._y, T(0)));
    EXPECT_TRUE(same(point._z, T(-1)));
}

template <class Shape> void expectTheSameEverywhere()
{
    using T = typename Shape::Value;
    ScriptedBiRng<T> source({});
    const typename Shape::Rng directions(&source);
    const T density = Shape::density(T(0));
    for (const T x : {T(-1), T(0), T(7), NO_NUMBER<T>, std::numeric_limits<T>::infinity()})
    {
        EXPECT_TRUE(same(directions.getPdfXYZ(x, x, x), density)) << x;
        EXPECT_TRUE(same(directions.getPdfCosine(x, x), density)) << x;
        EXPECT_TRUE(same(directions.getPdfAngles(x, x), density)) << x;
    }
}

TYPED_TEST(RnDirectionalRngPrecisions, AnEvenDensityHoldsForEveryArgument)
{
    expectTheSameEverywhere<Sphere<TypeParam>>();
    expectTheSameEverywhere<Hemisphere<TypeParam>>();
}

TYPED_TEST(RnDirectionalRngPrecisions, TheUniformHemisphereAnswersItsDensityBelowTheHorizonToo)
{
    using T = TypeParam;
    ScriptedBiRng<T> source({});
    const RnUniformHemisphericalRng<T> directions(&source);
    EXPECT_TRUE(same(directions.getPdfXYZ(T(0), T(0), T(-1)), Constants<T>::INVERSE_PI / 2));
    EXPECT_TRUE(same(directions.getPdfXYZ(T(0), T(0), T(1)), Constants<T>::INVERSE_PI / 2));
    EXPECT_TRUE(same(directions.getPdfAngles(T(3), T(0)), Constants<T>::INVERSE_PI / 2));
    EXPECT_TRUE(same(directions.getPdfCosine(T(-0.5), T(0)), Constants<T>::INVERSE_PI / 2));
}

TYPED_TEST(RnDirectionalRngPrecisions, TheCosineDensityIsNegativeBelowTheHorizon)
{
    using T = TypeParam;
    ScriptedBiRng<T> source({});
    const RnCosineHemisphericalRng<T> directions(&source);
    EXPECT_TRUE(same(directions.getPdfXYZ(T(0), T(0), T(-1)), -Constants<T>::INVERSE_PI));
    EXPECT_TRUE(same(directions.getPdfCosine(T(-0.5), T(0)), -Constants<T>::INVERSE_PI / 2));
    EXPECT_LT(directions.getPdfAngles(T(3), T(0)), T(0));
    EXPECT_TRUE(same(directions.getPdfXYZ(T(0), T(0), T(1)), Constants<T>::INVERSE_PI));
    EXPECT_TRUE(same(directions.getPdfXYZ(T(0.6), T(0), T(0)), T(0)));
}

} // namespace
