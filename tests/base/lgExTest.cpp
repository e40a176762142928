#include "base/lgEx.h"

#include "support/exceptionChecks.h"
#include "support/rowName.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using support::ExceptionFamilies;
using Zu::LgEx;

std::vector<support::ExceptionRow> rows()
{
    return {support::exceptionRow<LgEx::InvalidLevelString, std::invalid_argument, LgEx>(
        "InvalidLevelString", "Invalid level string specified: Bogus", std::string("Bogus"))};
}

INSTANTIATE_TEST_SUITE_P(LgEx, ExceptionFamilies, testing::ValuesIn(rows()), support::RowName());

TEST(LgEx, ALongTextIsCutWhereTheReasonEnds)
{
    const LgEx::InvalidLevelString exception("", 0, std::string(2000, 'x').c_str());
    const std::string title = "Invalid level string specified: ";
    EXPECT_EQ(exception.getReason(), title + std::string(1023 - title.size(), 'x'));
}

} // namespace
