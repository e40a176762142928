#include "base/rnGaussianRng.h"

#include "support/scriptedRng.h"

#include <cmath>
#include <cstddef>
#include <gtest/gtest.h>
#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace
{

using support::drawsOf;
using support::failureOf;
using support::forEachSource;
using support::roomFor;
using support::same;
using support::ScriptedRng;
using support::SEQUENCE_LENGTHS;
using support::written;
using Zu::RnGaussianRng;
using Zu::RnLecuyerUniformRng;
using Zu::RnRng;

template <class T> using Limits = std::numeric_limits<T>;
template <class T> constexpr T NO_NUMBER = Limits<T>::quiet_NaN();

template <class T> class RnGaussianRngTyped : public testing::Test
{
};

using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(RnGaussianRngTyped, Precisions);

template <class T> constexpr bool isASource()
{
    return std::is_base_of_v<RnRng<T>, RnGaussianRng<T>> &&
           std::has_virtual_destructor_v<RnGaussianRng<T>> &&
           !std::has_virtual_destructor_v<RnRng<T>> &&
           std::is_copy_constructible_v<RnGaussianRng<T>>;
}

static_assert(isASource<float>() && isASource<double>());

// Computed when the test runs: a compiler's own logarithm may have other bits than the platform's.
template <class T> T factorFor(T sumOfSquares)
{
    const volatile T s = sumOfSquares;
    return std::sqrt(-2 * std::log(T(s)) / s);
}

// The polar method, step by step.
template <class T> class PolarMethod
{
public:
    PolarMethod(RnRng<T>& source, T mean, T sigma) : _source(source), _mean(mean), _sigma(sigma) {}

    T unit()
    {
        if (_hasSpare)
        {
            _hasSpare = false;
            return _spare;
        }
        T a;
        T b;
        T s;
        do
        {
            a = 2 * _source() - 1;
            b = 2 * _source() - 1;
            s = a * a + b * b;
        } while (!(s < 1));
        const T f = std::sqrt(-2 * std::log(s) / s);
        _spare = f * b;
        _hasSpare = true;
        return f * a;
    }

    T operator()()
    {
        return unit() * _sigma + _mean;
    }

private:
    RnRng<T>& _source;
    T _mean;
    T _sigma;
    bool _hasSpare = false;
    T _spare = 0;
};

// How the values come out.
enum class Way
{
    STEP_BY_STEP,
    SINGLE,
    SAMPLES,
    SEQUENCE
};

template <class T> struct Drawn
{
    // Draws before, in pairs or not; the values themselves; the next samples of the shaped source,
    // and of its uniform source.
    std::vector<T> _values;
    std::vector<T> _shapedAfter;
    std::vector<T> _sourceAfter;
};

template <class T, class Kind> Drawn<T> drawnIn(Way way, bool withSpare, unsigned int n)
{
    const T mean = T(0.3);
    const T sigma = T(1.7);
    Kind kind;
    PolarMethod<T> told(kind._rng, mean, sigma);
    RnGaussianRng<T> shaped(&kind._rng, mean, sigma);
    const auto next = [&] { return way == Way::STEP_BY_STEP ? told() : shaped(); };

    Drawn<T> drawn;
    if (withSpare) next();
    if (way == Way::SEQUENCE)
    {
        std::vector<T> room = roomFor<T>(n);
        shaped.getSequence(n, room.data());
        drawn._values = written(room, n);
    }
    else if (way == Way::SAMPLES)
    {
        drawn._values.resize(n);
        for (T& value : drawn._values) shaped.getSample(value);
    }
    else
    {
        for (unsigned int i = 0; i < n; ++i) drawn._values.push_back(next());
    }
    for (int i = 0; i < 3; ++i) drawn._shapedAfter.push_back(next());
    drawn._sourceAfter = drawsOf<T>(kind._rng, 5);
    return drawn;
}

template <class T> void expectSame(const Drawn<T>& actual, const Drawn<T>& expected)
{
    EXPECT_TRUE(same(actual._values, expected._values));
    EXPECT_TRUE(same(actual._shapedAfter, expected._shapedAfter));
    EXPECT_TRUE(same(actual._sourceAfter, expected._sourceAfter));
}

TYPED_TEST(RnGaussianRngTyped, EveryWayOfDrawingGivesTheBitsOfThePolarMethodAndOverdrawsNoSource)
{
    using T = TypeParam;
    forEachSource<T>(
        []<class Kind>
        {
            for (const unsigned int n : SEQUENCE_LENGTHS)
                for (const bool withSpare : {false, true})
                {
                    SCOPED_TRACE(std::string(Kind::NAME) + (withSpare ? ", with a spare, " : ", ") +
                                 std::to_string(n));
                    const Drawn<T> told = drawnIn<T, Kind>(Way::STEP_BY_STEP, withSpare, n);
                    expectSame(drawnIn<T, Kind>(Way::SINGLE, withSpare, n), told);
                    expectSame(drawnIn<T, Kind>(Way::SAMPLES, withSpare, n), told);
                    expectSame(drawnIn<T, Kind>(Way::SEQUENCE, withSpare, n), told);
                }
        });
}

TYPED_TEST(RnGaussianRngTyped, SequencesOfAllLengthsJoinToTheSameValues)
{
    using T = TypeParam;
    RnLecuyerUniformRng<T> source(1, 2025);
    RnLecuyerUniformRng<T> told(1, 2025);
    RnGaussianRng<T> shaped(&source);
    PolarMethod<T> method(told, T(0), T(1));
    for (unsigned int n = 0; n < 90; ++n)
    {
        std::vector<T> room = roomFor<T>(n);
        shaped.getSequence(n, room.data());
        std::vector<T> expected(n);
        for (T& value : expected) value = method();
        EXPECT_TRUE(same(written(room, n), expected)) << n;
    }
}

// Pairs that are taken and pairs that are not, at random.
template <class T> std::vector<T> manyUniforms(unsigned int n)
{
    RnLecuyerUniformRng<T> source(3, 987654321);
    return drawsOf<T>(source, n);
}

TYPED_TEST(RnGaussianRngTyped, AForeignSourceIsDrawnFromOneByOneAndNotTooOften)
{
    using T = TypeParam;
    const std::vector<T> script = manyUniforms<T>(12000);
    for (const unsigned int n : SEQUENCE_LENGTHS)
    {
        ScriptedRng<T> source(script);
        ScriptedRng<T> told(script);
        RnGaussianRng<T> shaped(&source, T(-2), T(0.125));
        PolarMethod<T> method(told, T(-2), T(0.125));
        std::vector<T> room = roomFor<T>(n);
        shaped.getSequence(n, room.data());
        std::vector<T> expected(n);
        for (T& value : expected) value = method();
        EXPECT_TRUE(same(written(room, n), expected)) << n;
        EXPECT_EQ(source.nDraws(), told.nDraws()) << n;
        EXPECT_TRUE(same(shaped(), method())) << n;
        EXPECT_EQ(source.nDraws(), told.nDraws()) << n;
    }
}

TYPED_TEST(RnGaussianRngTyped, ADerivedSourceSeesEveryDraw)
{
    using T = TypeParam;
    support::MirroredRng<T> source(55);
    support::MirroredRng<T> told(55);
    RnGaussianRng<T> shaped(&source);
    PolarMethod<T> method(told, T(0), T(1));
    std::vector<T> values(1001);
    shaped.getSequence(1001, values.data());
    std::vector<T> expected(1001);
    for (T& value : expected) value = method();
    EXPECT_TRUE(same(values, expected));
    EXPECT_EQ(source.nDraws(), told.nDraws());
}

// a = 0.5 and b = -0.25: s = 0.3125.
TYPED_TEST(RnGaussianRngTyped, TheFirstDrawOfAPairGivesTheFirstValueAndTheSecondIsKept)
{
    using T = TypeParam;
    ScriptedRng<T> source({T(0.75), T(0.375)});
    RnGaussianRng<T> shaped(&source);
    const T f = factorFor(T(0.3125));
    EXPECT_TRUE(same(shaped(), f * T(0.5)));
    EXPECT_EQ(source.nDraws(), 2U);
    EXPECT_TRUE(same(shaped(), f * T(-0.25)));
    EXPECT_EQ(source.nDraws(), 2U);
}

TYPED_TEST(RnGaussianRngTyped, AKeptValueComesFirstInEveryWayOfDrawing)
{
    using T = TypeParam;
    const T f = factorFor(T(0.3125));
    const T spare = f * T(-0.25) * T(3) + T(1);
    for (int way = 0; way < 4; ++way)
    {
        ScriptedRng<T> source({T(0.75), T(0.375)});
        RnGaussianRng<T> shaped(&source, T(1), T(3));
        shaped();
        T value = 0;
        if (way == 0) value = shaped();
        if (way == 1) shaped.getSample(value);
        if (way == 2) shaped.getSequence(1, &value);
        if (way == 3) value = shaped.evalUnit() * T(3) + T(1);
        EXPECT_TRUE(same(value, spare)) << way;
        EXPECT_EQ(source.nDraws(), 2U) << way;
        EXPECT_THROW(shaped(), std::out_of_range) << way;
    }
}

TYPED_TEST(RnGaussianRngTyped, ASequenceOfNoneNeitherTakesTheKeptValueNorDraws)
{
    using T = TypeParam;
    ScriptedRng<T> source({T(0.75), T(0.375)});
    RnGaussianRng<T> shaped(&source);
    shaped.getSequence(0, nullptr);
    EXPECT_EQ(source.nDraws(), 0U);
    shaped();
    shaped.getSequence(0, nullptr);
    EXPECT_EQ(source.nDraws(), 2U);
    EXPECT_LT(shaped(), T(0));
    EXPECT_EQ(source.nDraws(), 2U);
}

TYPED_TEST(RnGaussianRngTyped, TheUnitShapeIsNotScaled)
{
    using T = TypeParam;
    RnLecuyerUniformRng<T> source(1, 77);
    RnLecuyerUniformRng<T> told(1, 77);
    RnGaussianRng<T> shaped(&source, T(100), T(25));
    PolarMethod<T> method(told, T(100), T(25));
    for (int i = 0; i < 101; ++i) EXPECT_TRUE(same(shaped.evalUnit(), method.unit())) << i;
    for (int i = 0; i < 101; ++i) EXPECT_TRUE(same(shaped(), method())) << i;
}

// A pair at 1 or beyond is not taken, nor one that is no number.
TYPED_TEST(RnGaussianRngTyped, OnlyAPairBelowOneIsTaken)
{
    using T = TypeParam;
    const T below = std::nextafter(T(1), T(0));
    const std::vector<std::vector<T>> rejected = {{T(1), T(0.5)},
                                                  {T(0.5), T(1)},
                                                  {T(0), T(0.5)},
                                                  {T(0.5), T(0)},
                                                  {T(1), T(1)},
                                                  {T(0), T(0)},
                                                  {T(0.90625), T(0.84375)},
                                                  {NO_NUMBER<T>, T(0.5)},
                                                  {T(0.5), NO_NUMBER<T>},
                                                  {below, T(0.9)},
                                                  {T(0.1), below},
                                                  {T(-3), T(0.5)},
                                                  {T(0.5), Limits<T>::max()},
                                                  {Limits<T>::infinity(), T(0.5)}};
    for (const std::vector<T>& pair : rejected)
        for (const bool inSequence : {false, true})
        {
            std::vector<T> script = pair;
            script.insert(script.end(), {T(0.75), T(0.375)});
            ScriptedRng<T> source(script);
            RnGaussianRng<T> shaped(&source);
            T value = 0;
            inSequence ? shaped.getSequence(1, &value) : shaped.getSample(value);
            const T f = factorFor(T(0.3125));
            EXPECT_TRUE(same(value, f * T(0.5))) << pair[0] << " " << pair[1];
            EXPECT_EQ(source.nDraws(), 4U) << pair[0] << " " << pair[1];
        }
}

TYPED_TEST(RnGaussianRngTyped, APairJustBelowOneIsTaken)
{
    using T = TypeParam;
    const T below = std::nextafter(T(1), T(0));
    ScriptedRng<T> source({below, T(0.5)});
    ScriptedRng<T> told({below, T(0.5)});
    RnGaussianRng<T> shaped(&source);
    PolarMethod<T> method(told, T(0), T(1));
    const T value = shaped();
    EXPECT_TRUE(same(value, method()));
    EXPECT_GT(value, T(0));
    EXPECT_EQ(source.nDraws(), 2U);
    EXPECT_TRUE(same(shaped(), T(0)));
}

TYPED_TEST(RnGaussianRngTyped, ASmallSumOfSquaresGivesAFarValue)
{
    using T = TypeParam;
    const T near = T(0.5) + Limits<T>::epsilon() / 2;
    ScriptedRng<T> source({near, T(0.5)});
    RnGaussianRng<T> shaped(&source);
    const T a = Limits<T>::epsilon();
    EXPECT_TRUE(same(shaped(), factorFor(a * a) * a));
}

TYPED_TEST(RnGaussianRngTyped, APairOfHalvesGivesTwoNaNsAndIsNotRejected)
{
    using T = TypeParam;
    ScriptedRng<T> single({T(0.5), T(0.5), T(0.75), T(0.375)});
    RnGaussianRng<T> shaped(&single, T(5), T(2));
    EXPECT_TRUE(std::isnan(shaped()));
    EXPECT_EQ(single.nDraws(), 2U);
    EXPECT_TRUE(std::isnan(shaped()));
    EXPECT_EQ(single.nDraws(), 2U);
    EXPECT_GT(shaped(), T(5));

    ScriptedRng<T> source({T(0.75), T(0.375), T(0.5), T(0.5), T(0.75), T(0.375)});
    RnGaussianRng<T> sequence(&source, T(5), T(2));
    std::vector<T> values(5);
    sequence.getSequence(5, values.data());
    EXPECT_TRUE(same(values, {values[0], values[1], NO_NUMBER<T>, NO_NUMBER<T>, values[0]}));
    EXPECT_FALSE(std::isnan(values[0]));
    EXPECT_TRUE(same(sequence(), values[1]));
    EXPECT_EQ(source.nDraws(), 6U);
}

TYPED_TEST(RnGaussianRngTyped, ARestartKeepsTheValueThatIsLeftOver)
{
    using T = TypeParam;
    const std::vector<T> script = manyUniforms<T>(64);
    ScriptedRng<T> source(script);
    RnGaussianRng<T> shaped(&source);
    ScriptedRng<T> told(script);
    PolarMethod<T> method(told, T(0), T(1));
    std::vector<T> expected;
    for (int i = 0; i < 6; ++i) expected.push_back(method());

    for (int i = 0; i < 5; ++i) EXPECT_TRUE(same(shaped(), expected[static_cast<std::size_t>(i)]));
    shaped.restart();
    EXPECT_EQ(source.nRestarts(), 1U);
    EXPECT_TRUE(same(shaped(), expected[5]));
    EXPECT_EQ(source.nLeft(), script.size());
    EXPECT_TRUE(same(shaped(), expected[0]));
    EXPECT_TRUE(same(shaped(), expected[1]));
    shaped.restart();
    EXPECT_TRUE(same(shaped(), expected[0]));

    T values[3] = {};
    shaped.restart();
    shaped.getSequence(3, values);
    EXPECT_TRUE(same(values[0], expected[1]));
    EXPECT_TRUE(same(values[1], expected[0]));
    EXPECT_TRUE(same(values[2], expected[1]));
    EXPECT_EQ(source.nRestarts(), 3U);
}

TYPED_TEST(RnGaussianRngTyped, AMissingSourceRaisesBeforeABadSigma)
{
    using T = TypeParam;
    constexpr const char* NO_SOURCE = "Assertion '_uniRng' failed.";
    EXPECT_EQ(failureOf([] { RnGaussianRng<T> shaped(nullptr); }), NO_SOURCE);
    EXPECT_EQ(failureOf([] { RnGaussianRng<T> shaped(nullptr, T(0), T(1)); }), NO_SOURCE);
    EXPECT_EQ(failureOf([] { RnGaussianRng<T> shaped(nullptr, T(0), T(0)); }), NO_SOURCE);
    EXPECT_EQ(failureOf([] { RnGaussianRng<T> shaped(nullptr, T(0), T(-1)); }), NO_SOURCE);
}

TYPED_TEST(RnGaussianRngTyped, ASigmaThatIsNotPositiveRaises)
{
    using T = TypeParam;
    ScriptedRng<T> source({});
    for (const T sigma : {T(0), -T(0), T(-1), -Limits<T>::denorm_min(), -Limits<T>::infinity()})
        EXPECT_EQ(failureOf([&] { RnGaussianRng<T> shaped(&source, T(0), sigma); }),
                  "Assertion '_sigma > 0' failed.")
            << sigma;
}

TYPED_TEST(RnGaussianRngTyped, EveryOtherSigmaAndMeanPassesANaNToo)
{
    using T = TypeParam;
    ScriptedRng<T> source({});
    for (const T sigma : {Limits<T>::denorm_min(), Limits<T>::max(), Limits<T>::infinity(),
                          NO_NUMBER<T>, -NO_NUMBER<T>})
        for (const T mean : {T(0), NO_NUMBER<T>, -Limits<T>::infinity()})
        {
            const RnGaussianRng<T> shaped(&source, mean, sigma);
            EXPECT_TRUE(same(shaped.getSigma(), sigma));
            EXPECT_TRUE(same(shaped.getMean(), mean));
        }
    EXPECT_EQ(source.nDraws(), 0U);
}

TYPED_TEST(RnGaussianRngTyped, HasMeanZeroAndSigmaOneUnlessTheyAreGiven)
{
    using T = TypeParam;
    ScriptedRng<T> source({});
    const RnGaussianRng<T> shaped(&source);
    EXPECT_TRUE(same(shaped.getMean(), T(0)));
    EXPECT_TRUE(same(shaped.getSigma(), T(1)));
    EXPECT_EQ(shaped.getUniRng(), &source);
    const RnGaussianRng<T> other(&source, T(-3), T(0.5));
    EXPECT_TRUE(same(other.getMean(), T(-3)));
    EXPECT_TRUE(same(other.getSigma(), T(0.5)));
    EXPECT_EQ(other.getUniRng(), &source);
}

TYPED_TEST(RnGaussianRngTyped, ItsRangeIsTwoSigmasOnEachSide)
{
    using T = TypeParam;
    ScriptedRng<T> source({});
    const RnGaussianRng<T> shaped(&source);
    EXPECT_TRUE(same(shaped.getEfficientWidth(), T(4)));
    EXPECT_TRUE(same(shaped.getEfficientMin(), T(-2)));
    EXPECT_TRUE(same(shaped.getEfficientMax(), T(2)));
    for (const T mean : {T(0.1), T(-1234.5)})
        for (const T sigma : {T(0.3), T(77.7)})
        {
            const RnGaussianRng<T> other(&source, mean, sigma);
            const T width = 4 * sigma;
            EXPECT_TRUE(same(other.getEfficientWidth(), width));
            EXPECT_TRUE(same(other.getEfficientMin(), mean - width / 2));
            EXPECT_TRUE(same(other.getEfficientMax(), mean + width / 2));
        }
}

TYPED_TEST(RnGaussianRngTyped, TheEndsOfItsRangeFollowAWidthThatADerivedClassAnswers)
{
    using T = TypeParam;
    class Wider : public RnGaussianRng<T>
    {
    public:
        using RnGaussianRng<T>::RnGaussianRng;

        T getEfficientWidth() const override
        {
            return T(10);
        }
    };
    ScriptedRng<T> source({});
    const Wider shaped(&source, T(1), T(1));
    EXPECT_TRUE(same(shaped.getEfficientMin(), T(-4)));
    EXPECT_TRUE(same(shaped.getEfficientMax(), T(6)));
}

TEST(RnGaussianRng, ItsFractionIsThatOfFourSigmasWhateverTheSigma)
{
    ScriptedRng<float> singles({});
    ScriptedRng<double> doubles({});
    for (const float sigma : {1.0F, 0.01F, 1e6F})
    {
        const RnGaussianRng<float> single(&singles, 3, sigma);
        EXPECT_EQ(support::floatBits(single.getEfficientFraction()), 0x3F7FFBD9U);
        const RnGaussianRng<double> precise(&doubles, 3, static_cast<double>(sigma));
        EXPECT_EQ(support::floatBits(precise.getEfficientFraction()), 0x3FEFFF7B2A98AFE5U);
    }
    EXPECT_EQ(RnGaussianRng<float>(&singles).getEfficientFraction(), 0.99993666F);
    EXPECT_NEAR(RnGaussianRng<double>(&doubles).getEfficientFraction(), 0.99993666, 1e-8);
}

// 1 / (sqrt(2 pi) sigma), the constant rounded before its root is taken.
template <class T> T densityFactor(T sigma)
{
    const T twoPi = T(6.283185307179586476925286766559L);
    return 1 / (std::sqrt(twoPi) * sigma);
}

TYPED_TEST(RnGaussianRngTyped, ItsDensityHasTheBitsOfTheFormula)
{
    using T = TypeParam;
    ScriptedRng<T> source({});
    for (const T mean : {T(0), T(0.7), T(-12.25)})
        for (const T sigma : {T(1), T(0.01), T(2.5), T(300)})
        {
            const RnGaussianRng<T> shaped(&source, mean, sigma);
            const T sigma2 = sigma * sigma;
            for (int i = -60; i <= 60; ++i)
            {
                const T x = mean + sigma * (T(i) / T(9));
                const T square = (x - mean) * (x - mean);
                const T expected = std::exp(-(square / (2 * sigma2))) * densityFactor(sigma);
                EXPECT_TRUE(same(shaped.getPdf(x), expected)) << mean << " " << sigma << " " << x;
            }
        }
}

TYPED_TEST(RnGaussianRngTyped, ItsDensityIsNotCutAtTheEndsOfItsRange)
{
    using T = TypeParam;
    ScriptedRng<T> source({});
    const RnGaussianRng<T> shaped(&source);
    EXPECT_TRUE(same(shaped.getPdf(T(0)), densityFactor(T(1))));
    EXPECT_NEAR(shaped.getPdf(T(0)), 0.3989422804014327, 1e-7);
    EXPECT_NEAR(shaped.getPdf(T(3)), 0.0044318484119380075, 1e-9);
    EXPECT_EQ(shaped.getPdf(T(-3)), shaped.getPdf(T(3)));
    EXPECT_EQ(shaped.getPdf(Limits<T>::infinity()), T(0));
    EXPECT_TRUE(std::isnan(shaped.getPdf(NO_NUMBER<T>)));
}

TYPED_TEST(RnGaussianRngTyped, ItsNameIsGaussian)
{
    using T = TypeParam;
    ScriptedRng<T> source({});
    const RnGaussianRng<T> shaped(&source);
    EXPECT_STREQ(shaped.getName(), "Gaussian");
    EXPECT_EQ(shaped.getName(), shaped.getName());
}

TYPED_TEST(RnGaussianRngTyped, TwoOnOneSourceInterleaveItsDrawsAndKeepTheirOwnValues)
{
    using T = TypeParam;
    const std::vector<T> script = {T(0.75), T(0.375), T(0.25), T(0.625)};
    ScriptedRng<T> source(script);
    RnGaussianRng<T> first(&source);
    RnGaussianRng<T> second(&source, T(10), T(2));
    const T f = factorFor(T(0.3125));
    EXPECT_TRUE(same(first(), f * T(0.5)));
    EXPECT_TRUE(same(second(), f * T(-0.5) * 2 + 10));
    EXPECT_TRUE(same(first(), f * T(-0.25)));
    EXPECT_TRUE(same(second(), f * T(0.25) * 2 + 10));
    EXPECT_EQ(source.nDraws(), 4U);
}

TYPED_TEST(RnGaussianRngTyped, ACopySharesTheSourceAndHasTheKeptValue)
{
    using T = TypeParam;
    ScriptedRng<T> source({T(0.75), T(0.375), T(0.25), T(0.625)});
    RnGaussianRng<T> original(&source);
    original();
    RnGaussianRng<T> copy(original);
    EXPECT_EQ(copy.getUniRng(), &source);
    const T kept = copy();
    EXPECT_TRUE(same(original(), kept));
    EXPECT_EQ(source.nDraws(), 2U);
    copy();
    EXPECT_EQ(source.nDraws(), 4U);
}

TYPED_TEST(RnGaussianRngTyped, ItsEndLeavesTheSourceAlone)
{
    using T = TypeParam;
    ScriptedRng<T> source({T(0.75), T(0.375), T(0.125)});
    {
        RnGaussianRng<T> shaped(&source);
        shaped();
    }
    EXPECT_EQ(source.nRestarts(), 0U);
    EXPECT_TRUE(same(source(), T(0.125)));
}

} // namespace
