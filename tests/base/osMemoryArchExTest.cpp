#include "base/osMemoryArchEx.h"

#include "support/exceptionChecks.h"
#include "support/rowName.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <vector>

namespace
{

using support::ExceptionFamilies;
using Zu::OsMemoryArchEx;

std::vector<support::ExceptionRow> rows()
{
    return {
        support::exceptionRow<OsMemoryArchEx::ExUnknownCPU, std::runtime_error, OsMemoryArchEx>(
            "ExUnknownCPU", "Unknown CPU Type: Can not compute memory architecture parameters."),
        support::exceptionRow<OsMemoryArchEx::ExUnknownCPUBoard, std::runtime_error,
                              OsMemoryArchEx>(
            "ExUnknownCPUBoard",
            "Unknown CPU Board Type: Can not compute memory architecture parameters."),
    };
}

INSTANTIATE_TEST_SUITE_P(OsMemoryArchEx, ExceptionFamilies, testing::ValuesIn(rows()),
                         support::RowName());

} // namespace
