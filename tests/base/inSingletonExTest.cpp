#include "base/inSingletonEx.h"

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
using Zu::InSingletonEx;

template <class Exception>
support::ExceptionRow row(const char* className, const std::string& reason, const std::string& name)
{
    return support::exceptionRow<Exception, std::runtime_error, InSingletonEx>(className, reason,
                                                                               name);
}

std::vector<support::ExceptionRow> rows()
{
    return {
        row<InSingletonEx::ExNotInitialized>("ExNotInitialized", "A::Name is not initialized.",
                                             "A::Name"),
        row<InSingletonEx::ExAlreadyInitialized>(
            "ExAlreadyInitialized", "A::Name has already been initialized.", "A::Name"),
        row<InSingletonEx::ExAlreadyDestroyed>("ExAlreadyDestroyed",
                                               "A::Name has already been destroyed.", "A::Name"),
    };
}

INSTANTIATE_TEST_SUITE_P(InSingletonEx, ExceptionFamilies, testing::ValuesIn(rows()),
                         support::RowName());

TEST(InSingletonEx, TheNameIsCutByTheReasonsLengthAlone)
{
    const std::string name(700, 'n');
    EXPECT_EQ(InSingletonEx::ExNotInitialized("a.cpp", 1, name.c_str()).getReason(),
              name + " is not initialized.");
    const std::string longer(2000, 'n');
    EXPECT_EQ(InSingletonEx::ExNotInitialized("a.cpp", 1, longer.c_str()).getReason(),
              std::string(1023, 'n'));
}

TEST(InSingletonEx, BelongsToTheFamilyOfInitialisation)
{
    EXPECT_THROW(throw InSingletonEx::ExNotInitialized("a.cpp", 1, "Name"), Zu::InEx);
    EXPECT_FALSE((std::is_base_of_v<std::exception, InSingletonEx>));
}

// A class of a client's own in the family.
class OwnError : public InSingletonEx
{
public:
    OwnError() : InSingletonEx("own.cpp", 3, "Own", "is too small") {}

    Zu::ExBase* clone() const override
    {
        return new OwnError(*this);
    }
};

TEST(InSingletonEx, TheRootJoinsNameAndPhraseToASentence)
{
    EXPECT_STREQ(OwnError().getReason(), "Own is too small.");
}

} // namespace
