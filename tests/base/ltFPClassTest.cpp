#include "base/ltFPClass.h"

#include <bit>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <random>

namespace
{

using Zu::LtFPClass;

constexpr double POS_INFINITY = std::numeric_limits<double>::infinity();
constexpr double NO_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr float POS_INFINITY_FLOAT = std::numeric_limits<float>::infinity();
constexpr float NO_NUMBER_FLOAT = std::numeric_limits<float>::quiet_NaN();

static_assert(LtFPClass::isNaN(NO_NUMBER) && LtFPClass::isNaN(NO_NUMBER_FLOAT));
static_assert(LtFPClass::isInfinity(-POS_INFINITY) && LtFPClass::isInfinity(-POS_INFINITY_FLOAT));
static_assert(LtFPClass::isPositiveInfinity(POS_INFINITY));
static_assert(LtFPClass::isPositiveInfinity(POS_INFINITY_FLOAT));
static_assert(LtFPClass::isNegativeInfinity(-POS_INFINITY));
static_assert(LtFPClass::isNegativeInfinity(-POS_INFINITY_FLOAT));
static_assert(LtFPClass::isFinite(1.0) && LtFPClass::isFinite(1.0F));

enum class Kind
{
    NUMBER,
    POSITIVE_INFINITY,
    NEGATIVE_INFINITY,
    NOT_A_NUMBER
};

template <class T> void expectKind(T x, Kind kind, std::uint64_t bits)
{
    const bool isPositive = kind == Kind::POSITIVE_INFINITY;
    const bool isNegative = kind == Kind::NEGATIVE_INFINITY;
    EXPECT_EQ(LtFPClass::isNaN(x), kind == Kind::NOT_A_NUMBER) << std::hex << bits;
    EXPECT_EQ(LtFPClass::isInfinity(x), isPositive || isNegative) << std::hex << bits;
    EXPECT_EQ(LtFPClass::isPositiveInfinity(x), isPositive) << std::hex << bits;
    EXPECT_EQ(LtFPClass::isNegativeInfinity(x), isNegative) << std::hex << bits;
    EXPECT_EQ(LtFPClass::isFinite(x), kind == Kind::NUMBER) << std::hex << bits;
}

// The kind according to the bit pattern of a number.
template <class Bits> Kind kindOf(Bits bits, Bits exponentMask)
{
    const Bits fractionMask = (exponentMask & (~exponentMask + 1)) - 1;
    if ((bits & exponentMask) != exponentMask) return Kind::NUMBER;
    if ((bits & fractionMask) != 0) return Kind::NOT_A_NUMBER;
    return bits == exponentMask ? Kind::POSITIVE_INFINITY : Kind::NEGATIVE_INFINITY;
}

constexpr std::uint64_t DOUBLE_EXPONENT = 0x7FF0000000000000ULL;
constexpr std::uint32_t FLOAT_EXPONENT = 0x7F800000U;

TEST(LtFPClass, DoublesOfEveryKind)
{
    const struct
    {
        std::uint64_t _bits;
        Kind _kind;
    } cases[] = {
        {0x0000000000000000, Kind::NUMBER},
        {0x8000000000000000, Kind::NUMBER},
        {0x0000000000000001, Kind::NUMBER}, // the smallest denormal
        {0x800FFFFFFFFFFFFF, Kind::NUMBER}, // the largest denormal, negative
        {0x0010000000000000, Kind::NUMBER}, // the smallest normal
        {0x3FF0000000000000, Kind::NUMBER},
        {0x7FEFFFFFFFFFFFFF, Kind::NUMBER}, // the largest
        {0xFFEFFFFFFFFFFFFF, Kind::NUMBER},
        {0x7FF0000000000000, Kind::POSITIVE_INFINITY},
        {0xFFF0000000000000, Kind::NEGATIVE_INFINITY},
        {0x7FF8000000000000, Kind::NOT_A_NUMBER},
        {0xFFF8000000000000, Kind::NOT_A_NUMBER},
        {0x7FF0000000000001, Kind::NOT_A_NUMBER}, // signalling
        {0xFFFFFFFFFFFFFFFF, Kind::NOT_A_NUMBER},
    };
    for (const auto& row : cases)
        expectKind(std::bit_cast<double>(row._bits), row._kind, row._bits);
}

TEST(LtFPClass, FloatsOfEveryKind)
{
    const struct
    {
        std::uint32_t _bits;
        Kind _kind;
    } cases[] = {
        {0x00000000, Kind::NUMBER},
        {0x80000000, Kind::NUMBER},
        {0x00000001, Kind::NUMBER}, // the smallest denormal
        {0x807FFFFF, Kind::NUMBER}, // the largest denormal, negative
        {0x00800000, Kind::NUMBER}, // the smallest normal
        {0x3F800000, Kind::NUMBER},
        {0x7F7FFFFF, Kind::NUMBER}, // the largest
        {0xFF7FFFFF, Kind::NUMBER},
        {0x7F800000, Kind::POSITIVE_INFINITY},
        {0xFF800000, Kind::NEGATIVE_INFINITY},
        {0x7FC00000, Kind::NOT_A_NUMBER},
        {0xFFC00000, Kind::NOT_A_NUMBER},
        {0x7F800001, Kind::NOT_A_NUMBER}, // signalling
        {0xFFFFFFFF, Kind::NOT_A_NUMBER},
    };
    for (const auto& row : cases) expectKind(std::bit_cast<float>(row._bits), row._kind, row._bits);
}

TEST(LtFPClass, RandomPatternsAreWhatTheirExponentSays)
{
    std::mt19937_64 random(23);
    for (int i = 0; i < 20000; ++i)
    {
        // Every second exponent is the one of infinities and NaNs, every fourth fraction 0.
        std::uint64_t bits = random();
        auto half = static_cast<std::uint32_t>(random() >> 32);
        if (i % 2 != 0)
        {
            bits |= DOUBLE_EXPONENT;
            half |= FLOAT_EXPONENT;
        }
        if (i % 4 == 3)
        {
            bits &= 0xFFF0000000000000ULL;
            half &= 0xFF800000U;
        }
        expectKind(std::bit_cast<double>(bits), kindOf(bits, DOUBLE_EXPONENT), bits);
        expectKind(std::bit_cast<float>(half), kindOf(half, FLOAT_EXPONENT), half);
    }
}

} // namespace
