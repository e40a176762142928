#include "base/rnSeparableRng.h"

#include "base/rnGaussianRng.h"
#include "base/rnHaltonRng.h"

#include "support/scriptedRng.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace
{

using support::drawsOf;
using support::failureOf;
using support::forEachSource;
using support::roomFor;
using support::same;
using support::SEQUENCE_LENGTHS;
using support::written;
using Zu::RnAsymmetricalSeparableBiRng;
using Zu::RnBiRng;
using Zu::RnGaussianRng;
using Zu::RnMultiRng;
using Zu::RnRng;
using Zu::RnSeparableBiRng;
using Zu::RnSeparableMultiRng;
using Zu::RnVanDerCorputRng;

template <class T> class RnSeparableRngTyped : public testing::Test
{
};

using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(RnSeparableRngTyped, Precisions);

template <class T> constexpr bool areSources()
{
    return std::is_base_of_v<RnBiRng<T>, RnSeparableBiRng<T>> &&
           std::is_base_of_v<RnBiRng<T>, RnAsymmetricalSeparableBiRng<T>> &&
           std::is_base_of_v<RnMultiRng<T, 3>, RnSeparableMultiRng<T, 3>> &&
           std::has_virtual_destructor_v<RnSeparableBiRng<T>> &&
           std::has_virtual_destructor_v<RnAsymmetricalSeparableBiRng<T>> &&
           std::has_virtual_destructor_v<RnSeparableMultiRng<T, 3>> &&
           !std::has_virtual_destructor_v<RnBiRng<T>> &&
           !std::has_virtual_destructor_v<RnMultiRng<T, 3>>;
}

static_assert(areSources<float>() && areSources<double>());

// The calls of a test's sources, in order: the label of the source, "d" for a single draw, "s" and
// the length for a sequence, "r" for a restart.
using Calls = std::vector<std::string>;

// Counts up from a start, in steps of 1, and records its calls. Its values distinguish it from
// others.
template <class T> class CountingRng : public RnRng<T>
{
public:
    CountingRng(Calls& calls, std::string label, T start, T spread = T(1))
        : _calls(calls), _label(std::move(label)), _start(start), _next(start), _spread(spread)
    {
    }

    virtual ~CountingRng() = default;

    T operator()() override
    {
        _calls.push_back(_label + "d");
        return next();
    }

    void getSample(T& value) override
    {
        _calls.push_back(_label + "d");
        value = next();
    }

    void getSequence(unsigned int n, T* values) override
    {
        _calls.push_back(_label + "s" + std::to_string(n));
        for (unsigned int i = 0; i < n; ++i) values[i] = next();
    }

    T getEfficientWidth() const override
    {
        return T(3.3) * _spread;
    }

    T getEfficientMin() const override
    {
        return T(-1.1) * _spread;
    }

    T getEfficientMax() const override
    {
        return T(2.2) * _spread;
    }

    T getEfficientFraction() const override
    {
        return T(0.7) / _spread;
    }

    T getPdf(T x) const override
    {
        return (x * T(0.3) + T(0.1)) / _spread;
    }

    void restart() override
    {
        _calls.push_back(_label + "r");
        _next = _start;
    }

    const char* getName() const override
    {
        return "Counting";
    }

private:
    T next()
    {
        const T value = _next;
        _next += T(1);
        return value;
    }

    Calls& _calls;
    std::string _label;
    T _start;
    T _next;
    T _spread;
};

template <class T> struct Pair
{
    T _x = support::UNTOUCHED<T>;
    T _y = support::UNTOUCHED<T>;
};

template <class T> Pair<T> sampleOf(RnBiRng<T>& source)
{
    Pair<T> pair;
    source.getSample(pair._x, pair._y);
    return pair;
}

template <class T> using Triple = std::array<T, 3>;

TYPED_TEST(RnSeparableRngTyped, ASampleInterleavesTheCoordinates)
{
    using T = TypeParam;
    Calls calls;
    CountingRng<T> source(calls, "", T(10));
    RnSeparableBiRng<T> pairs(&source);
    for (int i = 0; i < 5; ++i)
    {
        const Pair<T> pair = sampleOf<T>(pairs);
        EXPECT_TRUE(same(pair._x, T(10 + 2 * i)));
        EXPECT_TRUE(same(pair._y, T(11 + 2 * i)));
    }
    EXPECT_EQ(calls, Calls(10, "d"));
}

TYPED_TEST(RnSeparableRngTyped, ASampleOfATripleInterleavesTheCoordinates)
{
    using T = TypeParam;
    Calls calls;
    CountingRng<T> source(calls, "", T(10));
    RnSeparableMultiRng<T, 3> triples(&source);
    for (int i = 0; i < 5; ++i)
    {
        T values[4] = {-1, -1, -1, -1};
        triples.getSample(values);
        for (int j = 0; j < 3; ++j) EXPECT_TRUE(same(values[j], T(10 + 3 * i + j)));
        EXPECT_EQ(values[3], T(-1));
    }
    EXPECT_EQ(calls, Calls(15, "d"));
}

TYPED_TEST(RnSeparableRngTyped, ASampleTakesEachCoordinateFromItsOwnSourceXFirst)
{
    using T = TypeParam;
    Calls calls;
    CountingRng<T> first(calls, "0", T(10));
    CountingRng<T> second(calls, "1", T(500));
    RnAsymmetricalSeparableBiRng<T> pairs(&first, &second);
    for (int i = 0; i < 2; ++i)
    {
        const Pair<T> pair = sampleOf<T>(pairs);
        EXPECT_TRUE(same(pair._x, T(10 + i)));
        EXPECT_TRUE(same(pair._y, T(500 + i)));
    }
    EXPECT_EQ(calls, (Calls{"0d", "1d", "0d", "1d"}));
}

// Numbers of a script: the first n are x, the next n are y.
TYPED_TEST(RnSeparableRngTyped, ASequenceAsksOnceForEachWholeCoordinate)
{
    using T = TypeParam;
    for (const unsigned int n : SEQUENCE_LENGTHS)
    {
        if (n == 0) continue;
        Calls calls;
        CountingRng<T> source(calls, "", T(10));
        RnSeparableBiRng<T> pairs(&source);
        std::vector<T> x = roomFor<T>(n);
        std::vector<T> y = roomFor<T>(n);
        pairs.getSequence(n, x.data(), y.data());
        std::vector<T> expectedX;
        std::vector<T> expectedY;
        for (unsigned int i = 0; i < n; ++i)
        {
            expectedX.push_back(static_cast<T>(10 + i));
            expectedY.push_back(static_cast<T>(10 + n + i));
        }
        EXPECT_TRUE(same(written(x, n), expectedX)) << n;
        EXPECT_TRUE(same(written(y, n), expectedY)) << n;
        EXPECT_EQ(calls, Calls(2, "s" + std::to_string(n)));
    }
}

TYPED_TEST(RnSeparableRngTyped, ASequenceOfTriplesAsksOnceForEachWholeCoordinate)
{
    using T = TypeParam;
    for (const unsigned int n : SEQUENCE_LENGTHS)
    {
        if (n == 0) continue;
        Calls calls;
        CountingRng<T> source(calls, "", T(10));
        RnSeparableMultiRng<T, 3> triples(&source);
        std::vector<T> rooms[3] = {roomFor<T>(n), roomFor<T>(n), roomFor<T>(n)};
        T* arrays[3] = {rooms[0].data(), rooms[1].data(), rooms[2].data()};
        triples.getSequence(n, arrays);
        for (unsigned int j = 0; j < 3; ++j)
        {
            std::vector<T> expected;
            for (unsigned int i = 0; i < n; ++i) expected.push_back(static_cast<T>(10 + j * n + i));
            EXPECT_TRUE(same(written(rooms[j], n), expected)) << n << " " << j;
        }
        EXPECT_EQ(calls, Calls(3, "s" + std::to_string(n)));
    }
}

TYPED_TEST(RnSeparableRngTyped, ASequenceAsksEachSourceOnceForItsCoordinate)
{
    using T = TypeParam;
    Calls calls;
    CountingRng<T> first(calls, "0", T(10));
    CountingRng<T> second(calls, "1", T(500));
    RnAsymmetricalSeparableBiRng<T> pairs(&first, &second);
    std::vector<T> x = roomFor<T>(3);
    std::vector<T> y = roomFor<T>(3);
    pairs.getSequence(3, x.data(), y.data());
    EXPECT_TRUE(same(written(x, 3), {T(10), T(11), T(12)}));
    EXPECT_TRUE(same(written(y, 3), {T(500), T(501), T(502)}));
    EXPECT_EQ(calls, (Calls{"0s3", "1s3"}));
}

TYPED_TEST(RnSeparableRngTyped, OneSourceInBothPlacesGivesTheOrdersOfTheSymmetricalOne)
{
    using T = TypeParam;
    Calls calls;
    CountingRng<T> source(calls, "", T(0));
    RnAsymmetricalSeparableBiRng<T> pairs(&source, &source);
    const Pair<T> pair = sampleOf<T>(pairs);
    EXPECT_TRUE(same(pair._x, T(0)));
    EXPECT_TRUE(same(pair._y, T(1)));
    T x[2] = {};
    T y[2] = {};
    pairs.getSequence(2, x, y);
    EXPECT_TRUE(same(x[0], T(2)) && same(x[1], T(3)));
    EXPECT_TRUE(same(y[0], T(4)) && same(y[1], T(5)));
    EXPECT_EQ(calls, (Calls{"d", "d", "s2", "s2"}));
}

TYPED_TEST(RnSeparableRngTyped, ASequenceOfNoneWritesAndDrawsNothing)
{
    using T = TypeParam;
    Calls calls;
    CountingRng<T> source(calls, "", T(10));
    CountingRng<T> other(calls, "", T(20));
    RnSeparableBiRng<T> pairs(&source);
    RnAsymmetricalSeparableBiRng<T> unlike(&source, &other);
    RnSeparableMultiRng<T, 3> triples(&source);
    T room = support::UNTOUCHED<T>;
    T* arrays[3] = {&room, &room, &room};
    pairs.getSequence(0, &room, &room);
    unlike.getSequence(0, &room, &room);
    triples.getSequence(0, arrays);
    EXPECT_TRUE(same(room, support::UNTOUCHED<T>));
    EXPECT_TRUE(same(source(), T(10)));
    EXPECT_TRUE(same(other(), T(20)));
}

TYPED_TEST(RnSeparableRngTyped, ASequenceIsThatOfTheSourceForEachSourceOfTheLibrary)
{
    using T = TypeParam;
    forEachSource<T>(
        []<class Kind>
        {
            for (const unsigned int n : {1U, 2U, 129U, 514U})
            {
                std::vector<T> expected[3];
                std::vector<T> after;
                {
                    Kind told;
                    for (std::vector<T>& coordinate : expected)
                    {
                        coordinate.resize(n);
                        told._rng.getSequence(n, coordinate.data());
                    }
                    after = drawsOf<T>(told._rng, 4);
                }
                Kind kind;
                RnSeparableMultiRng<T, 3> triples(&kind._rng);
                std::vector<T> rooms[3] = {roomFor<T>(n), roomFor<T>(n), roomFor<T>(n)};
                T* arrays[3] = {rooms[0].data(), rooms[1].data(), rooms[2].data()};
                triples.getSequence(n, arrays);
                for (int j = 0; j < 3; ++j)
                    EXPECT_TRUE(same(written(rooms[j], n), expected[j])) << Kind::NAME << " " << n;
                EXPECT_TRUE(same(drawsOf<T>(kind._rng, 4), after)) << Kind::NAME << " " << n;
            }
        });
}

TYPED_TEST(RnSeparableRngTyped, ARadicalInverseGivesOtherPairsInASequence)
{
    using T = TypeParam;
    RnVanDerCorputRng<T> source;
    RnSeparableBiRng<T> pairs(&source);
    const Pair<T> first = sampleOf<T>(pairs);
    const Pair<T> second = sampleOf<T>(pairs);
    EXPECT_TRUE(same(first._x, T(0.5)));
    EXPECT_TRUE(same(first._y, T(0.25)));
    EXPECT_TRUE(same(second._x, T(0.75)));
    EXPECT_TRUE(same(second._y, T(0.125)));

    pairs.restart();
    T x[2] = {};
    T y[2] = {};
    pairs.getSequence(2, x, y);
    EXPECT_TRUE(same(x[0], T(0.5)));
    EXPECT_TRUE(same(x[1], T(0.25)));
    EXPECT_TRUE(same(y[0], T(0.75)));
    EXPECT_TRUE(same(y[1], T(0.125)));
}

// Two radical inverses are the points of the sequence that is named after Halton.
TYPED_TEST(RnSeparableRngTyped, RadicalInversesInTwoBasesGiveTheHaltonSequence)
{
    using T = TypeParam;
    RnVanDerCorputRng<T> first(2);
    RnVanDerCorputRng<T> second(3);
    RnAsymmetricalSeparableBiRng<T> pairs(&first, &second);
    Zu::RnHaltonBiRng<T> points;
    for (int i = 0; i < 200; ++i)
    {
        const Pair<T> pair = sampleOf<T>(pairs);
        const Pair<T> point = sampleOf<T>(points);
        EXPECT_TRUE(same(pair._x, point._x)) << i;
        EXPECT_TRUE(same(pair._y, point._y)) << i;
    }
}

TYPED_TEST(RnSeparableRngTyped, AMissingSourceRaises)
{
    using T = TypeParam;
    Calls calls;
    CountingRng<T> source(calls, "", T(0));
    EXPECT_EQ(failureOf([] { RnSeparableBiRng<T> pairs(nullptr); }), "Assertion '_uniRng' failed.");
    EXPECT_EQ(failureOf([] { RnSeparableMultiRng<T, 3> triples(nullptr); }),
              "Assertion '_uniRng' failed.");
    EXPECT_EQ(failureOf([] { RnAsymmetricalSeparableBiRng<T> pairs(nullptr, nullptr); }),
              "Assertion '_uniRng0' failed.");
    EXPECT_EQ(failureOf([&] { RnAsymmetricalSeparableBiRng<T> pairs(nullptr, &source); }),
              "Assertion '_uniRng0' failed.");
    EXPECT_EQ(failureOf([&] { RnAsymmetricalSeparableBiRng<T> pairs(&source, nullptr); }),
              "Assertion '_uniRng1' failed.");
    EXPECT_TRUE(calls.empty());
}

// The three queries that fill a pair.
template <class T, class Source> std::array<Pair<T>, 3> rangeOf(const Source& source)
{
    std::array<Pair<T>, 3> range;
    source.getEfficientWidth(range[0]._x, range[0]._y);
    source.getEfficientMin(range[1]._x, range[1]._y);
    source.getEfficientMax(range[2]._x, range[2]._y);
    return range;
}

template <class T>
void expectRange(const std::array<Pair<T>, 3>& range, const RnRng<T>& first, const RnRng<T>& second)
{
    EXPECT_TRUE(same(range[0]._x, first.getEfficientWidth()));
    EXPECT_TRUE(same(range[0]._y, second.getEfficientWidth()));
    EXPECT_TRUE(same(range[1]._x, first.getEfficientMin()));
    EXPECT_TRUE(same(range[1]._y, second.getEfficientMin()));
    EXPECT_TRUE(same(range[2]._x, first.getEfficientMax()));
    EXPECT_TRUE(same(range[2]._y, second.getEfficientMax()));
}

TYPED_TEST(RnSeparableRngTyped, APairAnswersTheSourcesRangeInBothCoordinates)
{
    using T = TypeParam;
    Calls calls;
    CountingRng<T> source(calls, "", T(0));
    const RnSeparableBiRng<T> pairs(&source);
    expectRange<T>(rangeOf<T>(pairs), source, source);
    EXPECT_TRUE(same(pairs.getEfficientFraction(), T(0.7) * T(0.7)));
    EXPECT_STREQ(pairs.getName(), "Symmetrical Bi Separable");
    EXPECT_TRUE(calls.empty());
}

TYPED_TEST(RnSeparableRngTyped, UnlikeCoordinatesAnswerTheRangesOfTheirSources)
{
    using T = TypeParam;
    Calls calls;
    CountingRng<T> first(calls, "", T(0));
    CountingRng<T> second(calls, "", T(0), T(5));
    const RnAsymmetricalSeparableBiRng<T> pairs(&first, &second);
    expectRange<T>(rangeOf<T>(pairs), first, second);
    EXPECT_TRUE(same(pairs.getEfficientFraction(), T(0.7) * (T(0.7) / T(5))));
    EXPECT_STREQ(pairs.getName(), "Assymetrical Bi Separable");
    EXPECT_TRUE(calls.empty());
}

TYPED_TEST(RnSeparableRngTyped, ATripleAnswersTheSourcesRangeInAllCoordinates)
{
    using T = TypeParam;
    Calls calls;
    CountingRng<T> source(calls, "", T(0));
    const RnSeparableMultiRng<T, 3> triples(&source);
    Triple<T> widths;
    Triple<T> mins;
    Triple<T> maxs;
    triples.getEfficientWidth(widths.data());
    triples.getEfficientMin(mins.data());
    triples.getEfficientMax(maxs.data());
    for (unsigned int i = 0; i < 3; ++i)
    {
        EXPECT_TRUE(same(widths[i], T(3.3)));
        EXPECT_TRUE(same(mins[i], T(-1.1)));
        EXPECT_TRUE(same(maxs[i], T(2.2)));
    }
    EXPECT_STREQ(triples.getName(), "Multi Separable");
    EXPECT_TRUE(calls.empty());
}

TYPED_TEST(RnSeparableRngTyped, ATriplesFractionIsTheThirdPowerOfItsSources)
{
    using T = TypeParam;
    Calls calls;
    for (const T spread : {T(1), T(2), T(3.7), T(0.71)})
    {
        CountingRng<T> source(calls, "", T(0), spread);
        const RnSeparableMultiRng<T, 3> triples(&source);
        const volatile T fraction = T(0.7) / spread;
        EXPECT_TRUE(same(triples.getEfficientFraction(), std::pow(T(fraction), T(3)))) << spread;
    }
}

TYPED_TEST(RnSeparableRngTyped, TheDensityIsTheProductOfTheCoordinates)
{
    using T = TypeParam;
    Calls calls;
    CountingRng<T> source(calls, "", T(0));
    CountingRng<T> other(calls, "", T(0), T(0.9));
    const RnSeparableBiRng<T> pairs(&source);
    const RnAsymmetricalSeparableBiRng<T> unlike(&source, &other);
    const RnSeparableMultiRng<T, 3> triples(&source);
    for (int i = -5; i < 5; ++i)
        for (int j = -5; j < 5; ++j)
        {
            const T x = T(0.3) * T(i);
            const T y = T(0.17) * T(j);
            const T z = T(0.09) * T(i - 2 * j);
            Triple<T> point = {x, y, z};
            EXPECT_TRUE(same(pairs.getPdf(x, y), source.getPdf(x) * source.getPdf(y)));
            EXPECT_TRUE(same(unlike.getPdf(x, y), source.getPdf(x) * other.getPdf(y)));
            EXPECT_TRUE(same(triples.getPdf(point.data()),
                             T(1) * source.getPdf(x) * source.getPdf(y) * source.getPdf(z)));
        }
}

TYPED_TEST(RnSeparableRngTyped, GaussianCoordinatesHaveTheirRangeAndFraction)
{
    using T = TypeParam;
    RnVanDerCorputRng<T> uniform;
    RnGaussianRng<T> gaussian(&uniform, T(1), T(2));
    const RnSeparableBiRng<T> pairs(&gaussian);
    expectRange<T>(rangeOf<T>(pairs), gaussian, gaussian);
    const T fraction = gaussian.getEfficientFraction();
    EXPECT_TRUE(same(pairs.getEfficientFraction(), fraction * fraction));
    EXPECT_TRUE(same(pairs.getPdf(T(2), T(-1)), gaussian.getPdf(T(2)) * gaussian.getPdf(T(-1))));
}

TYPED_TEST(RnSeparableRngTyped, ARestartIsTheSourcesOnce)
{
    using T = TypeParam;
    Calls calls;
    CountingRng<T> source(calls, "", T(4));
    RnSeparableBiRng<T> pairs(&source);
    RnSeparableMultiRng<T, 3> triples(&source);
    sampleOf<T>(pairs);
    calls.clear();
    pairs.restart();
    EXPECT_EQ(calls, Calls{"r"});
    EXPECT_TRUE(same(sampleOf<T>(pairs)._x, T(4)));
    calls.clear();
    triples.restart();
    EXPECT_EQ(calls, Calls{"r"});
}

TYPED_TEST(RnSeparableRngTyped, ARestartOfUnlikeCoordinatesBeginsWithX)
{
    using T = TypeParam;
    Calls calls;
    CountingRng<T> first(calls, "0", T(4));
    CountingRng<T> second(calls, "1", T(40));
    RnAsymmetricalSeparableBiRng<T> pairs(&first, &second);
    pairs.restart();
    EXPECT_EQ(calls, (Calls{"0r", "1r"}));
}

TYPED_TEST(RnSeparableRngTyped, SourcesOfPointsOnOneSourceInterleaveItsDraws)
{
    using T = TypeParam;
    Calls calls;
    CountingRng<T> source(calls, "", T(0));
    RnSeparableBiRng<T> pairs(&source);
    RnSeparableMultiRng<T, 3> triples(&source);
    EXPECT_TRUE(same(sampleOf<T>(pairs)._y, T(1)));
    Triple<T> triple;
    triples.getSample(triple.data());
    EXPECT_TRUE(same(triple[0], T(2)));
    EXPECT_TRUE(same(triple[2], T(4)));
    EXPECT_TRUE(same(sampleOf<T>(pairs)._x, T(5)));
}

TYPED_TEST(RnSeparableRngTyped, CopiesShareTheSources)
{
    using T = TypeParam;
    Calls calls;
    CountingRng<T> source(calls, "", T(0));
    CountingRng<T> other(calls, "", T(100));
    RnSeparableBiRng<T> pairs(&source);
    RnSeparableBiRng<T> pairsCopy(pairs);
    RnAsymmetricalSeparableBiRng<T> unlike(&source, &other);
    RnAsymmetricalSeparableBiRng<T> unlikeCopy(unlike);
    RnSeparableMultiRng<T, 3> triples(&source);
    RnSeparableMultiRng<T, 3> triplesCopy(triples);
    EXPECT_TRUE(same(sampleOf<T>(pairs)._x, T(0)));
    EXPECT_TRUE(same(sampleOf<T>(pairsCopy)._x, T(2)));
    EXPECT_TRUE(same(sampleOf<T>(unlike)._x, T(4)));
    const Pair<T> pair = sampleOf<T>(unlikeCopy);
    EXPECT_TRUE(same(pair._x, T(5)));
    EXPECT_TRUE(same(pair._y, T(101)));
    Triple<T> triple;
    triplesCopy.getSample(triple.data());
    EXPECT_TRUE(same(triple[0], T(6)));
    triples.getSample(triple.data());
    EXPECT_TRUE(same(triple[0], T(9)));
}

TYPED_TEST(RnSeparableRngTyped, TheirEndsLeaveTheSourcesAlone)
{
    using T = TypeParam;
    Calls calls;
    CountingRng<T> source(calls, "", T(0));
    {
        const RnSeparableBiRng<T> pairs(&source);
        const RnAsymmetricalSeparableBiRng<T> unlike(&source, &source);
        const RnSeparableMultiRng<T, 3> triples(&source);
    }
    EXPECT_TRUE(calls.empty());
    EXPECT_TRUE(same(source(), T(0)));
}

} // namespace
