#include "app/apTestReport.h"

#include "app/apTestXml.h"

#include <algorithm>
#include <string_view>

namespace Zu
{

namespace
{

using Results = std::vector<ApTestResult>;

std::string counted(std::uint64_t count, const char* noun)
{
    return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

template <class Count> std::uint64_t sumOf(const Results& results, Count count)
{
    std::uint64_t sum = 0;
    for (const ApTestResult& result : results) sum += static_cast<std::uint64_t>(count(result));
    return sum;
}

void appendAttribute(std::string& out, const char* name, std::string_view value)
{
    out += std::string(" ") + name + "=\"";
    apAppendXml(out, value);
    out += '"';
}

// An element whose attribute is the text's first line.
void appendFinding(std::string& out, const char* element, std::string_view text)
{
    out += std::string("      <") + element;
    appendAttribute(out, "message", text.substr(0, text.find('\n')));
    out += '>';
    apAppendXml(out, text);
    out += std::string("</") + element + ">\n";
}

void appendSums(std::string& out, const Results& results, std::chrono::microseconds time)
{
    const auto hasError = [](const ApTestResult& result) { return !result._error.empty(); };
    const auto hasFailed = [&](const ApTestResult& result)
    { return !hasError(result) && result._failedChecks != 0; };
    appendAttribute(out, "tests", std::to_string(results.size()));
    appendAttribute(out, "failures", std::to_string(sumOf(results, hasFailed)));
    appendAttribute(out, "errors", std::to_string(sumOf(results, hasError)));
    appendAttribute(out, "time", apSeconds(time, 6));
    out += ">\n";
}

void appendCase(std::string& out, const std::string& program, const ApTestResult& result)
{
    out += "    <testcase";
    appendAttribute(out, "classname", program);
    appendAttribute(out, "name", result._name);
    appendAttribute(out, "assertions", std::to_string(result._checks));
    appendAttribute(out, "time", apSeconds(result._time, 6));
    if (result.failures() == 0)
    {
        out += "/>\n";
        return;
    }
    out += ">\n";
    for (const std::string& text : result._failures) appendFinding(out, "failure", text);
    if (result._failedChecks > result._failures.size())
        appendFinding(out, "failure",
                      counted(result._failedChecks - result._failures.size(), "further failure"));
    if (!result._error.empty()) appendFinding(out, "error", result._error);
    out += "    </testcase>\n";
}

} // namespace

std::string apSeconds(std::chrono::microseconds time, unsigned decimals)
{
    constexpr std::size_t MOST_DECIMALS = 6;
    std::string digits = std::to_string(time.count());
    if (digits.size() <= MOST_DECIMALS) digits.insert(0, MOST_DECIMALS + 1 - digits.size(), '0');
    const std::size_t whole = digits.size() - MOST_DECIMALS;
    std::string text = digits.substr(0, whole);
    if (decimals == 0) return text;
    return text + '.' + digits.substr(whole, std::min<std::size_t>(decimals, MOST_DECIMALS));
}

std::string apTestLine(const ApTestResult& result)
{
    const std::uint64_t failures = result.failures();
    return result._name + (failures == 0 ? " passed: " : " FAILED: ") +
           counted(result._checks, "check") +
           (failures == 0 ? "" : ", " + counted(failures, "failure")) + ", " +
           apSeconds(result._time, 3) + " s\n";
}

std::string apTestSummary(const Results& results, std::chrono::microseconds time)
{
    std::string text;
    for (const ApTestResult& result : results)
        if (result.failures() != 0) text += (text.empty() ? "failed: " : ", ") + result._name;
    if (!text.empty()) text += '\n';
    const auto sum = [&](auto count) { return sumOf(results, count); };
    return text + counted(sum([](const auto& result) { return result._isGroup; }), "group") + ", " +
           counted(sum([](const auto& result) { return result._checks; }), "check") + ", " +
           counted(sum([](const auto& result) { return result.failures(); }), "failure") + ", " +
           apSeconds(time, 3) + " s\n";
}

std::string apTestJunit(const std::string& program, const Results& results,
                        std::chrono::microseconds time)
{
    std::string out = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites";
    appendSums(out, results, time);
    out += "  <testsuite";
    appendAttribute(out, "name", program);
    appendSums(out, results, time);
    for (const ApTestResult& result : results) appendCase(out, program, result);
    return out + "  </testsuite>\n</testsuites>\n";
}

} // namespace Zu
