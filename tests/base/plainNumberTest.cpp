#include "base/plainNumber.h"

#include "support/commaLocale.h"

#include <gtest/gtest.h>
#include <iomanip>
#include <ios>
#include <limits>
#include <ostream>
#include <sstream>
#include <string>

namespace
{

using Zu::plainNumber;

// A stream that would write "1.234,5".
class CommaStream : public std::ostringstream
{
public:
    CommaStream()
    {
        imbue(std::locale(std::locale::classic(), new support::CommaFacet));
    }
};

template <class T> std::string textOf(T value)
{
    CommaStream os;
    os << plainNumber(value);
    return os.str();
}

TEST(PlainNumber, EveryTypeIsWrittenWithoutTheLocaleOfTheStream)
{
    EXPECT_EQ(textOf<short>(-12345), "-12345");
    EXPECT_EQ(textOf<unsigned short>(54321), "54321");
    EXPECT_EQ(textOf(-1234567), "-1234567");
    EXPECT_EQ(textOf(1234567U), "1234567");
    EXPECT_EQ(textOf(-1234567L), "-1234567");
    EXPECT_EQ(textOf(1234567UL), "1234567");
    EXPECT_EQ(textOf(-123456789012LL), "-123456789012");
    EXPECT_EQ(textOf(123456789012ULL), "123456789012");
    EXPECT_EQ(textOf(1234.5F), "1234.5");
    EXPECT_EQ(textOf(-12345.25), "-12345.2");
}

TEST(PlainNumber, ANaNHasNoSign)
{
    EXPECT_EQ(textOf(-std::numeric_limits<double>::quiet_NaN()), "nan");
    EXPECT_EQ(textOf(-std::numeric_limits<float>::quiet_NaN()), "nan");
}

// The format of the stream holds, and its width is used up, as by any number.
template <class Write> void writeFormatted(std::ostream& os, Write write)
{
    os << std::setfill('*') << std::setw(12) << std::fixed << std::setprecision(2) << std::showpos;
    write(os, 1234.5);
    EXPECT_EQ(os.width(), 0);
    os << std::left << std::setw(10);
    write(os, 4321);
    os << std::internal << std::setw(10);
    write(os, -4321);
    os << std::hex << std::showbase << std::uppercase;
    write(os, static_cast<short>(-1));
    os << std::scientific;
    write(os, 1e100);
}

TEST(PlainNumber, TheFormatOfTheStreamHolds)
{
    std::ostringstream expected;
    writeFormatted(expected, [](std::ostream& os, auto value) { os << value; });
    EXPECT_EQ(expected.str(), "****+1234.50+4321*****-*****43210XFFFF+1.00E+100");
    CommaStream os;
    writeFormatted(os, [](std::ostream& out, auto value) { out << plainNumber(value); });
    EXPECT_EQ(os.str(), expected.str());
    std::ostringstream plain;
    writeFormatted(plain, [](std::ostream& out, auto value) { out << plainNumber(value); });
    EXPECT_EQ(plain.str(), expected.str());
}

TEST(PlainNumber, WhatIsNoNumberStaysAsItIs)
{
    EXPECT_EQ(plainNumber(std::string("text")), "text");
}

} // namespace
