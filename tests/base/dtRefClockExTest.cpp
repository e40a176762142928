#include "base/dtRefClockEx.h"

#include "support/exceptionChecks.h"
#include "support/rowName.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <type_traits>
#include <vector>

namespace
{

using support::ExceptionFamilies;
using Zu::DtRefClockEx;

template <class Exception> support::ExceptionRow row(const char* name, const char* reason)
{
    return support::exceptionRow<Exception, std::logic_error, DtRefClockEx>(name, reason);
}

std::vector<support::ExceptionRow> rows()
{
    return {
        row<DtRefClockEx::SourceMismatch>(
            "SourceMismatch", "Clock source name does not match system reference clock."),
        row<DtRefClockEx::GetCount>("GetCount", "Reference clock failed to get clock value."),
    };
}

INSTANTIATE_TEST_SUITE_P(DtRefClockEx, ExceptionFamilies, testing::ValuesIn(rows()),
                         support::RowName());

static_assert(std::is_base_of_v<Zu::ExBase, DtRefClockEx>);
static_assert(!std::is_constructible_v<DtRefClockEx, const char*, int>);

} // namespace
