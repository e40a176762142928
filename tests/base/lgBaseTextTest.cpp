#include "base/lgBaseText.h"

#include "base/dtRefTime.h"
#include "base/dtTime.h"
#include "base/dtTimeMark.h"
#include "base/exInternalError.h"
#include "base/hwCounter.h"
#include "base/interval.h"
#include "base/osCpuInfo.h"
#include "base/osFilePath.h"
#include "base/rational.h"

#include "support/ringText.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <sstream>
#include <string>

namespace
{

using support::ringTextOf;
using Zu::DtTime;
using Zu::DtTimeIndex;
using Zu::Interval;
using Zu::Rational;

template <class T> std::string streamTextOf(const T& value)
{
    std::ostringstream os;
    os << value;
    return os.str();
}

TEST(LgBaseText, TimesAndRatesHaveOneForm)
{
    EXPECT_EQ(ringTextOf(Rational(3, 4)), "(3/4=0.75)");
    EXPECT_EQ(ringTextOf(Rational(-30000, 1001)), "(-30000/1001=-29.97)");
    EXPECT_EQ(ringTextOf(DtTimeIndex(-5)), "-5");
    EXPECT_EQ(ringTextOf(DtTime(DtTimeIndex(90), Rational(30, 1))), "(90 @ (30/1=30))");
    EXPECT_EQ(ringTextOf(Interval<DtTimeIndex>(DtTimeIndex(1), DtTimeIndex(20))), "[1, 20]");
}

TEST(LgBaseText, AReferenceTimeAndAMarkAreAsOnAStandardStream)
{
    Zu::OsCpuInfo::initialize();
    Zu::HwCounter::init();
    const Zu::DtRefTime now = Zu::DtRefTimeFactory::getInstance().create();
    EXPECT_EQ(ringTextOf(now), streamTextOf(now));
    const Zu::DtTimeMark mark(DtTime(DtTimeIndex(-7), Rational(24, 1)), now);
    EXPECT_EQ(ringTextOf(mark), "((-7 @ (24/1=24)) " + ringTextOf(now) + ")");
}

TEST(LgBaseText, NumbersAreAsOnANewStandardStream)
{
    std::mt19937_64 random(21);
    for (int i = 0; i < 1000; ++i)
    {
        const auto bits = static_cast<std::int32_t>(random());
        const auto other = static_cast<std::int32_t>(random() % 100000) + 1;
        EXPECT_EQ(ringTextOf(Rational(bits, other)), streamTextOf(Rational(bits, other)));
        const Interval<double> wide(bits / 1e3, bits * 1e30);
        EXPECT_EQ(ringTextOf(wide), streamTextOf(wide));
        const Interval<float> single(static_cast<float>(bits), static_cast<float>(other) / 3);
        EXPECT_EQ(ringTextOf(single), streamTextOf(single));
    }
    using Limits = std::numeric_limits<double>;
    EXPECT_EQ(ringTextOf(Interval<double>(-Limits::quiet_NaN(), -Limits::infinity())),
              "[nan, -inf]");
    EXPECT_EQ(ringTextOf(Interval<double>(-Limits::max(), Limits::denorm_min())),
              "[-1.79769e+308, 4.94066e-324]");
}

TEST(LgBaseText, APathIsShownAsItStands)
{
    EXPECT_EQ(ringTextOf(Zu::OsFilePath("a//b/../c d")), "a//b/../c d");
}

TEST(LgBaseText, AnExceptionShowsItsReason)
{
    EXPECT_EQ(ringTextOf(Zu::ExInternalError("file", 7, "went wrong")), "went wrong");
    const Zu::ExInternalError derived("file", 7, "went wrong");
    EXPECT_EQ(ringTextOf(static_cast<const Zu::ExBase&>(derived)), "went wrong");
}

} // namespace
