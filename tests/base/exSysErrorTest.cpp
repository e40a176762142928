#include "base/exSysError.h"

#include "support/exceptionChecks.h"

#include <cerrno>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace
{

using Zu::ExSysErrorANSI;
using Zu::ExSysErrorWindows;

ExSysErrorANSI errorWith(int code)
{
    errno = code;
    return ExSysErrorANSI("dir/file.cpp", 31);
}

// Whether a pointer to the root can be turned into one to Class without asking the object.
template <class Class>
concept PlainBelowRoot = requires(Zu::ExBase* root)
{
    static_cast<Class*>(root);
};

TEST(ExSysErrorANSI, CarriesErrnoAndItsText)
{
    const ExSysErrorANSI error = errorWith(ENOENT);
    EXPECT_EQ(error.getError(), ENOENT);
    EXPECT_STREQ(error.getReason(), "No such file or directory");
    EXPECT_STREQ(error.what(), "No such file or directory");
    EXPECT_STREQ(error.getFileName(), "dir/file.cpp");
    EXPECT_EQ(error.getLineNo(), 31);
}

TEST(ExSysErrorANSI, EveryCodeHasTheTextOfTheRuntime)
{
    for (const int code : {EPERM, EIO, EBADF, ENOMEM, EACCES, EEXIST, EINVAL, ENOSPC, 54321})
    {
        const std::string expected = std::strerror(code);
        const ExSysErrorANSI error = errorWith(code);
        EXPECT_EQ(error.getError(), code);
        EXPECT_EQ(error.getReason(), expected);
    }
}

TEST(ExSysErrorANSI, TheCodeStaysWhenErrnoChanges)
{
    const ExSysErrorANSI error = errorWith(EACCES);
    errno = ENOENT;
    EXPECT_EQ(error.getError(), EACCES);
    EXPECT_STREQ(error.what(), "Permission denied");
}

TEST(ExSysErrorANSI, TheDetailedReasonNamesTheClass)
{
    EXPECT_STREQ(errorWith(EEXIST).getDetailedReason(),
                 "[Exception Type = Zu::ExSysErrorANSI, File = dir/file.cpp, Line=31]\n"
                 "File exists");
}

TEST(ExSysErrorANSI, ACloneIsOfTheSameClassAndCarriesTheCode)
{
    const ExSysErrorANSI error = errorWith(EEXIST);
    errno = ENOENT;
    const std::unique_ptr<Zu::ExBase> copy(error.clone());
    support::expectCloneOf(error, *copy);
    const auto* const sameClass = dynamic_cast<const ExSysErrorANSI*>(copy.get());
    ASSERT_TRUE(sameClass);
    EXPECT_EQ(sameClass->getError(), EEXIST);
}

TEST(ExSysErrorANSI, HandlersForTheStandardClassTheFamilyAndTheRootReadTheReason)
{
    const auto raise = [] { throw errorWith(EEXIST); };
    EXPECT_EQ(support::readBy<std::runtime_error>(raise, [](const auto& e) { return e.what(); }),
              "File exists");
    EXPECT_EQ(support::readBy<Zu::ExSysError>(raise, [](const auto& e) { return e.getReason(); }),
              "File exists");
    EXPECT_EQ(support::readBy<Zu::ExBase>(raise, [](const auto& e) { return e.getReason(); }),
              "File exists");
}

TEST(ExSysErrorWindows, ACloneIsOfTheSameClassAndCarriesTheCode)
{
    errno = EACCES;
    const ExSysErrorWindows error("dir/file.cpp", 31);
    errno = ENOENT;
    const std::unique_ptr<Zu::ExBase> copy(error.clone());
    support::expectCloneOf(error, *copy);
    const auto* const sameClass = dynamic_cast<const ExSysErrorWindows*>(copy.get());
    ASSERT_TRUE(sameClass);
    EXPECT_EQ(sameClass->getErrorCode(), error.getErrorCode());
}

TEST(ExSysErrorWindows, HandlersForTheStandardClassTheFamilyAndTheRootCatchIt)
{
    EXPECT_THROW(throw ExSysErrorWindows("a.cpp", 1), std::runtime_error);
    EXPECT_THROW(throw ExSysErrorWindows("a.cpp", 1), Zu::ExSysError);
    EXPECT_THROW(throw ExSysErrorWindows("a.cpp", 1), Zu::ExBase);
}

TEST(ExSysError, TheRootIsAVirtualBaseHereAlone)
{
    EXPECT_TRUE((std::is_base_of_v<Zu::ExBase, Zu::ExSysError>));
    EXPECT_FALSE(PlainBelowRoot<Zu::ExSysError>);
    EXPECT_FALSE(PlainBelowRoot<ExSysErrorANSI>);
    EXPECT_FALSE(PlainBelowRoot<ExSysErrorWindows>);
}

TEST(ExSysError, IsAbstract)
{
    EXPECT_TRUE(std::is_abstract_v<Zu::ExSysError>);
}

} // namespace
