#include "app/apTestReport.h"

#include <chrono>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

using std::chrono::microseconds;
using Zu::ApTestResult;

TEST(ApTestReport, SecondsHaveTheirDecimalsInEveryLocale)
{
    const struct
    {
        long long _microseconds;
        unsigned _decimals;
        const char* _text;
    } cases[] = {
        {0, 3, "0.000"},
        {0, 6, "0.000000"},
        {1, 6, "0.000001"},
        {999, 3, "0.000"},
        {1000, 3, "0.001"},
        {999999, 3, "0.999"},
        {1000000, 3, "1.000"},
        {61234567, 6, "61.234567"},
        {61234567, 1, "61.2"},
        {61934567, 0, "61"},
        {3600000000000, 3, "3600000.000"},
        {5, 9, "0.000005"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(Zu::apSeconds(microseconds(row._microseconds), row._decimals), row._text);
}

ApTestResult passed(const char* name, unsigned checks)
{
    ApTestResult result{name};
    result._time = microseconds(1500);
    result._checks = checks;
    return result;
}

ApTestResult failed()
{
    ApTestResult result = passed("Insert", 5);
    result._failedChecks = 2;
    result._failures = {"a.cpp:1: x < \"y\"\n    x: 3", "a.cpp:2: z"};
    return result;
}

ApTestResult raised()
{
    ApTestResult result = passed("Odd & \"<name>\"", 1);
    result._error = "[Exception Type = int]\n\x1b[31m\xFF";
    return result;
}

TEST(ApTestReport, AGroupEndsWithALine)
{
    EXPECT_EQ(Zu::apTestLine(passed("Lookup", 0)), "Lookup passed: 0 checks, 0.001 s\n");
    EXPECT_EQ(Zu::apTestLine(passed("Lookup", 1)), "Lookup passed: 1 check, 0.001 s\n");
    EXPECT_EQ(Zu::apTestLine(failed()), "Insert FAILED: 5 checks, 2 failures, 0.001 s\n");
    EXPECT_EQ(Zu::apTestLine(raised()), "Odd & \"<name>\" FAILED: 1 check, 1 failure, 0.001 s\n");
}

TEST(ApTestReport, ARunEndsWithItsSums)
{
    EXPECT_EQ(Zu::apTestSummary({}, microseconds(0)), "0 groups, 0 checks, 0 failures, 0.000 s\n");
    EXPECT_EQ(Zu::apTestSummary({passed("Lookup", 1)}, microseconds(2000)),
              "1 group, 1 check, 0 failures, 0.002 s\n");
    ApTestResult outside{"(outside of groups)", false};
    outside._checks = outside._failedChecks = 1;
    EXPECT_EQ(Zu::apTestSummary({passed("Lookup", 3), failed(), raised(), outside},
                                microseconds(1234567)),
              "failed: Insert, Odd & \"<name>\", (outside of groups)\n"
              "3 groups, 10 checks, 4 failures, 1.234 s\n");
}

TEST(ApTestReport, TheReportIsXml)
{
    EXPECT_EQ(
        Zu::apTestJunit("a<b", {passed("Lookup", 3), failed(), raised()}, microseconds(20)),
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<testsuites tests=\"3\" failures=\"1\" errors=\"1\" time=\"0.000020\">\n"
        "  <testsuite name=\"a&lt;b\" tests=\"3\" failures=\"1\" errors=\"1\" time=\"0.000020\">\n"
        "    <testcase classname=\"a&lt;b\" name=\"Lookup\" assertions=\"3\" time=\"0.001500\"/>\n"
        "    <testcase classname=\"a&lt;b\" name=\"Insert\" assertions=\"5\" time=\"0.001500\">\n"
        "      <failure message=\"a.cpp:1: x &lt; &quot;y&quot;\">"
        "a.cpp:1: x &lt; &quot;y&quot;&#10;    x: 3</failure>\n"
        "      <failure message=\"a.cpp:2: z\">a.cpp:2: z</failure>\n"
        "    </testcase>\n"
        "    <testcase classname=\"a&lt;b\" name=\"Odd &amp; &quot;&lt;name&gt;&quot;\" "
        "assertions=\"1\" time=\"0.001500\">\n"
        "      <error message=\"[Exception Type = int]\">[Exception Type = int]&#10;"
        "\\x1b[31m\\xff</error>\n"
        "    </testcase>\n"
        "  </testsuite>\n"
        "</testsuites>\n");
}

TEST(ApTestReport, TextsThatWereNotKeptAreCounted)
{
    ApTestResult result = failed();
    result._failedChecks = 3;
    EXPECT_NE(Zu::apTestJunit("a", {result}, {})
                  .find("<failure message=\"1 further failure\">1 further failure</failure>"),
              std::string::npos);
    result._failedChecks = 7;
    EXPECT_NE(Zu::apTestJunit("a", {result}, {}).find(">5 further failures<"), std::string::npos);
}

TEST(ApTestReport, AFailedCheckBeforeAnExceptionIsReportedToo)
{
    ApTestResult result = failed();
    result._error = "Unknown exception.";
    const std::string xml = Zu::apTestJunit("a", {result}, {});
    EXPECT_NE(xml.find("tests=\"1\" failures=\"0\" errors=\"1\""), std::string::npos) << xml;
    EXPECT_NE(xml.find("<failure message=\"a.cpp:2: z\">"), std::string::npos);
    EXPECT_NE(xml.find("<error message=\"Unknown exception.\">"), std::string::npos);
    EXPECT_EQ(result.failures(), 3U);
}

} // namespace
