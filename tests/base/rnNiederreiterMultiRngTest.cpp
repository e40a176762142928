#include "base/rnNiederreiterMultiRng.h"

#include "base/rnNiederreiterTables.h"

#include "support/sampleChecks.h"
#include "support/skipChecks.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <utility>
#include <vector>

namespace
{

using support::pointsAre;
using support::pointsOf;
using support::referencePoints;
using support::sameBits;
using support::sequenceOf;
using Zu::RnNiederreiterMultiRng;
namespace Tables = Zu::RnNiederreiterTables;

using Words = std::array<std::uint32_t, 32>;
using Bits = std::vector<int>;

Bits product(const Bits& a, const Bits& b)
{
    Bits result(a.size() + b.size() - 1, 0);
    for (std::size_t i = 0; i < a.size(); ++i)
        for (std::size_t k = 0; k < b.size(); ++k)
            result[i + k] = (result[i + k] + a[i] * b[k]) % 2;
    return result;
}

// The construction for one polynomial, coefficient by coefficient from that of x^0 on.
Words wordsOf(const Bits& polynomial)
{
    const std::size_t degree = polynomial.size() - 1;
    Words words = {};
    Bits b = {1};
    Bits v(200, 0);
    std::size_t u = 0;
    for (unsigned int row = 0; row <= 30; ++row)
    {
        if (u == 0)
        {
            const std::size_t h = b.size() - 1;
            b = product(b, polynomial);
            const std::size_t m = b.size() - 1;
            for (std::size_t r = 0; r < m; ++r) v[r] = r < h ? 0 : 1;
            for (std::size_t r = 0; r + m < v.size(); ++r)
            {
                int sum = 0;
                for (std::size_t k = 0; k < m; ++k) sum += b[k] * v[r + k];
                v[r + m] = sum % 2;
            }
        }
        for (std::size_t r = 0; r <= 30; ++r)
            if (v[r + u] == 1) words[r] |= 1U << (30 - row);
        u = (u + 1) % degree;
    }
    return words;
}

const std::array<Words, 4>& matrices()
{
    static const std::array<Words, 4> MATRICES = {wordsOf({0, 1}), wordsOf({1, 1}),
                                                  wordsOf({1, 1, 1}), wordsOf({1, 1, 0, 1})};
    return MATRICES;
}

// The point of a number, bit by bit.
std::array<std::uint32_t, 4> wordsOfPoint(std::uint32_t m)
{
    const std::array<Words, 4>& columns = matrices();
    std::array<std::uint32_t, 4> accumulators = {};
    for (std::size_t b = 0; b < 32; ++b)
        if (m >> b & 1U)
            for (std::size_t d = 0; d < 4; ++d) accumulators[d] ^= columns[d][b];
    return accumulators;
}

template <class T> T valueOf(std::uint32_t word)
{
    const double value = double(word) * 0x1p-31;
    return static_cast<T>(value);
}

template <class T> std::array<T, 4> pointOf(std::uint32_t m)
{
    const std::array<std::uint32_t, 4> words = wordsOfPoint(m);
    std::array<T, 4> point;
    for (std::size_t d = 0; d < 4; ++d) point[d] = valueOf<T>(words[d]);
    return point;
}

template <class T> std::vector<T> valuesOfPoint(std::uint32_t m)
{
    const std::array<T, 4> point = pointOf<T>(m);
    return {point.begin(), point.end()};
}

template <class T> struct Reference
{
    std::uint32_t _index = 0;

    std::array<T, 4> operator()()
    {
        return pointOf<T>(_index++ + 4096);
    }
};

// A number whose word in one dimension agrees with the wanted one in its leading 25 bits, and the
// word itself. The words are brought to different leading bits, then taken out of what is wanted.
struct Found
{
    std::uint32_t _number;
    std::uint32_t _word;
};

Found numberFor(std::size_t dimension, std::uint32_t wanted)
{
    std::array<Found, 31> byLeadingBit = {};
    for (std::size_t b = 0; b < 31; ++b)
    {
        Found found{1U << b, matrices()[dimension][b]};
        for (int bit = 30; bit >= 0; --bit)
        {
            if ((found._word >> bit & 1U) == 0) continue;
            Found& other = byLeadingBit[static_cast<std::size_t>(bit)];
            if (other._word == 0)
            {
                other = found;
                break;
            }
            found._number ^= other._number;
            found._word ^= other._word;
        }
    }
    Found found{0, 0};
    for (int bit = 30; bit >= 0; --bit)
    {
        if (((found._word ^ wanted) >> bit & 1U) == 0) continue;
        const Found& other = byLeadingBit[static_cast<std::size_t>(bit)];
        found._number ^= other._number;
        found._word ^= other._word;
    }
    return found;
}

struct TellingRow
{
    std::size_t _dimension;
    std::array<std::uint32_t, 7> _words;
};

// Words 0, 1, 2, 3, 12, 30 and 31.
constexpr std::size_t TELLING_PLACES[] = {0, 1, 2, 3, 12, 30, 31};
constexpr TellingRow TELLING_ROWS[] = {
    {0, {0x40000000, 0x20000000, 0x10000000, 0x08000000, 0x00040000, 0x00000001, 0}},
    {1, {0x40000000, 0x60000000, 0x50000000, 0x78000000, 0x44440000, 0x55555555, 0}},
    {2, {0x60000000, 0x48000000, 0x38000000, 0x7A000000, 0x603E0000, 0x65805DDD, 0}},
    {3, {0x70000000, 0x62000000, 0x46000000, 0x1E000000, 0x5C470000, 0x46046037, 0}}};

constexpr bool tablesHaveTheTellingRows()
{
    for (const TellingRow& row : TELLING_ROWS)
        for (std::size_t i = 0; i < 7; ++i)
            if (Tables::COLUMNS[row._dimension]._words[TELLING_PLACES[i]] != row._words[i])
                return false;
    return true;
}
static_assert(tablesHaveTheTellingRows());

TEST(RnNiederreiterTables, TheReferenceHasTheTellingRows)
{
    for (const TellingRow& row : TELLING_ROWS)
        for (std::size_t i = 0; i < 7; ++i)
            EXPECT_EQ(matrices()[row._dimension][TELLING_PLACES[i]], row._words[i])
                << row._dimension << " " << TELLING_PLACES[i];
}

TEST(RnNiederreiterTables, HaveTheRowsOfTheConstruction)
{
    for (std::size_t d = 0; d < 4; ++d)
        for (std::size_t b = 0; b < 32; ++b)
            EXPECT_EQ(Tables::COLUMNS[d]._words[b], matrices()[d][b]) << d << " " << b;
}

TEST(RnNiederreiterTables, TheFirstDimensionMirrorsTheBits)
{
    for (std::size_t b = 0; b < 31; ++b)
        EXPECT_EQ(Tables::COLUMNS[0]._words[b], std::uint32_t{1} << (30 - b)) << b;
}

TEST(RnNiederreiterTables, TheSecondDimensionIsPascalsTriangle)
{
    // The binomial of r over j is odd just where j has no bit that r lacks.
    for (std::uint32_t r = 0; r < 31; ++r)
        for (std::uint32_t j = 0; j < 31; ++j)
            EXPECT_EQ(Tables::COLUMNS[1]._words[r] >> (30 - j) & 1U, (j & ~r) == 0 ? 1U : 0U)
                << r << " " << j;
}

TEST(RnNiederreiterTables, NoWordHasTheHighestBitAndTheLastIsZero)
{
    for (const Tables::Columns& columns : Tables::COLUMNS)
    {
        for (const std::uint32_t word : columns._words) EXPECT_EQ(word >> 31, 0U);
        EXPECT_EQ(columns._words[31], 0U);
    }
}

TEST(RnNiederreiterTables, BytesContributeTheSumOfTheirBits)
{
    for (std::uint32_t byte = 0; byte < 4; ++byte)
        for (std::uint32_t value = 0; value < 256; ++value)
        {
            const std::array<std::uint32_t, 4> expected = wordsOfPoint(value << (8 * byte));
            for (std::size_t d = 0; d < 4; ++d)
            {
                ASSERT_EQ(Tables::BYTE_TABLE._words[byte][value][d], expected[d])
                    << byte << " " << value << " " << d;
                if (byte != 0) continue;
                ASSERT_EQ(Tables::LOW_TABLE._words[d][value], expected[d]) << value << " " << d;
            }
        }
}

template <class T> class RnNiederreiterMultiRngTest : public testing::Test
{
};
using Floats = testing::Types<float, double>;
TYPED_TEST_SUITE(RnNiederreiterMultiRngTest, Floats);

TYPED_TEST(RnNiederreiterMultiRngTest, TheFirstPointIsThatOf4096)
{
    RnNiederreiterMultiRng<TypeParam> rng;
    const std::vector<TypeParam> expected = {TypeParam(0.0001220703125), TypeParam(0.5333251953125),
                                             TypeParam(0.75189208984375),
                                             TypeParam(0.720916748046875)};
    EXPECT_TRUE(sameBits(pointsOf(rng, 1), expected));
    rng.restart();
    EXPECT_TRUE(sameBits(pointsOf(rng, 1), expected));
    rng.restart();
    EXPECT_TRUE(sameBits(sequenceOf(rng, 1), expected));
}

TYPED_TEST(RnNiederreiterMultiRngTest, PointsAreThoseOfTheMatrices)
{
    RnNiederreiterMultiRng<TypeParam> rng;
    Reference<TypeParam> reference;
    EXPECT_TRUE(sameBits(pointsOf(rng, 5000), referencePoints<TypeParam>(reference, 5000)));
}

TYPED_TEST(RnNiederreiterMultiRngTest, PointsAllOverTheNumbersAreThoseOfTheMatrices)
{
    std::mt19937 random(761);
    RnNiederreiterMultiRng<TypeParam> rng;
    for (int i = 0; i < 5000; ++i)
    {
        const auto m = static_cast<std::uint32_t>(random() >> random() % 32);
        rng.restart(m - 4096);
        ASSERT_TRUE(sameBits(pointsOf(rng, 1), valuesOfPoint<TypeParam>(m))) << m;
    }
}

TYPED_TEST(RnNiederreiterMultiRngTest, EachBitAddsItsColumns)
{
    RnNiederreiterMultiRng<TypeParam> rng;
    for (std::size_t b = 0; b < 32; ++b)
    {
        rng.restart((1U << b) - 4096);
        std::vector<TypeParam> expected;
        for (const Words& words : matrices()) expected.push_back(valueOf<TypeParam>(words[b]));
        EXPECT_TRUE(sameBits(pointsOf(rng, 1), expected)) << b;
    }
}

TYPED_TEST(RnNiederreiterMultiRngTest, SequencesOfAllLengthsAreRepeatedPoints)
{
    std::mt19937 random(762);
    for (const unsigned int length : support::sequenceLengths())
        for (int i = 0; i < 2; ++i)
        {
            const auto index = static_cast<std::uint32_t>(random() >> random() % 32);
            RnNiederreiterMultiRng<TypeParam> rng;
            rng.restart(index);
            Reference<TypeParam> reference{index};
            ASSERT_TRUE(pointsAre<TypeParam>(rng, reference, length)) << index;
        }
}

TYPED_TEST(RnNiederreiterMultiRngTest, SequencesPassEveryCarryAndTheWrap)
{
    for (unsigned int b = 0; b <= 32; ++b)
    {
        // With b = 32 the number wraps; with the index 0 the index does.
        const auto number = static_cast<std::uint32_t>(std::uint64_t{1} << b);
        for (const std::uint32_t index : {number - 4096, number})
            for (const std::uint32_t before : {1U, 3U, 255U, 256U, 300U})
            {
                RnNiederreiterMultiRng<TypeParam> rng;
                rng.restart(index - before);
                Reference<TypeParam> reference{index - before};
                ASSERT_TRUE(pointsAre<TypeParam>(rng, reference, before + 20))
                    << b << " " << before;
            }
    }
}

TYPED_TEST(RnNiederreiterMultiRngTest, SequencesBeginAtEveryPlaceOfABlock)
{
    for (std::uint32_t start = 0; start < 256; ++start)
    {
        RnNiederreiterMultiRng<TypeParam> rng;
        rng.restart(0x12345600 + start);
        Reference<TypeParam> reference{0x12345600 + start};
        ASSERT_TRUE(sameBits(sequenceOf(rng, 300), referencePoints<TypeParam>(reference, 300)))
            << start;
    }
}

TYPED_TEST(RnNiederreiterMultiRngTest, TheNumberWrapsToThePointZero)
{
    RnNiederreiterMultiRng<TypeParam> rng;
    rng.restart(0xFFFFF000);
    EXPECT_TRUE(sameBits(pointsOf(rng, 1), std::vector<TypeParam>(4, TypeParam(0))));
    EXPECT_TRUE(sameBits(pointsOf(rng, 1), valuesOfPoint<TypeParam>(1)));
    rng.restart(0xFFFFF000);
    std::vector<TypeParam> expected(4, TypeParam(0));
    for (const TypeParam value : valuesOfPoint<TypeParam>(1)) expected.push_back(value);
    EXPECT_TRUE(sameBits(sequenceOf(rng, 2), expected));
}

TYPED_TEST(RnNiederreiterMultiRngTest, TheIndexWrapsWithoutASeam)
{
    RnNiederreiterMultiRng<TypeParam> rng;
    rng.restart(0xFFFFFFFF);
    EXPECT_TRUE(sameBits(pointsOf(rng, 1), valuesOfPoint<TypeParam>(4095)));
    EXPECT_TRUE(sameBits(pointsOf(rng, 1), valuesOfPoint<TypeParam>(4096)));
}

TYPED_TEST(RnNiederreiterMultiRngTest, TheHighestBitOfTheNumberHasNoEffect)
{
    std::mt19937 random(763);
    RnNiederreiterMultiRng<TypeParam> low;
    RnNiederreiterMultiRng<TypeParam> high;
    for (int i = 0; i < 100; ++i)
    {
        const auto index = static_cast<std::uint32_t>(random());
        low.restart(index);
        high.restart(index + 0x80000000);
        EXPECT_TRUE(sameBits(pointsOf(low, 3), pointsOf(high, 3))) << index;
        EXPECT_TRUE(sameBits(sequenceOf(low, 70), sequenceOf(high, 70))) << index;
    }
}

// The nearest number to a word in single precision is 1 from 0x7FFFFFC0 on, and still below 1 for
// all words before it.
TYPED_TEST(RnNiederreiterMultiRngTest, TheLargestWordsAreOneInSinglePrecisionAlone)
{
    constexpr bool single = sizeof(TypeParam) == sizeof(float);
    for (std::size_t d = 0; d < 4; ++d)
        for (const std::uint32_t wanted : {0x7FFFFFFFU, 0x7FFFFFC0U, 0x7FFFFFBFU, 0x7FFFFF80U})
        {
            const Found found = numberFor(d, wanted);
            ASSERT_EQ(found._word >> 6, wanted >> 6) << d;
            ASSERT_EQ(wordsOfPoint(found._number)[d], found._word) << d;
            RnNiederreiterMultiRng<TypeParam> rng;
            rng.restart(found._number - 4096);
            std::vector<TypeParam> point = pointsOf(rng, 1);
            rng.restart(found._number - 4096);
            EXPECT_TRUE(sameBits(sequenceOf(rng, 1), point)) << d;
            rng.restart(found._number - 4096);
            std::vector<TypeParam> sequence = sequenceOf(rng, 600);
            sequence.resize(4);
            EXPECT_TRUE(sameBits(sequence, point)) << d;

            const bool isOne = single && found._word >= 0x7FFFFFC0;
            EXPECT_TRUE(sameBits(point[d], isOne ? TypeParam(1) : valueOf<TypeParam>(found._word)));
            EXPECT_EQ(point[d] < TypeParam(1), !isOne) << d;
            EXPECT_EQ(rng.getPdf(point.data()), isOne ? TypeParam(0) : TypeParam(1)) << d;
        }
}

TEST(RnNiederreiterMultiRng, DoublesAreInTheHalfOpenUnitInterval)
{
    std::mt19937 random(764);
    RnNiederreiterMultiRng<double> rng;
    for (int i = 0; i < 20; ++i)
    {
        rng.restart(static_cast<std::uint32_t>(random()));
        for (const double value : sequenceOf(rng, 1000))
        {
            ASSERT_GE(value, 0.0);
            ASSERT_LT(value, 1.0);
        }
    }
}

TYPED_TEST(RnNiederreiterMultiRngTest, ARestartGoesToTheFirstPointOrToTheNumber)
{
    RnNiederreiterMultiRng<TypeParam> rng;
    for (const std::uint32_t index : {0U, 1U, 4096U, 1U << 31, 4294967295U})
    {
        rng.restart(index);
        Reference<TypeParam> reference{index};
        EXPECT_TRUE(pointsAre<TypeParam>(rng, reference, 70)) << index;
        rng.restart();
        reference._index = 0;
        EXPECT_TRUE(pointsAre<TypeParam>(rng, reference, 70)) << index;
    }
}

TYPED_TEST(RnNiederreiterMultiRngTest, ASequenceOfNoneAdvancesNothing)
{
    RnNiederreiterMultiRng<TypeParam> rng;
    Reference<TypeParam> reference;
    for (int i = 0; i < 10; ++i)
    {
        TypeParam* arrays[4] = {};
        rng.getSequence(0, arrays);
        EXPECT_TRUE(sameBits(pointsOf(rng, 1), referencePoints<TypeParam>(reference, 1)));
    }
}

template <class T> struct Counting : RnNiederreiterMultiRng<T>
{
    unsigned int _calls = 0;

    void getSample(T* const values) override
    {
        RnNiederreiterMultiRng<T>::getSample(values);
        ++_calls;
        for (std::size_t d = 0; d < 4; ++d) values[d] = values[d] + T(_calls);
    }
};

TYPED_TEST(RnNiederreiterMultiRngTest, ASequenceIsMadeOfWhatAnOverridingClassGives)
{
    for (const unsigned int length : {0U, 1U, 7U, 256U, 1000U})
    {
        Counting<TypeParam> rng;
        Reference<TypeParam> reference;
        std::vector<TypeParam> expected;
        for (unsigned int i = 1; i <= length; ++i)
            for (const TypeParam value : reference()) expected.push_back(value + TypeParam(i));
        EXPECT_TRUE(sameBits(sequenceOf(rng, length), expected));
        EXPECT_EQ(rng._calls, length);
    }
}

TYPED_TEST(RnNiederreiterMultiRngTest, AnOverridingClassMayWriteWhatItLikes)
{
    struct Constant : RnNiederreiterMultiRng<TypeParam>
    {
        void getSample(TypeParam* const values) override
        {
            for (int d = 0; d < 4; ++d) values[d] = TypeParam(d) / 4;
        }
    };
    Constant rng;
    for (std::size_t i = 0; const TypeParam value : sequenceOf(rng, 600))
        ASSERT_EQ(value, TypeParam(i++ % 4) / 4);
    // It hasn't drawn.
    TypeParam point[4];
    rng.RnNiederreiterMultiRng<TypeParam>::getSample(point);
    EXPECT_TRUE(sameBits(std::vector<TypeParam>(point, point + 4), valuesOfPoint<TypeParam>(4096)));
}

TYPED_TEST(RnNiederreiterMultiRngTest, ADerivedClassWithoutAnOverrideHasTheSamePoints)
{
    struct Derived : RnNiederreiterMultiRng<TypeParam>
    {
    };
    Derived rng;
    Reference<TypeParam> reference;
    EXPECT_TRUE(pointsAre<TypeParam>(rng, reference, 600));
}

TYPED_TEST(RnNiederreiterMultiRngTest, ACopyGoesOnIndependently)
{
    RnNiederreiterMultiRng<TypeParam> rng;
    pointsOf(rng, 50);
    RnNiederreiterMultiRng<TypeParam> copy(rng);
    RnNiederreiterMultiRng<TypeParam> assigned;
    assigned = rng;
    for (RnNiederreiterMultiRng<TypeParam>* each : {&rng, &copy, &assigned})
    {
        Reference<TypeParam> reference{50};
        EXPECT_TRUE(pointsAre<TypeParam>(*each, reference, 60));
    }
}

TYPED_TEST(RnNiederreiterMultiRngTest, IsUniformOnTheUnitBox)
{
    support::expectUniformOnUnitBox<TypeParam, 4>(RnNiederreiterMultiRng<TypeParam>());
}

TYPED_TEST(RnNiederreiterMultiRngTest, WorksThroughTheInterface)
{
    RnNiederreiterMultiRng<TypeParam> object;
    Zu::RnMultiRng<TypeParam, 4>& rng = object;
    for (int i = 0; i < 2; ++i)
    {
        Reference<TypeParam> reference;
        EXPECT_TRUE(pointsAre<TypeParam>(rng, reference, 100));
        rng.restart();
    }
    EXPECT_STREQ(rng.getName(), "Niederreiter");
}

TYPED_TEST(RnNiederreiterMultiRngTest, ADerivedObjectEndsThroughThisType)
{
    support::expectEndsThroughItsType<RnNiederreiterMultiRng<TypeParam>>();
}

TYPED_TEST(RnNiederreiterMultiRngTest, SkipsLeaveOutPoints)
{
    RnNiederreiterMultiRng<TypeParam> rng;
    support::expectSkipLeavesOutDraws(rng, support::NextPoint<TypeParam, 4>());
    rng.restart(0xffffff00U);
    support::expectSkipLeavesOutDraws(rng, support::NextPoint<TypeParam, 4>());
}

} // namespace
