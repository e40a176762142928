#include "base/dtEx.h"

#include "support/exceptionChecks.h"
#include "support/rowName.h"

#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace
{

using support::ExceptionFamilies;
using support::RAISE_FILE;
using support::RAISE_LINE;
using Zu::DtEx;

using Error = DtEx::DtStringError;

template <class Exception> support::ExceptionRow row(const char* name, const char* reason)
{
    return support::exceptionRow<Exception, std::logic_error, DtEx>(name, reason);
}

std::vector<support::ExceptionRow> rows()
{
    return {row<DtEx::BadRate>("BadRate", "Null rate not allowed in DtTime."),
            row<DtEx::BadRefRate>("BadRefRate", "Mismatched reference clock rates.")};
}

INSTANTIATE_TEST_SUITE_P(DtEx, ExceptionFamilies, testing::ValuesIn(rows()), support::RowName());

static_assert(std::is_base_of_v<Zu::ExBase, DtEx>);
static_assert(!std::is_constructible_v<DtEx, const char*, int>);

TEST(DtEx, RaisesFromWhereItIsTold)
{
    // Called by a pointer: otherwise the compiler would assume that a call never returns.
    void (*volatile const raise)(const char*, int) = &DtEx::throwBadRate;
    bool isRaised = false;
    try
    {
        raise("a.cpp", 12);
    }
    catch (const DtEx::BadRate& exception)
    {
        isRaised = true;
        EXPECT_STREQ(exception.getFileName(), "a.cpp");
        EXPECT_EQ(exception.getLineNo(), 12);
        EXPECT_STREQ(exception.getReason(), "Null rate not allowed in DtTime.");
    }
    EXPECT_TRUE(isRaised);
}

const struct
{
    int _value;
    Error::ErrorCode _code;
    std::string _text;
} CODES[] = {
    {0, Error::RateNumeratorMalformed, "Rate numerator malformed."},
    {1, Error::RateNumeratorOverflow, "Rate numerator overflow."},
    {2, Error::RateDenominatorMalformed, "Rate denominator malformed."},
    {3, Error::RateDenominatorOverflow, "Rate denominator overflow."},
};

// Hidden from the compiler, which warns about a value that is not an enumerator.
Error::ErrorCode codeOf(int value)
{
    return static_cast<Error::ErrorCode>(value);
}

TEST(DtStringError, EveryCodeHasItsText)
{
    for (const auto& [value, code, text] : CODES)
    {
        EXPECT_EQ(static_cast<int>(code), value);
        EXPECT_EQ(Error::toString(code), text);
    }
    for (const int value : {4, 5, 1000, -1})
        EXPECT_STREQ(Error::toString(codeOf(value)), "Unknown error.") << value;
}

TEST(DtStringError, TheReasonTellsTheCode)
{
    for (const auto& [value, code, text] : CODES)
    {
        const Error error(RAISE_FILE, RAISE_LINE, code);
        EXPECT_EQ(error.getErrorCode(), code);
        EXPECT_EQ(error.getReason(), "DtString conversion error: " + text);
        EXPECT_EQ(error.what(), "DtString conversion error: " + text);
        EXPECT_STREQ(error.getFileName(), RAISE_FILE);
        EXPECT_EQ(error.getLineNo(), RAISE_LINE);
        EXPECT_STREQ(error.std::logic_error::what(), "");
    }
    EXPECT_STREQ(Error("a.cpp", 1, codeOf(4)).getReason(),
                 "DtString conversion error: Unknown error.");
}

TEST(DtStringError, HandlersForTheStandardClassTheFamilyAndTheRootReadIt)
{
    for (const auto& [value, code, text] : CODES)
    {
        const std::string reason = "DtString conversion error: " + text;
        const auto raise = [code = code] { throw Error(RAISE_FILE, RAISE_LINE, code); };
        const auto readReason = [](const Zu::ExBase& caught) { return caught.getReason(); };
        EXPECT_EQ(support::readBy<std::logic_error>(raise, [](const std::logic_error& caught)
                                                    { return caught.what(); }),
                  reason);
        EXPECT_EQ(support::readBy<DtEx>(raise, readReason), reason);
        EXPECT_EQ(support::readBy<Zu::ExBase>(raise, readReason), reason);
    }
}

TEST(DtStringError, CopiesAndClonesKeepTheCode)
{
    for (const auto& [value, code, text] : CODES)
    {
        auto error = std::make_unique<Error>(RAISE_FILE, RAISE_LINE, code);
        const Error copy(*error);
        const std::unique_ptr<Zu::ExBase> clone(error->clone());
        ASSERT_TRUE(clone);
        support::expectCloneOf(*error, copy);
        support::expectCloneOf(*error, *clone);
        error.reset();
        EXPECT_EQ(copy.getErrorCode(), code);
        const auto* const cloned = dynamic_cast<const Error*>(clone.get());
        ASSERT_TRUE(cloned);
        EXPECT_EQ(cloned->getErrorCode(), code);
        EXPECT_EQ(cloned->getReason(), "DtString conversion error: " + text);
    }
}

TEST(DtStringError, TheStandardPartStandsFirst)
{
    const Error error(RAISE_FILE, RAISE_LINE, Error::RateNumeratorMalformed);
    EXPECT_EQ(static_cast<const void*>(static_cast<const std::logic_error*>(&error)), &error);
}

} // namespace
