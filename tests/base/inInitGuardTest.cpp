// Start-up and shut-down as a whole process shows them.

#include "support/childProcess.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace
{

using support::Environment;
using support::ProgramResult;

ProgramResult play(const std::string& mode, const std::vector<std::string>& arguments = {},
                   Environment environment = {})
{
    environment["STARTUP_MODE"] = mode;
    return support::runProgram("startupProgram", arguments, environment);
}

// The output of a mode in a successful run that writes nothing to standard error.
std::string outputOf(const std::string& mode, const std::vector<std::string>& arguments = {},
                     const Environment& environment = {})
{
    const ProgramResult result = play(mode, arguments, environment);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    return result.out;
}

std::string program()
{
    return support::programPath("startupProgram");
}

struct BindingCase
{
    const char* _what;
    std::vector<std::string> _arguments;
    Environment _environment;
    std::string _left;
    std::string _verbose;
    std::string _size;
    std::string _name;
};

TEST(InInitGuard, BindsCommandLineEnvironmentAndDefaults)
{
    const std::string byOption = "from Zu::InContextAlias<Zu::InInitArg, 1>";
    const std::string byEnvironment = "from Zu::InContextAlias<Zu::InInitEnv, 1>";
    const std::string byDefault = "from Zu::InContextAlias<Zu::InInitDef, 0>";
    const BindingCase cases[] = {
        {"nothing", {}, {}, "", "nothing", "'10' " + byDefault, "'nobody' " + byDefault},
        {"options and a file",
         {"-v", "-x", "3", "file"},
         {},
         " 'file'",
         "'1' " + byOption,
         "'3' " + byOption,
         "'nobody' " + byDefault},
        {"an unknown option",
         {"-v", "-q", "file"},
         {},
         " '-q' 'file'",
         "'1' " + byOption,
         "'10' " + byDefault,
         "'nobody' " + byDefault},
        {"a double dash",
         {"--", "-v"},
         {},
         " '-v'",
         "nothing",
         "'10' " + byDefault,
         "'nobody' " + byDefault},
        {"environment beats default",
         {},
         {{"STARTUP_SIZE", "20"}, {"STARTUP_NAME", "joe"}},
         "",
         "nothing",
         "'20' " + byEnvironment,
         "'joe' " + byEnvironment},
        {"option beats environment",
         {"-x4"},
         {{"STARTUP_SIZE", "20"}},
         "",
         "nothing",
         "'4' " + byOption,
         "'nobody' " + byDefault},
        {"malformed environment value",
         {},
         {{"STARTUP_SIZE", "many"}},
         "",
         "nothing",
         "'0' " + byEnvironment,
         "'nobody' " + byDefault},
        {"option without its value",
         {"-x"},
         {},
         "",
         "nothing",
         "'0' " + byOption,
         "'nobody' " + byDefault},
    };
    for (const BindingCase& row : cases)
    {
        Environment environment{{"STARTUP_SIZE", std::nullopt}, {"STARTUP_NAME", std::nullopt}};
        for (const auto& [name, value] : row._environment) environment[name] = value;
        EXPECT_EQ(outputOf("show", row._arguments, environment),
                  "argc 0, argv null\n"
                  "application " +
                      program() + "\nleft: '" + program() + "'" + row._left +
                      "\nstartup::verbose = " + row._verbose + "\nstartup::size = " + row._size +
                      "\nstartup::name = " + row._name +
                      "\nstartup::orphan = nothing\n"
                      "end of main\n")
            << row._what;
    }
}

TEST(InInitGuard, TakesWordsThatAreConstant)
{
    EXPECT_EQ(outputOf("constWords"),
              "argc 0, argv null\n"
              "left: 'program' 'rest'\n"
              "startup::verbose = nothing\n"
              "startup::size = '7' from Zu::InContextAlias<Zu::InInitArg, 1>\n"
              "startup::name = 'nobody' from Zu::InContextAlias<Zu::InInitDef, 0>\n"
              "startup::orphan = nothing\n"
              "end of main\n");
}

TEST(InInitGuard, AnEmptyArgumentVectorIsFatalWhereOptionsAreDeclared)
{
    const ProgramResult result = play("noWords");
    EXPECT_TRUE(result.aborted);
    EXPECT_NE(result.err.find("Assertion failed: argc > 0, file "), std::string::npos);
    EXPECT_EQ(result.out, "");
}

TEST(InInitGuard, ReportsAFailureOfTheFamilyAndStopsWhatIsUp)
{
    EXPECT_EQ(outputOf("bodyThrowsOfTheFamily"),
              "Able up\n"
              "Initialisation failed: Init error in package: 'Broken'.\n"
              "No packages waiting to be initialize.\n"
              "17 packages currently saved:\n"
              "\t'initialize' Initialized (0 dependencies)\n"
              "\t'heapMgr' Initialized (1 dependencies)\n"
              "\t'initArg' Initialized (1 dependencies)\n"
              "\t'osal' Initialized (1 dependencies)\n"
              "\t'initVars' Initialized (2 dependencies)\n"
              "\t'profiling' Initialized (2 dependencies)\n"
              "\t'logger' Initialized (3 dependencies)\n"
              "\t'debugging' Initialized (5 dependencies)\n"
              "\t'baseMath' Initialized (6 dependencies)\n"
              "\t'random' Initialized (6 dependencies)\n"
              "\t'discreteTime' Initialized (7 dependencies)\n"
              "\t'testing' Initialized (7 dependencies)\n"
              "\t'base' Initialized (12 dependencies)\n"
              "\t'Able' Initialized (13 dependencies)\n"
              "\t'client' Initialized (13 dependencies)\n"
              "\t'Broken' Not initialized\n"
              "\t'Later' Not initialized\n"
              "\n"
              "Able down\n"
              "start: Init error in package: 'Broken'.\n"
              "initializing no\n"
              "end of main\n");
}

TEST(InInitGuard, LetsOtherExceptionsPassAndStopsNothing)
{
    EXPECT_EQ(outputOf("bodyThrowsOther"), "Able up\n"
                                           "start: std not of the family\n"
                                           "initializing no\n"
                                           "end of main\n");
}

TEST(InInitGuard, ReportsACycle)
{
    EXPECT_EQ(outputOf("cycle"), "Initialisation failed: Init dependencies contain cycle(s)\n"
                                 "No packages waiting to be initialize.\n"
                                 "No packages saved.\n"
                                 "Dependency cycle(s) detected...\n"
                                 "'A' is in a cycle with:\n"
                                 "\t'B'\n"
                                 "\n"
                                 "start: Init dependencies contain cycle(s)\n"
                                 "end of main\n");
}

TEST(InInitGuard, ReportsAnUnknownDependency)
{
    const std::string reason =
        "Init Package not registered: '(anonymous namespace)::Package<2>'.\n";
    EXPECT_EQ(outputOf("unknownDependency"), "Initialisation failed: " + reason +
                                                 "No packages waiting to be initialize.\n"
                                                 "No packages saved.\n"
                                                 "\n"
                                                 "start: " +
                                                 reason + "end of main\n");
}

TEST(InInitGuard, FinaliseBeforeStartOrTwiceIsAnError)
{
    EXPECT_EQ(outputOf("finaliseFirst"), "finalize: Call to finalize() before initialize().\n"
                                         "end of main\n");
    EXPECT_EQ(outputOf("finaliseTwice"), "finalize: Multiple calls to finalize().\n"
                                         "end of main\n");
}

TEST(InInitGuard, ASecondStartAppendsItsWordsAndIsNoError)
{
    EXPECT_EQ(outputOf("startTwice", {"-x", "5", "file"}),
              "initialize: nothing raised\n"
              "left: '" +
                  program() +
                  "' 'file' 'second' '-v'\n"
                  "startup::verbose = nothing\n"
                  "startup::size = '5' from Zu::InContextAlias<Zu::InInitArg, 1>\n"
                  "startup::name = 'nobody' from Zu::InContextAlias<Zu::InInitDef, 0>\n"
                  "startup::orphan = nothing\n"
                  "end of main\n");
}

TEST(InInitGuard, WhatAFinaliserRaisesPassesUnlessTheStackUnwinds)
{
    EXPECT_EQ(outputOf("finaliserThrows"), "Broken up\n"
                                           "Above up\n"
                                           "Above down\n"
                                           "scope: std of the finaliser\n"
                                           "finalizing yes\n"
                                           "end of main\n");
    EXPECT_EQ(outputOf("unwinding"), "Broken up\n"
                                     "scope: std of the scope\n"
                                     "end of main\n");
}

TEST(InInitGuard, AnExitInsideTheScopeStopsNoPackage)
{
    const ProgramResult result = play("exitInScope");
    EXPECT_EQ(result.exitCode, 5);
    EXPECT_EQ(result.out, "Static up\n");
    EXPECT_EQ(result.err, "");
}

TEST(InReinitGuard, StartsLaterPackagesAtTheOutermostEndAndStopsThemFirst)
{
    EXPECT_EQ(outputOf("packagesAfterStart"),
              "without guard: Reinitialize without using the reinitialize guard.\n"
              "inner guard ended\n"
              "Third up\n"
              "Second up\n"
              "outer guard ended\n"
              "pass that fails: Init Package not registered: "
              "'(anonymous namespace)::Package<5>'.\n"
              "pass that fails while unwinding: std of the scope\n"
              "Second down\n"
              "Third down\n"
              "end of main\n");
}

TEST(InReinitGuard, ANestedPassRaisesAlsoBelowAnOlderException)
{
    EXPECT_EQ(outputOf("nestedPassWhileUnwinding"), "nested pass: Init Package not registered: "
                                                    "'(anonymous namespace)::Package<3>'.\n"
                                                    "Loader up\n"
                                                    "scope: std of the scope\n"
                                                    "Loader down\n"
                                                    "end of main\n");
}

TEST(InReinitGuard, BeforeStartItRunsTheFirstPassWithoutACommandLine)
{
    // The program declares options, and there is no word to look for them in.
    const ProgramResult result = play("guardAlone");
    EXPECT_TRUE(result.aborted);
    EXPECT_EQ(result.out, "guard\n");
    EXPECT_NE(result.err.find("Assertion failed: argc > 0, file "), std::string::npos);
}

TEST(InInitGuard, OverridesBeatEverything)
{
    EXPECT_EQ(outputOf("overrides", {"-x", "5"}, {{"STARTUP_SIZE", "20"}}),
              "pending 1\n"
              "pending 01\n"
              "left: '" +
                  program() +
                  "'\n"
                  "startup::verbose = nothing\n"
                  "startup::size = '2' from Zu::InContextAlias<Zu::InInitOvr, 0>\n"
                  "startup::name = 'nobody' from Zu::InContextAlias<Zu::InInitDef, 0>\n"
                  "startup::orphan = '3' from Zu::InContextAlias<Zu::InInitOvr, 0>\n"
                  "late override: Trying to override an InVariable that is already initialized: "
                  "'startup::size'.\n"
                  "late override of another: Trying to do post initialization registration of "
                  "context alias instance: 'too late' (key: 9).\n"
                  "end of main\n");
}

TEST(InInitGuard, AliasesCantBeBuiltAfterTheirKindTookItsValues)
{
    const std::string reason =
        "Trying to do post initialization registration of context alias instance: ";
    EXPECT_EQ(outputOf("aliasesAfterStart"),
              "argument: " + reason + "'late' (key: q).\n" + "environment: " + reason +
                  "'late' (key: STARTUP_LATE).\n" + "environment again: " + reason +
                  "'late' (key: STARTUP_LATE).\n" + "default: " + reason + "'late' (key: 1).\n" +
                  "clone: " + reason + "'name, from the environment' (key: STARTUP_NAME).\n" +
                  "variable: " + reason + "'usual size' (key: 10).\n" +
                  "variable without aliases: nothing raised\n" + "after shut-down: " + reason +
                  "'later' (key: 1).\n" + "end of main\n");
}

TEST(InInitGuard, AnEmptyEnvironmentVariableBeatsADefault)
{
    const std::string output = outputOf("show", {}, {{"STARTUP_NAME", ""}});
    EXPECT_NE(output.find("startup::name = '' from Zu::InContextAlias<Zu::InInitEnv, 1>\n"),
              std::string::npos)
        << output;
}

} // namespace
