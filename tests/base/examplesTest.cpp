// The example programs do what their pages promise.

#include "support/childProcess.h"
#include "support/tempDir.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
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

std::string textOf(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

// A file's lines that are events, from their level on.
std::vector<std::string> eventsOf(const std::string& file)
{
    std::vector<std::string> events;
    for (const std::string& line : support::linesOf(textOf(file)))
        if (line.find(") ") != std::string::npos)
            events.push_back(line.substr(line.find(") ") + 2));
    return events;
}

const std::vector<std::string> LATE_ORDERS = {"Warning: Orders order 1 is late by 0.500000 days",
                                              "Warning: Orders order 2 is late by 1.000000 days",
                                              "Warning: Orders order 3 is late by 1.500000 days"};

TEST(Examples, LoggingGoesToTheFile)
{
    const support::TempDir dir;
    const ProgramResult result = support::runProgram(
        "logging", {}, {{"B7Q_TEST_DIR", dir.path()}, {"ZU_LOG_GROUPS", std::nullopt}});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(eventsOf(dir.file("events.log")), LATE_ORDERS);
}

TEST(Examples, LoggingInFullGoesToStandardOutputFirstAndThenToTheFile)
{
    const support::TempDir dir;
    const ProgramResult result = support::runProgram(
        "loggingInFull", {}, {{"B7Q_TEST_DIR", dir.path()}, {"ZU_LOG_GROUPS", std::nullopt}});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "Orders goes to standard output: no service runs yet\n");
    EXPECT_EQ(eventsOf(dir.file("events.log")), LATE_ORDERS);
}

TEST(Examples, HelloIsGivenANameAndExplainsItself)
{
    const support::Environment none{{"HELLO_NAME", std::nullopt}};
    EXPECT_EQ(support::runProgram("hello", {"-n", "Ada"}, none).out, "Hello, Ada!\n");
    EXPECT_EQ(support::runProgram("hello", {"--name=Ada"}, none).out, "Hello, Ada!\n");
    EXPECT_EQ(support::runProgram("hello", {}, {{"HELLO_NAME", "Ada"}}).out, "Hello, Ada!\n");
    EXPECT_EQ(support::runProgram("hello", {}, none).out, "Hello, world!\n");
    const ProgramResult refused = support::runProgram("hello", {"--nmae=Ada"}, none);
    EXPECT_EQ(refused.err, "hello: unknown option '--nmae'; did you mean '--name'?\n"
                           "hello: 'hello --help' shows what can be given\n");
    EXPECT_EQ(refused.exitCode, 2);
    EXPECT_EQ(support::runProgram("hello", {"--help"}, none).out,
              "usage: hello [option]...\n"
              "Greets whom you name.\n"
              "\n"
              "options:\n"
              "  -n, --name=VALUE        name to greet [HELLO_NAME] [default: world, when nobody "
              "says]\n"
              "  -h, --help              shows this text, and ends\n"
              "      --completion        writes a completion for bash, and ends\n");
}

// A line of what the log service displays.
std::string displayed(const std::string& option, const std::string& value, const char* variable)
{
    return option + ": " + value + " (" + variable + ")";
}

TEST(Examples, TheSetUpOfTheLogComesFromTheProgramTheEnvironmentAndTheCommandLine)
{
    const support::TempDir dir;
    const std::string separator = dir.file("x").substr(dir.path().size(), 1);
    support::Environment environment{{"B7Q_TEST_DIR", dir.path()},
                                     {"ZU_LOG_SERVICE_ROTATE_SIZE", "1M"}};
    const ProgramResult plain = support::runProgram("logSetup", {}, environment);
    EXPECT_EQ(plain.exitCode, 0);
    EXPECT_EQ(plain.err, "");
    EXPECT_TRUE(hasLine(plain.out, displayed("directory", "\"\"", "ZU_LOG_SERVICE_DIRECTORY")));
    EXPECT_TRUE(hasLine(plain.out, displayed("line-form", "utc", "ZU_LOG_SERVICE_LINE_FORM")));
    EXPECT_TRUE(
        hasLine(plain.out, displayed("rotate-size", "1048576", "ZU_LOG_SERVICE_ROTATE_SIZE")));
    EXPECT_TRUE(hasLine(plain.out, "Warning: " + dir.file("shop.log"))) << plain.out;
    environment["ZU_LOG_SERVICE_DIRECTORY"] = dir.file("environment");
    const std::string place = dir.file("option");
    const ProgramResult result = support::runProgram("logSetup", {"-l", place}, environment);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_TRUE(hasLine(result.out,
                        displayed("directory", "\"" + place + "\"", "ZU_LOG_SERVICE_DIRECTORY")));
    EXPECT_TRUE(hasLine(result.out, "Warning: " + place + separator + "shop.log")) << result.out;
    EXPECT_TRUE(std::filesystem::exists(place + separator + "shop.log"));
    EXPECT_FALSE(std::filesystem::exists(dir.file("environment")));
}

TEST(Examples, ProfilingReportsToTheLogAndTracesOneCycle)
{
    const support::TempDir dir;
    const ProgramResult result = support::runProgram(
        "profiling", {}, {{"B7Q_TEST_DIR", dir.path()}, {"ZU_TRACE_OPTIONS", std::nullopt}});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "+ work\n  | sum 0\n  /\n");
    const std::string report = textOf(dir.file("prof.log"));
    EXPECT_NE(report.find("Profiling: Jobs Profiler work:\n\t        Nb of cycles:   100\n"),
              std::string::npos)
        << report;
}

TEST(Examples, TimesAreConvertedComparedAndWritten)
{
    const ProgramResult result = support::runProgram("times");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "(30000 @ (30000/1001=29.97)) is 1001 s\n"
                          "(48048000 @ (48000/1=48000)), equal: 1\n"
                          "(30000 @ (30000/1001=29.97)) again\n"
                          "(0 @ (25/1=25)) of 0.83\n"
                          "(54 @ (750000/1001=749.251))\n"
                          "(2000000 @ (1000000/1=1e+06))\n"
                          "(1500 @ (1000/1=1000)) is 45 at 30/1: 1\n"
                          "1001000000 us\n"
                          "'30000 30000 1001' is (30000 @ (30000/1001=29.97))\n");
}

TEST(Examples, TheSampleApplicationKeepsAccountOfItsEvents)
{
    const support::TempDir dir;
    const ProgramResult result = support::runProgram(
        "sampleApplication", {}, {{"B7Q_TEST_DIR", dir.path()}, {"SAMPLE_QUIET", std::nullopt}});
    EXPECT_EQ(result.exitCode, 0);
    const std::vector<std::string> events = eventsOf(dir.file("events.log"));
    const auto count = [&events](const std::string& beginning)
    {
        return std::count_if(events.begin(), events.end(),
                             [&beginning](const std::string& event)
                             { return event.rfind(beginning, 0) == 0; });
    };
    EXPECT_GE(count("Informational: Event overflow ["), 1);
    EXPECT_EQ(count("Warning: Query from the second process, "), 50);
    // Three producers of forty rounds; the losses are all in the burst of another thread.
    for (const char* const beginning :
         {"Internal Error: Query index broken, producer ",
          "Fatal Error: Query disk gone, producer ", "Error: Query no answer in round ",
          "Warning: Query took ", "Informational: Window opened by producer ",
          "Tracing: Window draw "})
        EXPECT_EQ(count(beginning), 120) << beginning;
    EXPECT_EQ(count("Tracing: Query"), 0);
    const std::vector<std::string> profile = eventsOf(dir.file("prof.log"));
    EXPECT_EQ(profile.size(), 120U);
    // Attempted: the producers' seven levels, the burst and the second process.
    const auto written = events.size() + profile.size() -
                         static_cast<std::size_t>(count("Informational: Event overflow ["));
    const std::size_t attempted = 3 * 40 * 7 + 12000 + 50;
    EXPECT_TRUE(hasLine(result.out, "  account: " + std::to_string(attempted) +
                                        " attempted = " + std::to_string(written) + " written + " +
                                        std::to_string(attempted - written) + " lost"))
        << result.out;
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
          "  stream time (750 @ (25/1=25))",
          "  as text '750 25 1', read again (750 @ (25/1=25)), the same", "+ sort",
          "  | | 1 and 1 numbers, from 2 to 4", "  | 2 and 2 numbers, from 1 to 4", "  /",
          "Profiler sorting 1000 numbers:", "        Nb of cycles:   100",
          "  sampleStore gives up: (from start-up) (from shut-down)"})
        EXPECT_TRUE(hasLine(result.out, line)) << line << "\n" << result.out;
    const std::vector<std::string> stops = support::linesOf(result.err);
    ASSERT_EQ(stops.size(), 15U);
    EXPECT_EQ(stops.front(), "  InInit<sampleService>::performFinalize()");
    EXPECT_EQ(stops.back(), "InInit<initialize>::performFinalize()");
}

TEST(Examples, TheSampleApplicationCountsTenBeats)
{
    const support::TempDir dir;
    const ProgramResult result = support::runProgram(
        "sampleApplication", {}, {{"B7Q_TEST_DIR", dir.path()}, {"SAMPLE_QUIET", std::nullopt}});
    EXPECT_EQ(result.exitCode, 0);
    int beats = 0;
    int last = 0;
    for (const std::string& line : support::linesOf(result.out))
    {
        if (line.rfind("  beat ", 0) != 0) continue;
        const int count = std::stoi(line.substr(7));
        EXPECT_GE(count, last);
        last = count;
        ++beats;
    }
    EXPECT_EQ(beats, 10);
    EXPECT_GE(last, 9);
}

std::size_t countOf(const std::string& part, const std::string& text)
{
    std::size_t count = 0;
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
    return count;
}

TEST(Examples, EverySourceOfRandomNumbersHasAPicture)
{
    const support::TempDir dir;
    const ProgramResult result = support::runProgram("distributions", {dir.path()});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    const std::vector<std::string> lines = support::linesOf(result.out);
    ASSERT_EQ(lines.size(), 19U);
    for (const std::string& line : lines)
    {
        const std::string name = line.substr(2, line.find(' ', 2) - 2);
        const std::string picture = textOf(dir.file(name + ".svg"));
        EXPECT_EQ(picture.rfind("<svg xmlns=", 0), 0U) << name;
        // Points, or bars beside the two frames.
        EXPECT_GE(countOf("<circle", picture) + countOf("<rect", picture), 82U) << name;
    }
    for (const char* const name : {"gaussian", "measured", "measuredPairs", "sphereHistogram"})
    {
        const std::string scene = textOf(dir.file(std::string(name) + ".iv"));
        EXPECT_EQ(scene.rfind("#Inventor V2.1 ascii", 0), 0U) << name;
        EXPECT_GE(countOf("\n", textOf(dir.file(std::string(name) + ".txt"))), 80U) << name;
    }
}

TEST(Examples, ATreeIsCopiedAndCompared)
{
    const support::TempDir dir;
    std::filesystem::create_directories(dir.file("tree/inner"));
    std::ofstream(dir.file("tree/a.txt")) << "one";
    std::ofstream(dir.file("tree/inner/b.txt")) << "three";
    const ProgramResult result =
        support::runProgram("copyTree", {dir.file("tree"), dir.file("copy")});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_TRUE(hasLine(result.out, "1 directories, 2 files, 8 bytes, 0 differences"))
        << result.out;
    EXPECT_EQ(textOf(dir.file("copy/inner/b.txt")), "three");

    const ProgramResult again =
        support::runProgram("copyTree", {dir.file("tree"), dir.file("tree/inner/copy")});
    EXPECT_EQ(again.exitCode, 1);
    EXPECT_EQ(again.err.rfind("copyTree: Invalid path: '", 0), 0U) << again.err;
    EXPECT_EQ(support::runProgram("copyTree").exitCode, 2);
}

TEST(Examples, PicturesThatCantBeWrittenAreAnError)
{
    const support::TempDir dir;
    const ProgramResult result = support::runProgram("distributions", {dir.file("missing")});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err.rfind("distributions: can't write '", 0), 0U) << result.err;
}

TEST(Examples, SamplesAreDrawnMeasuredAndDrawnAgain)
{
    const ProgramResult result = support::runProgram("sampling");
    EXPECT_EQ(result.exitCode, 0);
    const std::vector<std::string> lines = support::linesOf(result.out);
    ASSERT_EQ(lines.size(), 3U);
    // One in 6.3, by the normal distribution.
    EXPECT_NEAR(std::stoi(lines[0]), 159, 50);
    EXPECT_EQ(lines[0].substr(lines[0].find(' ')), " of 1000 are taller than 1.80 m");
    EXPECT_EQ(lines[1], "5 cards shuffled");
    EXPECT_EQ(lines[2], "pi is about 3.1448");
}

TEST(Examples, AMonteCarloRunHasOneResultForAnyNumberOfThreads)
{
    const ProgramResult result = support::runProgram("monteCarlo");
    EXPECT_EQ(result.exitCode, 0);
    // 502,832 of 640,000, counted by a program in another language.
    EXPECT_EQ(result.out, "pi is about 3.1427\none thread counts the same\n");
}

TEST(Examples, TheBeatComesToTenOrMore)
{
    const ProgramResult result = support::runProgram("beating");
    EXPECT_EQ(result.exitCode, 0);
    const std::vector<std::string> lines = support::linesOf(result.out);
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_GE(std::stoi(lines[0].substr(5)), 10);
    EXPECT_EQ(lines[1], "slept");
}

TEST(Examples, TwoThreadsTraceEachWithItsOwnIndentation)
{
    const support::TempDir dir;
    const ProgramResult result =
        support::runProgram("tracingThreads", {}, {{"B7Q_TEST_DIR", dir.path()}});
    EXPECT_EQ(result.exitCode, 0);
    std::vector<std::string> shown;
    std::vector<std::string> logged;
    for (const std::string& line : support::linesOf(result.out))
    {
        const std::string text = line.substr(line.find(") ") + 2);
        if (line.rfind("(0x", 0) == 0)
            shown.push_back(text);
        else
            logged.push_back(text);
    }
    std::sort(shown.begin(), shown.end());
    std::sort(logged.begin(), logged.end());
    std::vector<std::string> expected = {
        "  /", "  /", "  | thread 1 is at it", "  | thread 2 is at it", "+ work", "+ work"};
    EXPECT_EQ(shown, expected);
    for (std::string& text : expected) text = "Tracing: " + text;
    EXPECT_EQ(logged, expected);
}

TEST(Examples, ATestProgramRunsItsGroup)
{
    const support::Environment none{{"ZU_TRACE_OPTIONS", std::nullopt},
                                    {"ZU_RUN_TEST_MSGS", std::nullopt}};
    const ProgramResult result = support::runProgram("testing", {"Lookup"}, none);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_TRUE(hasLine(result.out, "| Executing Lookup")) << result.out;
    EXPECT_TRUE(hasLine(result.out, "| Test group executed successfully.")) << result.out;
    const ProgramResult unknown = support::runProgram("testing", {"Other"}, none);
    EXPECT_EQ(unknown.exitCode, 1);
    EXPECT_TRUE(hasLine(unknown.out, "Abnormal termination: Unknown test group name."));
}

TEST(Examples, ALibraryTellsOfItsBuild)
{
    const ProgramResult result = support::runProgram("buildRecord");
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_TRUE(hasLine(result.out, "Unknown application name / version.")) << result.out;
    EXPECT_NE(result.out.find("API Shop 1.4 beta: \n\tlibShop (S. 12, "), std::string::npos);
    EXPECT_NE(result.out.find("API Corvane 0.2 pre-alpha: \n\tlibZUbase ("), std::string::npos);
}

TEST(Examples, ManagersOfAnApplicationTakeThePlaceOfTheDefaultOnes)
{
    const ProgramResult result = support::runProgram(
        "managers", {}, {{"ZU_TRACE_OPTIONS", std::nullopt}, {"ZU_HEAP_DUMP_INFO", std::nullopt}});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "*************** Default (compiler's) heap manager ***************\n"
                          "*****************************************************************\n"
                          "1: | block 1\n"
                          "2: | block 2\n"
                          "counting heap: 2 blocks, checked every 50 calls\n");
}

TEST(Examples, TheSampleApplicationTellsWhoRunsAndWhatIsLoaded)
{
    const support::TempDir dir;
    const ProgramResult result = support::runProgram(
        "sampleApplication", {}, {{"B7Q_TEST_DIR", dir.path()}, {"SAMPLE_QUIET", std::nullopt}});
    EXPECT_EQ(result.exitCode, 0);
    const std::string& out = result.out;
    EXPECT_NE(out.find("\n  Sample application 1.0 example (S. 1, "), std::string::npos) << out;
    EXPECT_NE(out.find("\n  API Corvane 0.2 pre-alpha: \n  \tlibZUbase (P. 187, "),
              std::string::npos);
    const std::string loaded = out.substr(out.find("\nLoaded into the process:\n"));
    EXPECT_NE(loaded.find("sampleApplication"), std::string::npos) << loaded;
    EXPECT_NE(loaded.find("libZUbase"), std::string::npos) << loaded;
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
