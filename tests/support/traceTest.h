// What tests of tracing share: options limited to one test, and the output meanwhile.

#ifndef ZU_TESTS_TRACETEST_H
#define ZU_TESTS_TRACETEST_H

#include "base/trace.h"
#include "base/traceLevel.h"

#include "support/childProcess.h"
#include "support/streamCapture.h"

#include <gtest/gtest.h>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

namespace support
{

// The options are the defaults before and after the test; levels persist.
class TracingTest : public testing::Test
{
protected:
    TracingTest()
    {
        Zu::Trace::setOptions("reset");
        // The levels may be printed with the first line of a process, and never later.
        std::ostringstream stream;
        Zu::Trace().prefix(stream, "", 0);
    }

    ~TracingTest() override
    {
        Zu::Trace::setOptions("reset");
    }

    // A name that no level has had in this process.
    static std::string newName()
    {
        static int count = 0;
        return "TracingTest" + std::to_string(++count);
    }

    static Zu::TraceLevel& newLevel()
    {
        return *Zu::Trace::registerLevel(newName().c_str(), nullptr);
    }

    static void set(const std::string& options)
    {
        Zu::Trace::setOptions(options.c_str());
    }

    static bool isOn(const std::string& name)
    {
        return Zu::Trace::registerLevel(name.c_str(), nullptr)->isOn();
    }
};

// The output of a successful run of traceProgram with these options in the environment.
inline std::string traceOutputOf(const std::vector<std::string>& words,
                                 const std::optional<std::string>& options = std::nullopt)
{
    const ProgramResult result = runProgram("traceProgram", words, {{"ZU_TRACE_OPTIONS", options}});
    EXPECT_FALSE(result.aborted);
    EXPECT_EQ(result.exitCode, 0) << result.out;
    EXPECT_EQ(result.err, "");
    return result.out;
}

} // namespace support

#endif
