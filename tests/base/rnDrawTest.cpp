#include "base/rnDraw.h"

#include "base/rnGaussianRng.h"
#include "base/rnHistogram.h"
#include "base/rnHistogramRng.h"
#include "base/rnLecuyerUniformRng.h"
#include "base/rnMexicanHatRng.h"
#include "base/rnNumRecUniformRng.h"
#include "base/rnStdAdapters.h"
#include "base/rnStdRand.h"
#include "base/rnStdUniformRng.h"
#include "base/rnVanDerCorputRng.h"

#include "support/sampleChecks.h"

#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace
{

using support::GuardedArray;
using support::sameBits;
using Zu::RnGaussianRng;
using Zu::RnHistogram;
using Zu::RnHistogramRng;
using Zu::RnLecuyerUniformRng;
using Zu::RnMexicanHatRng;
using Zu::RnNumRecUniformRng;
using Zu::RnRng;
using Zu::rnStdSeed;
using Zu::RnStdUniformRng;
using Zu::RnVanDerCorputRng;

template <class T> std::vector<T> drawn(RnRng<T>& source, unsigned int n)
{
    GuardedArray<T> array(n);
    Zu::rnDraw(source, n, array.data());
    EXPECT_TRUE(array.guardsAreIntact()) << n;
    return array.values();
}

template <class T> std::vector<T> called(RnRng<T>& source, unsigned int n)
{
    std::vector<T> values;
    for (unsigned int i = 0; i < n; ++i) values.push_back(source());
    return values;
}

// Odd and even ones in turn, as a source may deliver pairs.
constexpr unsigned int NUMBERS[] = {0,   1,   3,   2, 8,  97,   255,  256,  0,    257, 5,
                                    511, 512, 513, 1, 64, 1023, 1024, 1025, 2000, 1};

// Drawn values equal those of a twin that is called, and both have the same state afterwards.
template <class T> void expectCalls(RnRng<T>& source, RnRng<T>& twin)
{
    for (const unsigned int n : NUMBERS)
    {
        ASSERT_TRUE(sameBits(drawn(source, n), called(twin, n))) << source.getName() << " " << n;
        ASSERT_TRUE(sameBits(called(source, 3), called(twin, 3))) << source.getName() << " " << n;
    }
}

template <class T> class RnDrawTest : public testing::Test
{
protected:
    RnDrawTest()
    {
        const T weights[] = {T(3), T(0), T(1), T(7), T(2), T(0), T(0), T(5)};
        for (int i = 0; i < 8; ++i) _histogram.addValue((T(i) + T(0.5)) / T(8), weights[i]);
    }

    RnHistogram<T> _histogram{8, T(0), T(1)};
};
using Floats = testing::Types<float, double>;
TYPED_TEST_SUITE(RnDrawTest, Floats);

TYPED_TEST(RnDrawTest, UniformSourcesGiveWhatTheirCallsGive)
{
    RnLecuyerUniformRng<TypeParam> combined(1, 2);
    RnLecuyerUniformRng<TypeParam> combinedTwin(1, 2);
    expectCalls<TypeParam>(combined, combinedTwin);
    RnNumRecUniformRng<TypeParam> shuffled(3);
    RnNumRecUniformRng<TypeParam> shuffledTwin(3);
    expectCalls<TypeParam>(shuffled, shuffledTwin);
    for (const unsigned int base : {2U, 3U, 97U, 65537U})
    {
        RnVanDerCorputRng<TypeParam> sequence(base);
        RnVanDerCorputRng<TypeParam> sequenceTwin(base);
        expectCalls<TypeParam>(sequence, sequenceTwin);
    }
}

TYPED_TEST(RnDrawTest, TheRuntimesSourceGivesWhatItsCallsGive)
{
    RnStdUniformRng<TypeParam> source;
    for (const unsigned int n : NUMBERS)
    {
        rnStdSeed(n);
        std::vector<TypeParam> expected = called<TypeParam>(source, n + 3);
        const std::vector<TypeParam> behind(expected.end() - 3, expected.end());
        expected.resize(n);
        rnStdSeed(n);
        EXPECT_TRUE(sameBits(drawn<TypeParam>(source, n), expected)) << n;
        EXPECT_TRUE(sameBits(called<TypeParam>(source, 3), behind)) << n;
    }
}

TYPED_TEST(RnDrawTest, ShapedAndMeasuredSourcesGiveWhatTheirCallsGive)
{
    RnLecuyerUniformRng<TypeParam> uniform(1, 2);
    RnLecuyerUniformRng<TypeParam> uniformTwin(1, 2);
    RnGaussianRng<TypeParam> gaussian(&uniform, TypeParam(1), TypeParam(2));
    RnGaussianRng<TypeParam> gaussianTwin(&uniformTwin, TypeParam(1), TypeParam(2));
    expectCalls<TypeParam>(gaussian, gaussianTwin);
    RnMexicanHatRng<TypeParam> hat(&uniform);
    RnMexicanHatRng<TypeParam> hatTwin(&uniformTwin);
    expectCalls<TypeParam>(hat, hatTwin);
    RnHistogramRng<TypeParam> measured(this->_histogram, &uniform);
    RnHistogramRng<TypeParam> measuredTwin(this->_histogram, &uniformTwin);
    expectCalls<TypeParam>(measured, measuredTwin);
    // Nothing was taken from the uniform source in advance.
    expectCalls<TypeParam>(uniform, uniformTwin);
}

// A source that is missing in the list of those that draw alike is correct, but slow. A check
// ensures that every source of the library is named here.
TYPED_TEST(RnDrawTest, EverySourceIsInTheListOrHasAReasonNotToBe)
{
    RnLecuyerUniformRng<TypeParam> uniform;
    EXPECT_TRUE(Zu::rnDrawsAlike(uniform));
    EXPECT_TRUE(Zu::rnDrawsAlike(RnNumRecUniformRng<TypeParam>(3)));
    EXPECT_TRUE(Zu::rnDrawsAlike(RnVanDerCorputRng<TypeParam>(3)));
    // Others may draw from the runtime's generator between the calls.
    EXPECT_FALSE(Zu::rnDrawsAlike(RnStdUniformRng<TypeParam>()));
    // They draw from a source, which may be a client's and sees the calls.
    EXPECT_FALSE(Zu::rnDrawsAlike(RnGaussianRng<TypeParam>(&uniform)));
    EXPECT_FALSE(Zu::rnDrawsAlike(RnMexicanHatRng<TypeParam>(&uniform)));
    EXPECT_FALSE(Zu::rnDrawsAlike(RnHistogramRng<TypeParam>(this->_histogram, &uniform)));
    // A template over engines that the library does not know.
    EXPECT_FALSE(Zu::rnDrawsAlike(Zu::RnEngineRng<TypeParam>()));
}

TYPED_TEST(RnDrawTest, NoValueMeansNoDraw)
{
    RnLecuyerUniformRng<TypeParam> source;
    RnLecuyerUniformRng<TypeParam> twin;
    Zu::rnDraw(source, 0, nullptr);
    EXPECT_TRUE(sameBits(source(), twin()));
}

// A client's source whose sequences are another matter than its calls.
template <class T> class Client final : public RnRng<T>
{
public:
    T operator()() override
    {
        return static_cast<T>(++_calls);
    }
    void getSample(T& value) override
    {
        ++_others;
        value = T(-1);
    }
    void getSequence(unsigned int n, T* values) override
    {
        ++_others;
        for (unsigned int i = 0; i < n; ++i) values[i] = T(-1);
    }
    T getEfficientWidth() const override
    {
        return T(1);
    }
    T getEfficientMin() const override
    {
        return T(0);
    }
    T getEfficientMax() const override
    {
        return T(1);
    }
    T getEfficientFraction() const override
    {
        return T(1);
    }
    T getPdf(T) const override
    {
        return T(1);
    }
    void restart() override {}
    const char* getName() const override
    {
        return "client";
    }

    unsigned int _calls = 0;
    unsigned int _others = 0;
};

TYPED_TEST(RnDrawTest, AClientsSourceSeesTheCallsAlone)
{
    for (const unsigned int n : NUMBERS)
    {
        Client<TypeParam> client;
        Client<TypeParam> twin;
        EXPECT_TRUE(sameBits(drawn<TypeParam>(client, n), called<TypeParam>(twin, n))) << n;
        EXPECT_EQ(client._calls, n);
        EXPECT_EQ(client._others, 0U);
    }
}

// Gives 1, 2, 3 and so on instead of its base's draws.
template <class Base, class T> class Overriding : public Base
{
public:
    template <class... Arguments>
    explicit Overriding(Arguments&&... arguments) : Base(std::forward<Arguments>(arguments)...)
    {
    }
    T operator()() override
    {
        return static_cast<T>(++_calls);
    }

    unsigned int _calls = 0;
};

template <class T, class Source> void expectCallsOfOverride(Source& source)
{
    Client<T> counting;
    EXPECT_TRUE(sameBits(drawn<T>(source, 600), called<T>(counting, 600))) << source.getName();
    EXPECT_EQ(source._calls, 600U) << source.getName();
}

TYPED_TEST(RnDrawTest, ClassesDerivedFromTheLibrarysSourcesSeeTheCalls)
{
    RnLecuyerUniformRng<TypeParam> uniform;
    Overriding<RnLecuyerUniformRng<TypeParam>, TypeParam> combined;
    Overriding<RnNumRecUniformRng<TypeParam>, TypeParam> shuffled;
    Overriding<RnStdUniformRng<TypeParam>, TypeParam> runtime;
    Overriding<RnVanDerCorputRng<TypeParam>, TypeParam> sequence;
    Overriding<RnGaussianRng<TypeParam>, TypeParam> gaussian(&uniform);
    Overriding<RnMexicanHatRng<TypeParam>, TypeParam> hat(&uniform);
    Overriding<RnHistogramRng<TypeParam>, TypeParam> measured(this->_histogram, &uniform);
    expectCallsOfOverride<TypeParam>(combined);
    expectCallsOfOverride<TypeParam>(shuffled);
    expectCallsOfOverride<TypeParam>(runtime);
    expectCallsOfOverride<TypeParam>(sequence);
    expectCallsOfOverride<TypeParam>(gaussian);
    expectCallsOfOverride<TypeParam>(hat);
    expectCallsOfOverride<TypeParam>(measured);
}

TYPED_TEST(RnDrawTest, ASequenceThatADerivedClassReplacedIsNotAskedFor)
{
    struct Replaced : RnLecuyerUniformRng<TypeParam>
    {
        void getSequence(unsigned int n, TypeParam* values) override
        {
            for (unsigned int i = 0; i < n; ++i) values[i] = TypeParam(-1);
        }
    };
    Replaced source;
    RnLecuyerUniformRng<TypeParam> twin;
    expectCalls<TypeParam>(source, twin);
}

// The calls of a client's source arrive in order through a wrapper of the library too.
TYPED_TEST(RnDrawTest, AWrapperDrawsNoMoreFromItsSourceThanItsCallsDo)
{
    Client<TypeParam> client;
    Client<TypeParam> twin;
    // One call for each value: the numbers are above the table's end, so all fall into one bin.
    RnHistogramRng<TypeParam> measured(this->_histogram, &client);
    RnHistogramRng<TypeParam> measuredTwin(this->_histogram, &twin);
    for (const unsigned int n : NUMBERS)
    {
        EXPECT_TRUE(sameBits(drawn<TypeParam>(measured, n), called<TypeParam>(measuredTwin, n)));
        EXPECT_EQ(client._calls, twin._calls) << n;
        EXPECT_EQ(client._others, 0U) << n;
    }
}

} // namespace
