#include "base/rnMexicanHatRng.h"

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
using Zu::RnLecuyerUniformRng;
using Zu::RnMexicanHatRng;
using Zu::RnRng;

template <class T> using Limits = std::numeric_limits<T>;
template <class T> constexpr T NO_NUMBER = Limits<T>::quiet_NaN();

template <class T> class RnMexicanHatRngTyped : public testing::Test
{
};

using Precisions = testing::Types<float, double>;
TYPED_TEST_SUITE(RnMexicanHatRngTyped, Precisions);

template <class T> constexpr bool isASource()
{
    return std::is_base_of_v<RnRng<T>, RnMexicanHatRng<T>> &&
           std::has_virtual_destructor_v<RnMexicanHatRng<T>> &&
           std::is_copy_constructible_v<RnMexicanHatRng<T>>;
}

static_assert(isASource<float>() && isASource<double>());

// The inverse of the distribution function.
template <class T> T unitHat(T r)
{
    if (r >= T(0.5)) return 1 - std::sqrt((1 - r) * 2);
    return std::sqrt(r * 2) - 1;
}

template <class T> std::vector<T> hats(const std::vector<T>& uniforms, T center, T width)
{
    std::vector<T> values;
    const T halfwidth = width * T(0.5);
    for (const T r : uniforms) values.push_back(unitHat(r) * halfwidth + center);
    return values;
}

// All kinds of uniform values: the ends, those around the peak, and those that no good source
// gives.
template <class T> std::vector<T> specialUniforms()
{
    const T below = std::nextafter(T(1), T(0));
    const T above = std::nextafter(T(1), T(2));
    return {T(0),
            -T(0),
            T(0.5),
            std::nextafter(T(0.5), T(0)),
            std::nextafter(T(0.5), T(1)),
            below,
            T(1),
            above,
            Limits<T>::denorm_min(),
            Limits<T>::min(),
            T(0.25),
            T(0.75),
            T(0.125),
            T(0.875),
            T(-0.25),
            NO_NUMBER<T>,
            Limits<T>::infinity(),
            -Limits<T>::infinity()};
}

TYPED_TEST(RnMexicanHatRngTyped, EveryWayOfDrawingGivesTheBitsOfTheInverseAndOverdrawsNoSource)
{
    using T = TypeParam;
    const T center = T(-1.3);
    const T width = T(0.7);
    forEachSource<T>(
        [=]<class Kind>
        {
            for (const unsigned int n : SEQUENCE_LENGTHS)
            {
                SCOPED_TRACE(std::string(Kind::NAME) + ", " + std::to_string(n));
                std::vector<T> uniforms;
                {
                    Kind told;
                    uniforms = drawsOf<T>(told._rng, n + 4);
                }
                const std::vector<T> after(uniforms.end() - 4, uniforms.end());
                uniforms.resize(n);
                const std::vector<T> expected = hats(uniforms, center, width);
                {
                    Kind kind;
                    RnMexicanHatRng<T> shaped(&kind._rng, center, width);
                    std::vector<T> room = roomFor<T>(n);
                    shaped.getSequence(n, room.data());
                    EXPECT_TRUE(same(written(room, n), expected));
                    EXPECT_TRUE(same(drawsOf<T>(kind._rng, 4), after));
                }
                {
                    Kind kind;
                    RnMexicanHatRng<T> shaped(&kind._rng, center, width);
                    EXPECT_TRUE(same(drawsOf<T>(shaped, n), expected));
                    EXPECT_TRUE(same(drawsOf<T>(kind._rng, 4), after));
                }
                {
                    Kind kind;
                    RnMexicanHatRng<T> shaped(&kind._rng, center, width);
                    std::vector<T> samples(n);
                    for (T& value : samples) shaped.getSample(value);
                    EXPECT_TRUE(same(samples, expected));
                    EXPECT_TRUE(same(drawsOf<T>(kind._rng, 4), after));
                }
            }
        });
}

TYPED_TEST(RnMexicanHatRngTyped, AForeignSourceIsDrawnFromOnceForEachValue)
{
    using T = TypeParam;
    RnLecuyerUniformRng<T> uniform(4, 424242);
    for (const unsigned int n : SEQUENCE_LENGTHS)
    {
        const std::vector<T> script = drawsOf<T>(uniform, n);
        ScriptedRng<T> source(script);
        RnMexicanHatRng<T> shaped(&source, T(3), T(8));
        std::vector<T> room = roomFor<T>(n);
        shaped.getSequence(n, room.data());
        EXPECT_TRUE(same(written(room, n), hats(script, T(3), T(8)))) << n;
        EXPECT_EQ(source.nDraws(), n);
        EXPECT_THROW(shaped(), std::out_of_range);
    }
}

TYPED_TEST(RnMexicanHatRngTyped, ADerivedSourceSeesEveryDraw)
{
    using T = TypeParam;
    support::MirroredRng<T> source(5);
    support::MirroredRng<T> told(5);
    RnMexicanHatRng<T> shaped(&source);
    std::vector<T> values(777);
    shaped.getSequence(777, values.data());
    EXPECT_TRUE(same(values, hats(drawsOf<T>(told, 777), T(0), T(1))));
    EXPECT_EQ(source.nDraws(), 777U);
}

TYPED_TEST(RnMexicanHatRngTyped, EveryUniformValueIsMappedByTheSameFormulaInEveryWay)
{
    using T = TypeParam;
    const std::vector<T> script = specialUniforms<T>();
    const auto n = static_cast<unsigned int>(script.size());
    ScriptedRng<T> source(script);
    RnMexicanHatRng<T> shaped(&source, T(0.2), T(6));
    const std::vector<T> expected = hats(script, T(0.2), T(6));
    EXPECT_TRUE(same(drawsOf<T>(shaped, n), expected));

    shaped.restart();
    std::vector<T> values(n);
    shaped.getSequence(n, values.data());
    EXPECT_TRUE(same(values, expected));

    shaped.restart();
    for (const T r : script) EXPECT_TRUE(same(shaped.evalUnit(), unitHat(r))) << r;
    EXPECT_EQ(source.nDraws(), 3 * n);
}

TYPED_TEST(RnMexicanHatRngTyped, TheEndsAndTheQuartersAreMappedExactly)
{
    using T = TypeParam;
    ScriptedRng<T> source({T(0), T(0.125), T(0.5), T(0.875), T(1)});
    RnMexicanHatRng<T> shaped(&source, T(10), T(8));
    EXPECT_TRUE(same(drawsOf<T>(shaped, 5), {T(6), T(8), T(10), T(12), T(14)}));
}

// Both branches would give it; below, the neighbours of a half distinguish them.
TYPED_TEST(RnMexicanHatRngTyped, AHalfGivesExactlyTheCenter)
{
    using T = TypeParam;
    for (const T center : {T(0), T(0.1), T(-1e6), T(3e-20)})
    {
        ScriptedRng<T> source({T(0.5), T(0.5), T(0.5)});
        RnMexicanHatRng<T> shaped(&source, center, T(0.3));
        EXPECT_TRUE(same(shaped(), center));
        EXPECT_TRUE(same(shaped.evalUnit(), T(0)));
        T value = NO_NUMBER<T>;
        shaped.getSequence(1, &value);
        EXPECT_TRUE(same(value, center));
    }
}

TYPED_TEST(RnMexicanHatRngTyped, TheBranchesPartAtAHalf)
{
    using T = TypeParam;
    const T below = std::nextafter(T(0.5), T(0));
    const T above = std::nextafter(T(0.5), T(1));
    ScriptedRng<T> source({below, above});
    RnMexicanHatRng<T> shaped(&source);
    EXPECT_TRUE(same(shaped.evalUnit(), std::sqrt(below * 2) - 1));
    EXPECT_TRUE(same(shaped.evalUnit(), 1 - std::sqrt((1 - above) * 2)));
}

TYPED_TEST(RnMexicanHatRngTyped, ASequenceOfNoneDoesNothing)
{
    using T = TypeParam;
    ScriptedRng<T> source({});
    RnMexicanHatRng<T> shaped(&source);
    shaped.getSequence(0, nullptr);
    EXPECT_EQ(source.nDraws(), 0U);
}

TYPED_TEST(RnMexicanHatRngTyped, AMissingSourceRaisesFirst)
{
    using T = TypeParam;
    constexpr const char* NO_SOURCE = "Assertion 'rng != 0' failed.";
    EXPECT_EQ(failureOf([] { RnMexicanHatRng<T> shaped(nullptr); }), NO_SOURCE);
    EXPECT_EQ(failureOf([] { RnMexicanHatRng<T> shaped(nullptr, T(0), T(1)); }), NO_SOURCE);
    EXPECT_EQ(failureOf([] { RnMexicanHatRng<T> shaped(nullptr, T(0), T(0)); }), NO_SOURCE);
}

// Half the smallest number is rounded to 0.
TYPED_TEST(RnMexicanHatRngTyped, AHalfwidthThatIsNotPositiveRaises)
{
    using T = TypeParam;
    ScriptedRng<T> source({});
    for (const T width :
         {T(0), -T(0), T(-1), -Limits<T>::max(), -Limits<T>::infinity(), Limits<T>::denorm_min()})
        EXPECT_EQ(failureOf([&] { RnMexicanHatRng<T> shaped(&source, T(0), width); }),
                  "Assertion '_halfwidth > 0' failed.")
            << width;
}

TYPED_TEST(RnMexicanHatRngTyped, EveryOtherWidthPassesANaNToo)
{
    using T = TypeParam;
    ScriptedRng<T> source({});
    for (const T width : {Limits<T>::min(), Limits<T>::denorm_min() * 2, Limits<T>::max(),
                          Limits<T>::infinity(), NO_NUMBER<T>, -NO_NUMBER<T>})
    {
        const RnMexicanHatRng<T> shaped(&source, NO_NUMBER<T>, width);
        EXPECT_TRUE(same(shaped.getEfficientWidth(), width));
    }
    EXPECT_EQ(source.nDraws(), 0U);
}

TYPED_TEST(RnMexicanHatRngTyped, HasCenterZeroAndWidthOneUnlessTheyAreGiven)
{
    using T = TypeParam;
    ScriptedRng<T> source({T(0), T(1), T(0.5)});
    RnMexicanHatRng<T> shaped(&source);
    EXPECT_EQ(shaped.getUniRng(), &source);
    EXPECT_TRUE(same(shaped.getEfficientWidth(), T(1)));
    EXPECT_TRUE(same(shaped.getEfficientMin(), T(-0.5)));
    EXPECT_TRUE(same(shaped.getEfficientMax(), T(0.5)));
    EXPECT_TRUE(same(shaped.getPdf(T(0)), T(2)));
    EXPECT_TRUE(same(drawsOf<T>(shaped, 3), {T(-0.5), T(0.5), T(0)}));
}

TYPED_TEST(RnMexicanHatRngTyped, ItsRangeIsTheWholeSupport)
{
    using T = TypeParam;
    ScriptedRng<T> source({});
    for (const T center : {T(0.1), T(-1234.5)})
        for (const T width : {T(0.3), T(77.7)})
        {
            const RnMexicanHatRng<T> shaped(&source, center, width);
            EXPECT_TRUE(same(shaped.getEfficientWidth(), width));
            EXPECT_TRUE(same(shaped.getEfficientMin(), center - width / 2));
            EXPECT_TRUE(same(shaped.getEfficientMax(), center + width / 2));
            EXPECT_TRUE(same(shaped.getEfficientFraction(), T(1)));
        }
}

TYPED_TEST(RnMexicanHatRngTyped, TheEndsOfItsRangeFollowAWidthThatADerivedClassAnswers)
{
    using T = TypeParam;
    class Wider : public RnMexicanHatRng<T>
    {
    public:
        using RnMexicanHatRng<T>::RnMexicanHatRng;

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

TYPED_TEST(RnMexicanHatRngTyped, ItsDensityHasTheBitsOfTheFormula)
{
    using T = TypeParam;
    ScriptedRng<T> source({});
    for (const T center : {T(0), T(0.7), T(-12.25)})
        for (const T width : {T(1), T(0.03), T(3.3), T(4000)})
        {
            const RnMexicanHatRng<T> shaped(&source, center, width);
            const T inverse = 1 / (width * T(0.5));
            for (int i = -70; i <= 70; ++i)
            {
                const T x = center + width * (T(i) / T(111));
                const T p = (1 - std::abs(x - center) * inverse) * inverse;
                EXPECT_TRUE(same(shaped.getPdf(x), p > 0 ? p : T(0)))
                    << center << " " << width << " " << x;
            }
        }
}

TYPED_TEST(RnMexicanHatRngTyped, ItsDensityPeaksAtTheCenterAndIsZeroFromTheEndsOn)
{
    using T = TypeParam;
    ScriptedRng<T> source({});
    const RnMexicanHatRng<T> shaped(&source, T(3), T(4));
    EXPECT_TRUE(same(shaped.getPdf(T(3)), T(0.5)));
    EXPECT_TRUE(same(shaped.getPdf(T(2)), T(0.25)));
    EXPECT_TRUE(same(shaped.getPdf(T(4)), T(0.25)));
    for (const T x : {T(1), T(5), T(0.5), T(5.5), T(-1e30), Limits<T>::infinity(),
                      -Limits<T>::infinity(), NO_NUMBER<T>})
        EXPECT_TRUE(same(shaped.getPdf(x), T(0))) << x;
    const RnMexicanHatRng<T> other(&source, T(0), T(0.3));
    EXPECT_TRUE(same(other.getPdf(T(0)), 1 / (T(0.3) * T(0.5))));
}

TYPED_TEST(RnMexicanHatRngTyped, ItsNameIsMexicanHat)
{
    using T = TypeParam;
    ScriptedRng<T> source({});
    const RnMexicanHatRng<T> shaped(&source);
    EXPECT_STREQ(shaped.getName(), "Mexican Hat");
    EXPECT_EQ(shaped.getName(), shaped.getName());
}

TYPED_TEST(RnMexicanHatRngTyped, ARestartIsTheSourcesOnce)
{
    using T = TypeParam;
    ScriptedRng<T> source({T(0.125), T(0.75)});
    RnMexicanHatRng<T> shaped(&source);
    shaped();
    shaped.restart();
    EXPECT_EQ(source.nRestarts(), 1U);
    EXPECT_TRUE(same(shaped(), T(-0.25)));
}

TYPED_TEST(RnMexicanHatRngTyped, TwoOnOneSourceInterleaveItsDraws)
{
    using T = TypeParam;
    ScriptedRng<T> source({T(0.125), T(0.5), T(0.875), T(0)});
    RnMexicanHatRng<T> first(&source);
    RnMexicanHatRng<T> second(&source, T(10), T(4));
    EXPECT_TRUE(same(first(), T(-0.25)));
    EXPECT_TRUE(same(second(), T(10)));
    EXPECT_TRUE(same(first(), T(0.25)));
    EXPECT_TRUE(same(second(), T(8)));
}

TYPED_TEST(RnMexicanHatRngTyped, ACopySharesTheSource)
{
    using T = TypeParam;
    ScriptedRng<T> source({T(0.125), T(0.5)});
    RnMexicanHatRng<T> original(&source, T(1), T(2));
    RnMexicanHatRng<T> copy(original);
    EXPECT_EQ(copy.getUniRng(), &source);
    EXPECT_TRUE(same(copy(), T(0.5)));
    EXPECT_TRUE(same(original(), T(1)));
}

TYPED_TEST(RnMexicanHatRngTyped, ItsEndLeavesTheSourceAlone)
{
    using T = TypeParam;
    ScriptedRng<T> source({T(0.75), T(0.375)});
    {
        RnMexicanHatRng<T> shaped(&source);
        shaped();
    }
    EXPECT_EQ(source.nRestarts(), 0U);
    EXPECT_TRUE(same(source(), T(0.375)));
}

} // namespace
