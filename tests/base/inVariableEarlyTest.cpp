// Variables queried before there are any. The library's own two are constructed with it, so only
// with the static library can a program come earlier.

#include "base/inVariableBase.h"

#include <gtest/gtest.h>

namespace
{

using Zu::InVariableBase;

constexpr const char* HANDLE = "Zu::Corvane::debugging::buildInfoNoValidate";

struct Early
{
    const void* const _found = InVariableBase::queryViaHandle(HANDLE);
    const void* const _foundNull = InVariableBase::queryViaHandle(nullptr);
    const bool _isOverridden = InVariableBase::isOverridden(HANDLE);
    const bool _isHere = true;
};

// Before everything without a priority, and the library's objects with one.
const Early theEarly __attribute__((init_priority(200)));

TEST(InVariableBase, BeforeAnyVariableExistsEveryHandleIsUnknown)
{
    ASSERT_TRUE(theEarly._isHere);
    EXPECT_EQ(theEarly._found, nullptr);
    EXPECT_EQ(theEarly._foundNull, nullptr);
    EXPECT_FALSE(theEarly._isOverridden);
    // It exists by now: the query came before it.
    EXPECT_NE(InVariableBase::queryViaHandle(HANDLE), nullptr);
}

} // namespace
