// The example programs do what their readers are told.

#include "support/childProcess.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

using support::ProgramResult;

bool hasLine(const std::string& text, const std::string& wanted)
{
    for (const std::string& line : support::linesOf(text))
        if (line == wanted) return true;
    return false;
}

TEST(Examples, TenLinesShowTheStartedLibrary)
{
    const ProgramResult result = support::runProgram("tenLines");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_TRUE(hasLine(result.out, "\t'base' Initialized (12 dependencies)")) << result.out;
    EXPECT_EQ(support::linesOf(result.out).size(), 16U);
}

TEST(Examples, TheGreetingTakesItsNameFromTheBestSource)
{
    const support::Environment byEnvironment{{"GREETING_NAME", "environment"}};
    const support::Environment none{{"GREETING_NAME", std::nullopt}};
    EXPECT_EQ(support::runProgram("greeting", {"-n", "option"}, byEnvironment).out,
              "Hello, option! (Zu::InContextAlias<Zu::InInitArg, 1>)\n");
    EXPECT_EQ(support::runProgram("greeting", {}, byEnvironment).out,
              "Hello, environment! (Zu::InContextAlias<Zu::InInitEnv, 1>)\n");
    EXPECT_EQ(support::runProgram("greeting", {}, none).out,
              "Hello, world! (Zu::InContextAlias<Zu::InInitDef, 0>)\n");
}

TEST(Examples, TheSampleApplicationShowsWhatItDid)
{
    const ProgramResult result =
        support::runProgram("sampleApplication", {"-p", "9000", "notes.txt"},
                            {{"SAMPLE_NAME", "joe"}, {"SAMPLE_QUIET", std::nullopt}});
    EXPECT_EQ(result.exitCode, 0);
    for (const char* const line :
         {"  1. 'initialize' Initialized (0 dependencies)",
          "  14. 'sampleStore' Initialized (13 dependencies)",
          "  15. 'sampleService' Initialized (14 dependencies)",
          "  sample::service::port = 9000  (text '9000' from option -p)",
          "  sample::service::name = joe  (text 'joe' from environment variable SAMPLE_NAME)",
          "  sample::service::quiet = 0  (text '0' from default)", "  'notes.txt'",
          "  sampleStore gives up: (from start-up) (from shut-down)"})
        EXPECT_TRUE(hasLine(result.out, line)) << line << "\n" << result.out;
    const std::vector<std::string> stops = support::linesOf(result.err);
    ASSERT_EQ(stops.size(), 15U);
    EXPECT_EQ(stops.front(), "  InInit<sampleService>::performFinalize()");
    EXPECT_EQ(stops.back(), "InInit<initialize>::performFinalize()");
}

TEST(Examples, TheSampleApplicationRefusesWrongUse)
{
    const struct
    {
        std::vector<std::string> _arguments;
        std::string _message;
    } cases[] = {
        {{"-z"}, "unknown option -z"},
        {{"-p", "many"}, "'many' is no port (1 to 65535), said by option -p"},
        {{"-p", "0"}, "'0' is no port (1 to 65535), said by option -p"},
        {{"-p", "65536"}, "'65536' is no port (1 to 65535), said by option -p"},
        {{"-p"}, "'' is no port (1 to 65535), said by option -p"},
    };
    for (const auto& row : cases)
    {
        const ProgramResult result = support::runProgram("sampleApplication", row._arguments);
        EXPECT_EQ(result.exitCode, 2);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err,
                  "sampleApplication: " + row._message +
                      "\nusage: sampleApplication [-q] [-p port] [-n name] [file ...]\n");
    }
}

} // namespace
