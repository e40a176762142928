#include "base/hmGCEx.h"

#include "support/exceptionChecks.h"

#include <exception>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <type_traits>
#include <typeinfo>

namespace
{

using Zu::HmGCEx;
using Garbage = Zu::HmGCEx::ExGarbageDetected;

// The scope is not a base class, and the exception derives from the common root only.
static_assert(!std::is_default_constructible_v<HmGCEx>);
static_assert(!std::is_base_of_v<HmGCEx, Garbage>);
static_assert(std::is_base_of_v<Zu::ExBase, Garbage>);
static_assert(!std::is_base_of_v<std::exception, Garbage>);

const std::string REASON = "Garbage Collector has detected leaks.";

void raise()
{
    throw Garbage(support::RAISE_FILE, support::RAISE_LINE);
}

TEST(HmGCEx, SaysWhereAndWhyItWasRaised)
{
    const Garbage exception(support::RAISE_FILE, support::RAISE_LINE);
    EXPECT_EQ(exception.getReason(), REASON);
    EXPECT_STREQ(exception.getFileName(), support::RAISE_FILE);
    EXPECT_EQ(exception.getLineNo(), support::RAISE_LINE);
    EXPECT_EQ(exception.what(), REASON);
}

TEST(HmGCEx, IsCaughtAsItselfAndByTheRoot)
{
    const auto reason = [](const Zu::ExBase& caught) { return std::string(caught.getReason()); };
    EXPECT_EQ(support::readBy<Garbage>(raise, reason), REASON);
    EXPECT_EQ(support::readBy<Zu::ExBase>(raise, reason), REASON);
    const auto what = [](const std::exception& caught) { return std::string(caught.what()); };
    EXPECT_EQ(support::readBy<std::exception>(raise, what), "(not caught by this handler)");
}

TEST(HmGCEx, ACloneStandsOnItsOwn)
{
    auto exception = std::make_unique<Garbage>(support::RAISE_FILE, support::RAISE_LINE);
    const std::string detail = exception->getDetailedReason();
    const std::unique_ptr<const Zu::ExBase> copy(exception->clone());
    ASSERT_TRUE(copy);
    EXPECT_NE(copy.get(), exception.get());
    exception.reset();
    const Zu::ExBase& cloned = *copy;
    EXPECT_TRUE(typeid(cloned) == typeid(Garbage));
    EXPECT_EQ(cloned.getReason(), REASON);
    EXPECT_STREQ(cloned.getFileName(), support::RAISE_FILE);
    EXPECT_EQ(cloned.getLineNo(), support::RAISE_LINE);
    EXPECT_EQ(cloned.getDetailedReason(), detail);
}

} // namespace
