#include "base/osDateEx.h"

#include "support/exceptionChecks.h"
#include "support/rowName.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <vector>

namespace
{

using support::ExceptionFamilies;
using Zu::OsDateEx;

std::vector<support::ExceptionRow> rows()
{
    return {support::exceptionRow<OsDateEx::ExInvalidDate, std::runtime_error, OsDateEx>(
        "ExInvalidDate", "Invalid date specified.")};
}

INSTANTIATE_TEST_SUITE_P(OsDateEx, ExceptionFamilies, testing::ValuesIn(rows()),
                         support::RowName());

} // namespace
