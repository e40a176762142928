#include "base/osSharedLibEx.h"

#include "support/exceptionChecks.h"
#include "support/rowName.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

namespace
{

using support::cutName;
using support::ExceptionFamilies;
using support::longName;
using Zu::OsSharedLibEx;

template <class Exception>
support::ExceptionRow row(const char* className, const std::string& reason,
                          const std::string& first, const std::string& second)
{
    return support::rootFirst(support::exceptionRow<Exception, std::runtime_error, OsSharedLibEx>(
        className, reason, first, second));
}

std::vector<support::ExceptionRow> rows()
{
    using CantOpenLib = OsSharedLibEx::ExCantOpenLib;
    using FunctionNotFound = OsSharedLibEx::ExFunctionNotFound;
    return {
        row<CantOpenLib>("ExCantOpenLib", "Can't open dynamic library '/a/lib': no such thing.",
                         "/a/lib", "no such thing"),
        row<CantOpenLib>("ExCantOpenLibLong",
                         "Can't open dynamic library '" + cutName('p', 256) +
                             "': " + cutName('m', 512) + ".",
                         longName('p'), longName('m')),
        // The path comes first among the arguments and second in the text.
        row<FunctionNotFound>("ExFunctionNotFound",
                              "Function 'start' not found in dynamic library '/a/lib'.", "/a/lib",
                              "start"),
        row<FunctionNotFound>("ExFunctionNotFoundLong",
                              "Function '" + cutName('f', 64) + "' not found in dynamic library '" +
                                  cutName('p', 256) + "'.",
                              longName('p'), longName('f')),
    };
}

INSTANTIATE_TEST_SUITE_P(OsSharedLibEx, ExceptionFamilies, testing::ValuesIn(rows()),
                         support::RowName());

} // namespace
