#include "base/dbgBuildInfoEx.h"

#include "support/exceptionChecks.h"
#include "support/rowName.h"

#include <gtest/gtest.h>
#include <limits>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

namespace
{

using support::cutName;
using support::ExceptionFamilies;
using support::longName;
using Zu::DbgBuildInfoEx;

static_assert(std::is_base_of_v<Zu::ExBase, DbgBuildInfoEx>);
static_assert(!std::is_constructible_v<DbgBuildInfoEx, const char*, int>);

// A number in the place of a text: the table hands its arguments on in the way of texts.
struct Number
{
    int c_str() const
    {
        return _value;
    }

    int _value;
};

template <class Exception, class... Arguments>
support::ExceptionRow row(const char* name, const std::string& reason, Arguments... arguments)
{
    return support::rootFirst(support::exceptionRow<Exception, std::runtime_error, DbgBuildInfoEx>(
        name, reason, arguments...));
}

support::ExceptionRow versionRow(const char* name, const std::string& reason,
                                 const std::string& api, int apiMajor, int apiMinor,
                                 const std::string& library, int libraryMajor, int libraryMinor)
{
    return row<DbgBuildInfoEx::ExVersionMismatch>(name, reason, api, Number{apiMajor},
                                                  Number{apiMinor}, library, Number{libraryMajor},
                                                  Number{libraryMinor});
}

std::vector<support::ExceptionRow> rows()
{
    using Stamp = DbgBuildInfoEx::ExBuildStampMismatch;
    const int lowest = std::numeric_limits<int>::min();
    const int highest = std::numeric_limits<int>::max();
    return {
        versionRow("ExVersionMismatch",
                   "Version mismatch, API 'Sample' v1.4: library 'libZUsample' at v2.3.", "Sample",
                   1, 4, "libZUsample", 2, 3),
        versionRow("ExVersionMismatchNoTexts", "Version mismatch, API '' v0.0: library '' at v0.0.",
                   "", 0, 0, "", 0, 0),
        versionRow("ExVersionMismatchExtremes",
                   "Version mismatch, API 'A' v-2147483648.2147483647: library 'L' at "
                   "v2147483647.-2147483648.",
                   "A", lowest, highest, "L", highest, lowest),
        versionRow("ExVersionMismatchLong",
                   "Version mismatch, API '" + cutName('a', 64) + "' v1.2: library '" +
                       cutName('l', 64) + "' at v3.4.",
                   longName('a'), 1, 2, longName('l'), 3, 4),
        versionRow("ExVersionMismatchNoFormat",
                   "Version mismatch, API '100%s%n' v1.2: library '%d%%' at v3.4.", "100%s%n", 1, 2,
                   "%d%%", 3, 4),
        row<Stamp>("ExBuildStampMismatch",
                   "Build stamp mismatch, API 'Sample' build S. 12: library 'libZUsample' using "
                   "build S. 13.",
                   std::string("Sample"), std::string("S. 12"), std::string("libZUsample"),
                   std::string("S. 13")),
        row<Stamp>("ExBuildStampMismatchNoTexts",
                   "Build stamp mismatch, API '' build : library '' using build .", std::string(),
                   std::string(), std::string(), std::string()),
        row<Stamp>("ExBuildStampMismatchLong",
                   "Build stamp mismatch, API '" + cutName('a', 64) + "' build " +
                       cutName('s', 64) + ": library '" + cutName('l', 64) + "' using build " +
                       cutName('t', 64) + ".",
                   longName('a'), longName('s'), longName('l'), longName('t')),
        row<DbgBuildInfoEx::ExAppAlreadyRegistered>(
            "ExAppAlreadyRegistered", "Application-level build info already registered."),
        row<DbgBuildInfoEx::ExAppNotRegistered>("ExAppNotRegistered",
                                                "No application-level build info available."),
    };
}

INSTANTIATE_TEST_SUITE_P(DbgBuildInfoEx, ExceptionFamilies, testing::ValuesIn(rows()),
                         support::RowName());

// A name of up to 64 characters is complete, one of 65 or more is truncated.
TEST(DbgBuildInfoEx, NamesAndStampsKeepTheirFirst64Characters)
{
    for (const std::size_t length : {std::size_t{63}, std::size_t{64}, std::size_t{65}})
    {
        const std::string name = std::string(length - 1, 'n') + "!";
        const std::string cut = name.substr(0, 64);
        const DbgBuildInfoEx::ExVersionMismatch version("a.cpp", 1, name.c_str(), 1, 2,
                                                        name.c_str(), 3, 4);
        EXPECT_EQ(version.getReason(),
                  "Version mismatch, API '" + cut + "' v1.2: library '" + cut + "' at v3.4.")
            << length;
        const DbgBuildInfoEx::ExBuildStampMismatch stamp("a.cpp", 1, name.c_str(), name.c_str(),
                                                         name.c_str(), name.c_str());
        EXPECT_EQ(stamp.getReason(), "Build stamp mismatch, API '" + cut + "' build " + cut +
                                         ": library '" + cut + "' using build " + cut + ".")
            << length;
    }
}

} // namespace
