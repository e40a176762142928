// What tests of the test framework share: groups within the process, and runs of testProgram.

#ifndef ZU_TESTS_GROUPTEST_H
#define ZU_TESTS_GROUPTEST_H

#include "base/exBase.h"
#include "base/testGroup.h"
#include "base/traceManager.h"

#include "support/childProcess.h"

#include <gtest/gtest.h>
#include <optional>
#include <regex>
#include <string>
#include <vector>

namespace support
{

// A group that does nothing, with public access to everything that a derived class may do. A
// registered group must live until the process ends.
class PlainGroup : public Zu::TestGroup
{
public:
    explicit PlainGroup(const char* name = nullptr) : TestGroup(name) {}

    void run(int, char** const) override {}

    using TestGroup::setDescription;
    using TestGroup::setGroupNameInArgs;
    using TestGroup::setName;
    using TestGroup::setPrintHeaders;
    using TestGroup::setUsage;
};

// While it lives, collects what is printed, a text for each call.
class CollectingManager : public Zu::TraceManager
{
public:
    CollectingManager() : TraceManager(1000) {}

    Zu::Trace& getTrace() override
    {
        return _trace;
    }

    void print(const char* text) const override
    {
        _texts.push_back(text);
        if (_afterwards) Zu::Trace::setOptions(_afterwards);
    }

    // Options that are set after each text.
    const char* _afterwards = nullptr;
    mutable std::vector<std::string> _texts;

private:
    Zu::Trace _trace;
};

// The line by which tracing reports that an exception is raised, without its beginning.
inline std::string reportOf(const Zu::ExBase& exception, const std::string& type)
{
    return "Throwing exception [Exception Type = " + type + ", File = " + exception.getFileName() +
           ", Line=" + std::to_string(exception.getLineNo()) + "]\n" + exception.getReason();
}

// The environment of a run of test groups, independent of variables that are set outside.
inline Environment groupEnvironment(const Environment& changes)
{
    Environment environment;
    for (const char* const name :
         {"TEST_PROGRAM_LOGS", "TEST_PROGRAM_TELLS", "TEST_PROGRAM_TWICE", "ZU_LOG_DEFAULT_LEVEL",
          "ZU_LOG_GROUPS", "ZU_RUN_TEST_MSGS", "ZU_TEST_DIR", "ZU_TRACE_OPTIONS"})
        environment[name] = std::nullopt;
    for (const auto& [name, value] : changes) environment[name] = value;
    return environment;
}

inline ProgramResult runGroups(const std::vector<std::string>& words,
                               const Environment& changes = {})
{
    return runProgram("testProgram", words, groupEnvironment(changes));
}

// The output of a run that succeeds and writes nothing to standard error.
inline std::string outputOfGroups(const std::vector<std::string>& words,
                                  const Environment& changes = {})
{
    const ProgramResult result = runGroups(words, changes);
    EXPECT_EQ(result.exitCode, 0) << result.out;
    EXPECT_EQ(result.err, "");
    return result.out;
}

// The text with "<place>" instead of each place in the library's source of this name.
inline std::string withoutPlaces(const std::string& text, const std::string& source)
{
    const std::regex place("File = [^,\n]*" + source + "\\.cpp, Line=[1-9][0-9]*\\]");
    return std::regex_replace(text, place, "<place>]");
}

} // namespace support

#endif
