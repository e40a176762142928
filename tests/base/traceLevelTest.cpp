#include "base/traceLevel.h"

#include "base/trace.h"

#include "support/traceTest.h"

#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <type_traits>

namespace
{

using Zu::Trace;
using Zu::TraceLevel;

// Only tracing makes or destroys a level.
static_assert(!std::is_default_constructible_v<TraceLevel>);
static_assert(!std::is_constructible_v<TraceLevel, const char*>);
static_assert(!std::is_copy_constructible_v<TraceLevel>);
static_assert(!std::is_copy_assignable_v<TraceLevel>);
static_assert(!std::is_destructible_v<TraceLevel>);

using TraceLevelTest = support::TracingTest;

TEST_F(TraceLevelTest, KeepsACopyOfItsName)
{
    const std::string expected = newName();
    std::string name = expected;
    const TraceLevel* const level = Trace::registerLevel(name.c_str(), nullptr);
    EXPECT_NE(level->getName(), name.c_str());
    name.assign(name.size(), 'x');
    EXPECT_EQ(level->getName(), expected);
    EXPECT_EQ(Trace::registerLevel(expected.c_str(), nullptr), level);
}

TEST_F(TraceLevelTest, ANameMayBeOfAnyLength)
{
    const std::string prefix = newName();
    for (const std::size_t length : {1U, 30U, 31U, 1023U, 1024U, 100000U})
    {
        const std::string name = prefix + std::string(length, 'n');
        const TraceLevel* const level = Trace::registerLevel(name.c_str(), nullptr);
        EXPECT_EQ(level->getName(), name);
        EXPECT_FALSE(level->isOn());
    }
}

TEST_F(TraceLevelTest, IsOffUntilItIsSwitchedOn)
{
    const TraceLevel& level = newLevel();
    EXPECT_FALSE(level.isOn());
    set(std::string("show=") + level.getName());
    EXPECT_TRUE(level.isOn());
    set(std::string("hide=") + level.getName());
    EXPECT_FALSE(level.isOn());
}

TEST_F(TraceLevelTest, StaysOnWhileTracingIsOff)
{
    const TraceLevel& level = newLevel();
    set(std::string("off,show=") + level.getName());
    EXPECT_TRUE(level.isOn());
    EXPECT_FALSE(Trace::isEnabled(level));
}

} // namespace
