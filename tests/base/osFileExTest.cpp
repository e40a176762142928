#include "base/osFileEx.h"

#include "support/exceptionChecks.h"
#include "support/rowName.h"

#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace
{

using support::ExceptionFamilies;
using Zu::OsFileEx;

template <class Exception, class... Arguments>
support::ExceptionRow runtimeRow(const char* name, const std::string& reason,
                                 const Arguments&... arguments)
{
    return support::exceptionRow<Exception, std::runtime_error, Zu::ExBase>(name, reason,
                                                                            arguments...);
}

template <class Exception, class... Arguments>
support::ExceptionRow argumentRow(const char* name, const std::string& reason,
                                  const Arguments&... arguments)
{
    return support::exceptionRow<Exception, std::invalid_argument, Zu::ExBase>(name, reason,
                                                                               arguments...);
}

std::vector<support::ExceptionRow> rows()
{
    const std::string path = "/a/path";
    const std::string longOne = support::longName('p');
    const std::string cut = support::cutName('p', 256);
    return {
        argumentRow<OsFileEx::ExSeparatorNotAllowed>("ExSeparatorNotAllowed",
                                                     "Separator not allowed in path elements."),
        runtimeRow<OsFileEx::ExIllegalPathConcat>("ExIllegalPathConcat",
                                                  "Attempt to concatenate absolute path."),
        runtimeRow<OsFileEx::ExHomeNotDefined>("ExHomeNotDefined",
                                               "Cannot get home directory from the environment."),
        runtimeRow<OsFileEx::ExFileExists>("ExFileExists", "File already exists."),
        runtimeRow<OsFileEx::ExNullFilePath>("ExNullFilePath", "File has null file path."),
        argumentRow<OsFileEx::ExInvalidPath>("ExInvalidPath", "Invalid path: '/a/path'.", path),
        argumentRow<OsFileEx::ExInvalidPath>("ExInvalidPathLong", "Invalid path: '" + cut + "'.",
                                             longOne),
        // The text of ExInvalidPath, deliberately.
        argumentRow<OsFileEx::ExPathNotWritable>("ExPathNotWritable", "Invalid path: '/a/path'.",
                                                 path),
        argumentRow<OsFileEx::ExPathNotWritable>("ExPathNotWritableLong",
                                                 "Invalid path: '" + cut + "'.", longOne),
        runtimeRow<OsFileEx::ExNoRemoteUnbuffered>(
            "ExNoRemoteUnbuffered",
            "Unbuffered IO is impossible on a remote drive: '/a/path' is a remote path.", path),
        runtimeRow<OsFileEx::ExNoRemoteUnbuffered>(
            "ExNoRemoteUnbufferedLong",
            "Unbuffered IO is impossible on a remote drive: '" + cut + "' is a remote path.",
            longOne),
    };
}

INSTANTIATE_TEST_SUITE_P(OsFileEx, ExceptionFamilies, testing::ValuesIn(rows()),
                         support::RowName());

TEST(OsFileEx, IsAScopeAndNoBaseOfItsClasses)
{
    EXPECT_FALSE((std::is_base_of_v<OsFileEx, OsFileEx::ExFileExists>));
    EXPECT_FALSE((std::is_base_of_v<OsFileEx, OsFileEx::ExInvalidPath>));
    EXPECT_FALSE((std::is_base_of_v<Zu::ExBase, OsFileEx>));
}

} // namespace
