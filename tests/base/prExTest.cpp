#include "base/prEx.h"

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
using Zu::PrEx;

static_assert(std::is_base_of_v<Zu::ExBase, PrEx>);
static_assert(!std::is_constructible_v<PrEx, const char*, int>);

// An index in the place of a text: the table hands its arguments on in the way of texts.
struct Index
{
    unsigned int c_str() const
    {
        return _value;
    }

    unsigned int _value;
};

template <class Exception, class... Arguments>
support::ExceptionRow row(const char* name, const std::string& reason, Arguments... arguments)
{
    return support::exceptionRow<Exception, std::runtime_error, PrEx>(name, reason, arguments...);
}

std::vector<support::ExceptionRow> rows()
{
    using Counter = PrEx::ExBadCounterIndex;
    using Instance = PrEx::ExBadCounterInstance;
    using Object = PrEx::ExBadCounterObjectIndex;
    const std::string counter = "Request with illegal counter index ";
    const std::string instance = "Request with illegal counter instance name ";
    const std::string object = "Request with illegal counter object index ";
    return {
        row<PrEx::ExUnsupported>("ExUnsupported",
                                 "Functionality unsupported by profiling package."),
        row<Counter>("ExBadCounterIndex", counter + "6.", Index{6}),
        row<Counter>("ExBadCounterIndexZero", counter + "0.", Index{0}),
        row<Counter>("ExBadCounterIndexHighestInt", counter + "2147483647.", Index{2147483647}),
        // Indices are printed as signed numbers.
        row<Counter>("ExBadCounterIndexAboveInt", counter + "-2147483648.", Index{2147483648}),
        row<Counter>("ExBadCounterIndexHighest", counter + "-1.", Index{4294967295}),
        row<Instance>("ExBadCounterInstance", instance + "_Total.", std::string("_Total")),
        row<Instance>("ExBadCounterInstanceEmpty", instance + ".", std::string()),
        row<Instance>("ExBadCounterInstanceNoFormat", instance + "100%s%n.",
                      std::string("100%s%n")),
        row<Object>("ExBadCounterObjectIndex", object + "238.", Index{238}),
        row<Object>("ExBadCounterObjectIndexZero", object + "0.", Index{0}),
        row<Object>("ExBadCounterObjectIndexHighestInt", object + "2147483647.", Index{2147483647}),
        row<Object>("ExBadCounterObjectIndexAboveInt", object + "-2147483648.", Index{2147483648}),
        row<Object>("ExBadCounterObjectIndexHighest", object + "-1.", Index{4294967295}),
    };
}

INSTANTIATE_TEST_SUITE_P(PrEx, ExceptionFamilies, testing::ValuesIn(rows()), support::RowName());

std::string reasonFor(const char* instance)
{
    return PrEx::ExBadCounterInstance("a.cpp", 1, instance).what();
}

TEST(PrEx, ANullInstanceNameIsPrintedAsAnEmptyOne)
{
    EXPECT_EQ(reasonFor(nullptr), "Request with illegal counter instance name .");
}

TEST(PrEx, AReasonKeepsItsFirst1023Characters)
{
    const std::string before = "Request with illegal counter instance name ";
    const std::size_t room = 1023 - before.size();
    for (const std::size_t length : {room - 1, room, room + 1, std::size_t{100000}})
    {
        const std::string name = std::string(length - 2, 'n') + "<>";
        EXPECT_EQ(reasonFor(name.c_str()), (before + name + ".").substr(0, 1023)) << length;
    }
}

} // namespace
