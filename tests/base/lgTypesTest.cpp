#include "base/lgTypes.h"

#include "base/exInternalError.h"
#include "base/lgEx.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

using Zu::LgTypes::Level;

struct LevelRow
{
    Level _level;
    int _value;
    const char* _name;
    std::uint32_t _bit;
};

const LevelRow LEVELS[] = {
    {Zu::LgTypes::InternalError, 0, "Internal Error", 0x80},
    {Zu::LgTypes::FatalError, 1, "Fatal Error", 0x40},
    {Zu::LgTypes::Error, 2, "Error", 0x20},
    {Zu::LgTypes::Warning, 3, "Warning", 0x10},
    {Zu::LgTypes::Informational, 4, "Informational", 0x08},
    {Zu::LgTypes::Tracing, 5, "Tracing", 0x04},
    {Zu::LgTypes::Profiling, 6, "Profiling", 0x02},
};

template <class Act> std::string assertionOf(Act act)
{
    try
    {
        act();
    }
    catch (const Zu::ExInternalError& exception)
    {
        return exception.getReason();
    }
    return "nothing raised";
}

TEST(LgTypes, LevelsHaveTheirValuesTextsAndBits)
{
    EXPECT_EQ(Zu::LgTypes::NUM_LEVELS, 7);
    for (const LevelRow& row : LEVELS)
    {
        EXPECT_EQ(row._level, row._value);
        EXPECT_STREQ(Zu::LgTypes::levelToString(row._level), row._name);
        EXPECT_EQ(Zu::LgTypes::stringToLevel(row._name), row._level);
        EXPECT_EQ(Zu::LgTypes::levelBit[row._level], row._bit);
    }
    EXPECT_EQ(Zu::LgTypes::levelBit[7], 0x01U);
}

TEST(LgTypes, WhatIsNoLevelHasNoText)
{
    for (const int value : {7, 8, 1000, -1})
        EXPECT_EQ(assertionOf([=] { Zu::LgTypes::levelToString(static_cast<Level>(value)); }),
                  "Assertion 'l < NUM_LEVELS' failed.")
            << value;
}

TEST(LgTypes, OtherTextsAreNoLevels)
{
    for (const char* const text :
         {"", "warning", "WARNING", "Warning ", " Warning", "Warn", "Warnings", "Bogus", "3"})
        EXPECT_THROW(Zu::LgTypes::stringToLevel(text), Zu::LgEx::InvalidLevelString) << text;
    EXPECT_EQ(assertionOf([] { Zu::LgTypes::stringToLevel(nullptr); }), "Assertion 's' failed.");
}

} // namespace
