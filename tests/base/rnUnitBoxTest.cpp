#include "base/rnUnitBox.h"

#include "support/sampleChecks.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

using support::sameBits;
using Zu::RnUnitBoxRng;
using Zu::RnUnitSquareRng;

// Counts: coordinate d of point k is 10 * k + d.
template <class T, int N> class Source final : public RnUnitBoxRng<T, N>
{
public:
    explicit Source(int start = 0, std::string* log = nullptr)
        : _start(start), _point(start), _log(log)
    {
    }

    void getSample(T* const values) override
    {
        note("sample ");
        for (int d = 0; d < N; ++d) values[d] = static_cast<T>(10 * _point + d);
        ++_point;
    }
    void getSequence(unsigned int n, T** const arrays) override
    {
        note("sequence " + std::to_string(n) + " ");
        for (unsigned int i = 0; i < n; ++i, ++_point)
            for (int d = 0; d < N; ++d) arrays[d][i] = static_cast<T>(10 * _point + d);
    }
    void restart() override
    {
        note("restart ");
        _point = _start;
    }
    const char* getName() const override
    {
        return "source of the test";
    }

private:
    void note(const std::string& text)
    {
        if (_log) *_log += text;
    }

    int _start;
    int _point;
    std::string* _log;
};

template <class T> class Pairs final : public RnUnitSquareRng<T, Source<T, 2>>
{
public:
    Pairs(int start, std::string* log) : RnUnitSquareRng<T, Source<T, 2>>(start, log) {}
};

template <class T> class RnUnitBoxTest : public testing::Test
{
};
using Floats = testing::Types<float, double>;
TYPED_TEST_SUITE(RnUnitBoxTest, Floats);

TYPED_TEST(RnUnitBoxTest, ASourceOfPointsIsUniformInAnyNumberOfDimensions)
{
    support::expectUniformOnUnitBox<TypeParam, 2>(Source<TypeParam, 2>());
    support::expectUniformOnUnitBox<TypeParam, 3>(Source<TypeParam, 3>());
    support::expectUniformOnUnitBox<TypeParam, 4>(Source<TypeParam, 4>());
}

TYPED_TEST(RnUnitBoxTest, ASourceOfPairsIsUniform)
{
    support::expectUniformOnUnitSquare<TypeParam>(Pairs<TypeParam>(0, nullptr));
}

TYPED_TEST(RnUnitBoxTest, PairsAreThePointsOfTheSourceWithin)
{
    std::string log;
    Pairs<TypeParam> pairs(3, &log);
    EXPECT_TRUE(sameBits(support::pointsOf(pairs, 2), std::vector<TypeParam>{30, 31, 40, 41}));
    EXPECT_EQ(log, "sample sample ");
    log.clear();
    EXPECT_TRUE(sameBits(support::sequenceOf(pairs, 2), std::vector<TypeParam>{50, 51, 60, 61}));
    EXPECT_EQ(log, "sequence 2 ");
    log.clear();
    pairs.restart();
    EXPECT_EQ(log, "restart ");
    EXPECT_TRUE(sameBits(support::pointsOf(pairs, 1), std::vector<TypeParam>{30, 31}));
    EXPECT_STREQ(pairs.getName(), "source of the test");
}

TYPED_TEST(RnUnitBoxTest, PairsCarryTheirSourceAlongInACopy)
{
    Pairs<TypeParam> pairs(3, nullptr);
    support::pointsOf(pairs, 4);
    Pairs<TypeParam> copy(pairs);
    EXPECT_TRUE(sameBits(support::pointsOf(pairs, 3), support::pointsOf(copy, 3)));
}

} // namespace
