#include "app/apTestRunner.h"

#include "app/apCheckRecord.h"
#include "app/apTestFile.h"
#include "app/apTestInform.h"
#include "app/apTestReport.h"
#include "app/apTestWords.h"
#include "app/apUsage.h"
#include "base/inInitGuard.h"
#include "base/testMgr.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <functional>
#include <iostream>
#include <optional>
#include <utility>

namespace Zu
{

namespace
{

constexpr int PASSED = 0;
constexpr int FAILED = 2;

using Texts = std::vector<std::string>;
using Groups = std::vector<TestGroup*>;
using Clock = std::chrono::steady_clock;

std::chrono::microseconds since(Clock::time_point start)
{
    return std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start);
}

Groups namedGroups()
{
    Groups groups;
    TestGroup::visitAll(
        [&](TestGroup& group)
        {
            if (group.getName()) groups.push_back(&group);
        });
    return groups;
}

Texts namesOf(const Groups& groups)
{
    Texts names;
    for (const TestGroup* const group : groups) names.emplace_back(group->getName());
    return names;
}

std::string asList(const Texts& names)
{
    std::string text;
    for (const std::string& name : names) text += name + "\n";
    return text;
}

// In one piece, so that other threads and processes do not come between.
void print(const std::string& text)
{
    std::cout << text << std::flush;
}

// A message on standard error, with the program's name in front.
void complain(const std::string& program, const std::string& message)
{
    std::cerr << program + ": " + message + "\n" << std::flush;
}

// Whether all that was printed has been written; otherwise that is reported.
bool isOutputWritten(const std::string& program)
{
    if (std::cout) return true;
    complain(program, "standard output can't be written");
    return false;
}

// Runs something; returns the text of the exception that it raised, which is reported.
std::string errorOf(const std::function<void()>& body)
{
    try
    {
        body();
        return {};
    }
    catch (...)
    {
        std::string text = apExceptionText();
        apTestInform("Exception encountered: " + text);
        return text;
    }
}

[[noreturn]] void onTerminate()
{
    std::string text = "Abnormal termination: Terminate handler called.";
    if (std::current_exception()) text.append("\n").append(apExceptionText());
    apTestInform(text);
    std::abort();
}

void perform(TestGroup& group)
{
    std::string name = group.getName();
    char* words[] = {name.data(), nullptr};
    const bool hasName = group.getGroupNameInArgs();
    const int count = hasName ? 1 : 0;
    char** const first = hasName ? words : words + 1;
    group.prepare(count, first);
    group.run(count, first);
    group.terminate();
}

// Everything that is done once the command line is understood.
class TestRun
{
public:
    TestRun(std::string path, std::string program)
        : _path(std::move(path)), _program(std::move(program))
    {
    }

    // Opens the report; to be called before run(). Returns whether that succeeds.
    bool openReport(const std::string& file)
    {
        _report.emplace(file);
        return _report->isOpen();
    }

    int run(const Groups& groups);

private:
    void runGroup(TestGroup& group);
    void add(const ApTestResult& result);
    void addOutside();
    bool writeReport(std::chrono::microseconds time);

    const std::string _path;
    const std::string _program;
    std::optional<ApTestFile> _report;
    std::vector<ApTestResult> _results;
};

void TestRun::runGroup(TestGroup& group)
{
    ApCheckRecord& record = ApCheckRecord::ofProcess();
    ApTestResult result{group.getName()};
    if (group.getPrintHeaders()) print("Executing " + result._name + "\n");
    const Clock::time_point start = Clock::now();
    record.begin(result._name);
    result._error = errorOf([&] { perform(group); });
    ApCheckRecord::Result found = record.end();
    result._time = since(start);
    result._checks = found._checks;
    result._failedChecks = found._failed;
    result._failures = std::move(found._failures);
    const bool hasPassed = result.failures() == 0;
    if (group.getPrintHeaders() || !hasPassed) print(apTestLine(result));
    add(result);
}

void TestRun::add(const ApTestResult& result)
{
    _results.push_back(result);
}

void TestRun::addOutside()
{
    ApCheckRecord::Result found = ApCheckRecord::ofProcess().takeOutside();
    if (found._failed == 0) return;
    ApTestResult result{"(outside of groups)", false};
    result._checks = found._checks;
    result._failedChecks = found._failed;
    result._failures = std::move(found._failures);
    add(result);
}

int TestRun::run(const Groups& groups)
{
    const Clock::time_point start = Clock::now();
    ApTestResult packages{"(packages)", false};
    packages._error = errorOf(
        [&]
        {
            // Packages take options by letters, which mean something else here.
            const char* words[] = {_path.c_str(), nullptr};
            int count = 1;
            const char** list = words;
            const InInitGuard guard(count, list);
            for (TestGroup* const group : groups) runGroup(*group);
        });
    if (!packages._error.empty()) add(packages);
    addOutside();
    const std::chrono::microseconds time = since(start);
    const bool isReported = writeReport(time);
    print(std::string("\n").append(apTestSummary(_results, time)));
    const bool hasPassed = std::all_of(_results.begin(), _results.end(),
                                       [](const auto& result) { return result.failures() == 0; });
    return isOutputWritten(_program) && hasPassed && isReported ? PASSED : FAILED;
}

bool TestRun::writeReport(std::chrono::microseconds time)
{
    if (!_report || _report->write(apTestJunit(_program, _results, time))) return true;
    complain(_program, "the report can't be written");
    return false;
}

int refuse(const std::string& program, const Texts& errors)
{
    for (const std::string& error : errors) complain(program, error);
    complain(program, "'" + program + " --help' shows what can be given");
    return FAILED;
}

int answer(const std::string& program, const std::string& text)
{
    print(text);
    return isOutputWritten(program) ? PASSED : FAILED;
}

// Without words. Nothing that was not run has passed.
int explain(const std::string& program, const Texts& names)
{
    std::cerr << apTestUsage(program) + "\ngroups:\n" + asList(names) << std::flush;
    return FAILED;
}

} // namespace

int runTests(int argc, const char* const* argv)
{
    static bool hasRun = false;
    const std::string path = argc > 0 ? argv[0] : "";
    const std::string program = apProgramName(path);
    const ApTestWords words =
        apReadTestWords(Texts(argc > 0 ? argv + 1 : argv, argv + std::max(argc, 0)));
    if (words._showsHelp) return answer(program, apTestUsage(program));
    const Groups groups = namedGroups();
    const Texts names = namesOf(groups);
    if (argc <= 1) return explain(program, names);
    const ApTestChoice choice = apChooseTests(words, names);
    Texts errors = words._errors;
    errors.insert(errors.end(), choice._errors.begin(), choice._errors.end());
    if (!errors.empty()) return refuse(program, errors);
    Groups chosen;
    for (const std::size_t index : choice._groups) chosen.push_back(groups[index]);
    if (words._lists) return answer(program, asList(namesOf(chosen)));
    if (std::exchange(hasRun, true)) return refuse(program, {"tests run once in a process"});
    TestRun testRun(path, program);
    if (!words._junit.empty() && !testRun.openReport(words._junit))
        return refuse(program, {"the report '" + words._junit + "' can't be written"});
    TestMgr::setIsPixified(program.find(".pixie") != std::string::npos);
    std::set_terminate(onTerminate);
    return testRun.run(chosen);
}

} // namespace Zu
