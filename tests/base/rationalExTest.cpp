#include "base/rationalEx.h"

#include "support/exceptionChecks.h"
#include "support/rowName.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <type_traits>
#include <vector>

namespace
{

using support::ExceptionFamilies;
using Zu::RationalEx;

std::vector<support::ExceptionRow> rows()
{
    return {support::exceptionRow<RationalEx::ExDenominatorZero, std::invalid_argument, RationalEx>(
        "ExDenominatorZero", "Illegal zero denominator.")};
}

INSTANTIATE_TEST_SUITE_P(RationalEx, ExceptionFamilies, testing::ValuesIn(rows()),
                         support::RowName());

static_assert(std::is_base_of_v<Zu::ExBase, RationalEx>);
static_assert(!std::is_constructible_v<RationalEx, const char*, int>);

TEST(RationalEx, RaisesFromWhereItIsTold)
{
    // Called by a pointer: otherwise the compiler would assume that a call never returns.
    void (*volatile const raise)(const char*, int) = &RationalEx::throwDenominatorZero;
    bool isRaised = false;
    try
    {
        raise("a.cpp", 12);
    }
    catch (const RationalEx::ExDenominatorZero& exception)
    {
        isRaised = true;
        EXPECT_STREQ(exception.getFileName(), "a.cpp");
        EXPECT_EQ(exception.getLineNo(), 12);
        EXPECT_STREQ(exception.getReason(), "Illegal zero denominator.");
    }
    EXPECT_TRUE(isRaised);
}

} // namespace
