#include "base/osFileEx.h"

#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>

namespace
{

using Zu::ExBase;
using Zu::OsFileEx;

// Checks the reason, the standard base and the place of an exception, and of its clone.
template <class StandardBase, class Exception>
void check(const Exception& exception, const std::string& reason)
{
    const StandardBase& standard = exception;
    EXPECT_EQ(standard.what(), reason);
    EXPECT_EQ(exception.getReason(), reason);
    EXPECT_STREQ(exception.getFileName(), "source.cpp");
    EXPECT_EQ(exception.getLineNo(), 7);
    const std::unique_ptr<ExBase> clone(exception.clone());
    const Exception* const same = dynamic_cast<const Exception*>(clone.get());
    ASSERT_NE(same, nullptr);
    EXPECT_EQ(same->what(), reason);
}

TEST(OsFileEx, EveryExceptionHasItsReasonAndItsStandardBase)
{
    check<std::invalid_argument>(OsFileEx::ExSeparatorNotAllowed("source.cpp", 7),
                                 "Separator not allowed in path elements.");
    check<std::runtime_error>(OsFileEx::ExIllegalPathConcat("source.cpp", 7),
                              "Attempt to concatenate absolute path.");
    check<std::runtime_error>(OsFileEx::ExHomeNotDefined("source.cpp", 7),
                              "Cannot get home directory from the environment.");
    check<std::runtime_error>(OsFileEx::ExFileExists("source.cpp", 7), "File already exists.");
    check<std::runtime_error>(OsFileEx::ExNullFilePath("source.cpp", 7),
                              "File has null file path.");
    check<std::invalid_argument>(OsFileEx::ExInvalidPath("source.cpp", 7, "a b"),
                                 "Invalid path: 'a b'.");
    check<std::invalid_argument>(OsFileEx::ExPathNotWritable("source.cpp", 7, "a b"),
                                 "Invalid path: 'a b'.");
    check<std::runtime_error>(
        OsFileEx::ExNoRemoteUnbuffered("source.cpp", 7, "a b"),
        "Unbuffered IO is impossible on a remote drive: 'a b' is a remote path.");
}

TEST(OsFileEx, APathInAReasonIsCutTo256Characters)
{
    const std::string exact(256, 'p');
    for (const std::string& path : {exact, exact + "q", exact + std::string(2000, 'q')})
    {
        check<std::invalid_argument>(OsFileEx::ExInvalidPath("source.cpp", 7, path.c_str()),
                                     "Invalid path: '" + exact + "'.");
        check<std::invalid_argument>(OsFileEx::ExPathNotWritable("source.cpp", 7, path.c_str()),
                                     "Invalid path: '" + exact + "'.");
        check<std::runtime_error>(OsFileEx::ExNoRemoteUnbuffered("source.cpp", 7, path.c_str()),
                                  "Unbuffered IO is impossible on a remote drive: '" + exact +
                                      "' is a remote path.");
    }
}

TEST(OsFileEx, APathIsTakenAsTextAndNotAsAFormat)
{
    check<std::invalid_argument>(OsFileEx::ExInvalidPath("source.cpp", 7, "%s%n%d"),
                                 "Invalid path: '%s%n%d'.");
}

} // namespace
