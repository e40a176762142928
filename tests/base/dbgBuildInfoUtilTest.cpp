#include "base/dbgBuildInfoUtil.h"

#include "base/osSharedLib.h"

#include "support/childProcess.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <initializer_list>
#include <optional>
#include <regex>
#include <string>
#include <type_traits>
#include <vector>

namespace
{

using support::Environment;
using support::ProgramResult;
using Words = std::vector<std::string>;

static_assert(!std::is_default_constructible_v<Zu::DbgBuildInfoUtil>);

const std::string UNKNOWN = "Unknown application name / version.\n";
const std::string END = "end of main\n";

constexpr const char* NO_VALIDATE = "ZU_BUILDINFO_NO_VALIDATE";
constexpr const char* CHECK_STAMPS = "ZU_BUILDINFO_CHECK_STAMPS";

ProgramResult play(const Words& words, const Environment& changes)
{
    // Where the modules are that the program loads by their bare names.
    const std::filesystem::path dir = std::filesystem::path(support::programPath("")).parent_path();
    Environment environment{{NO_VALIDATE, std::nullopt},
                            {CHECK_STAMPS, std::nullopt},
                            {"BUILD_INFO_CLIENT", std::nullopt},
                            {"ZU_LOG_GROUPS", std::nullopt},
                            {"LD_LIBRARY_PATH", dir.string()}};
    for (const auto& [name, value] : changes) environment[name] = value;
    return support::runProgram("buildInfoProgram", words, environment);
}

// The output of the commands in a successful run, without the last line.
std::string outputOf(const Words& words, const Environment& changes = {})
{
    const ProgramResult result = play(words, changes);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_TRUE(result.out.ends_with(END)) << result.out;
    return result.out.substr(0, result.out.size() - std::min(result.out.size(), END.size()));
}

// Without the library's date, which depends on the build.
std::string withoutDate(const std::string& text)
{
    const std::regex line("(\tlibZUbase \\([^,]*), [A-Z][a-z]{2} [ 0-9]{2} [0-9]{4}\\)");
    return std::regex_replace(text, line, "$1)");
}

// A first record, and then one of another version, or one of another build.
const Words FIRST = {"add", "Sample", "1", "4", "libA", "S. 1"};
const Words VERSION = {"add", "Sample", "1", "5", "libB", "S. 1"};
const Words STAMP = {"add", "Sample", "1", "4", "libB", "S. 2"};

Words joined(std::initializer_list<Words> parts)
{
    Words words;
    for (const Words& part : parts) words.insert(words.end(), part.begin(), part.end());
    return words;
}

const std::string VERSION_LINE = "BuildInfo Version mismatch, registering with API Sample v1.4: "
                                 "library libB using v1.5\n";
const std::string VERSION_REFUSED = VERSION_LINE +
                                    "ExVersionMismatch: Version mismatch, API 'Sample' v1.4: "
                                    "library 'libB' at v1.5.\n"
                                    "living 1\n";
const std::string VERSION_KEPT = VERSION_LINE + "living 2\n";
const std::string STAMP_REFUSED =
    "BuildInfo Build stamp mismatch, registering with API Sample build S. 1: library libB using  "
    "build S. 2\n"
    "ExBuildStampMismatch: Build stamp mismatch, API 'Sample' build S. 1: library 'libB' using "
    "build S. 2.\n"
    "living 1\n";
const std::string STAMP_KEPT = "living 2\n";

TEST(DbgBuildInfoUtil, AtFirstVersionsAreValidatedAndStampsAreNotLookedAt)
{
    EXPECT_EQ(outputOf(joined({{"start"}, FIRST, VERSION, {"living"}})), VERSION_REFUSED);
    EXPECT_EQ(outputOf(joined({{"start"}, FIRST, STAMP, {"living"}})), STAMP_KEPT);
}

TEST(DbgBuildInfoUtil, TheSwitchesHoldForTheNextRegistration)
{
    EXPECT_EQ(outputOf(joined({{"start"}, FIRST, {"validate", "0"}, VERSION, {"living"}})),
              VERSION_KEPT);
    EXPECT_EQ(outputOf(joined(
                  {{"start"}, FIRST, {"validate", "0", "validate", "1"}, VERSION, {"living"}})),
              VERSION_REFUSED);
    EXPECT_EQ(outputOf(joined({{"start"}, FIRST, {"checkStamps", "1"}, STAMP, {"living"}})),
              STAMP_REFUSED);
    EXPECT_EQ(outputOf(joined(
                  {{"start"}, FIRST, {"checkStamps", "1", "checkStamps", "0"}, STAMP, {"living"}})),
              STAMP_KEPT);
    // Neither is the other.
    EXPECT_EQ(outputOf(joined({{"start"}, FIRST, {"validate", "0"}, STAMP, {"living"}})),
              STAMP_KEPT);
    EXPECT_EQ(outputOf(joined({{"start"}, FIRST, {"checkStamps", "1"}, VERSION, {"living"}})),
              VERSION_REFUSED);
}

// A call with its own checks ignores the switches.
TEST(DbgBuildInfoUtil, TheSwitchesAreThoseOfThisFrontAlone)
{
    const Words checkedVersion = {"addWith", "1", "0", "Sample", "1", "5", "libB", "S. 1"};
    const Words uncheckedStamp = {"addWith", "1", "0", "Sample", "1", "4", "libB", "S. 2"};
    EXPECT_EQ(outputOf(joined({{"start", "validate", "0"}, FIRST, checkedVersion, {"living"}})),
              VERSION_REFUSED);
    EXPECT_EQ(outputOf(joined({{"start", "checkStamps", "1"}, FIRST, uncheckedStamp, {"living"}})),
              STAMP_KEPT);
}

// The output of print when only the library is registered.
const std::string GROUP = UNKNOWN + "API Corvane 0.2 pre-alpha: \n"
                                    "\tlibZUbase (P. 187)\n";

struct SwitchRow
{
    std::optional<std::string> _text;
    bool _changes;
};

const SwitchRow SWITCHES[] = {
    {std::nullopt, false}, {"0", false}, {"1", true}, {"7", true}, {"-1", true}, {"many", false},
};

TEST(DbgBuildInfoUtil, TheEnvironmentTurnsValidationOff)
{
    for (const SwitchRow& row : SWITCHES)
        EXPECT_EQ(
            outputOf(joined({{"start"}, FIRST, VERSION, {"living"}}), {{NO_VALIDATE, row._text}}),
            row._changes ? VERSION_KEPT : VERSION_REFUSED)
            << row._text.value_or("not set");
}

TEST(DbgBuildInfoUtil, TheEnvironmentTurnsTheCheckOfStampsOn)
{
    for (const SwitchRow& row : SWITCHES)
        EXPECT_EQ(
            outputOf(joined({{"start"}, FIRST, STAMP, {"living"}}), {{CHECK_STAMPS, row._text}}),
            row._changes ? STAMP_REFUSED : STAMP_KEPT)
            << row._text.value_or("not set");
}

TEST(DbgBuildInfoUtil, AnotherMajorVersionIsKeptToo)
{
    EXPECT_EQ(outputOf({"start", "add", "Sample", "1", "4", "libA", "S. 1", "add", "Sample", "2",
                        "4", "libB", "S. 1", "living"},
                       {{NO_VALIDATE, "1"}}),
              "BuildInfo Version mismatch, registering with API Sample v1.4: library libB using "
              "v2.4\n"
              "living 2\n");
}

TEST(DbgBuildInfoUtil, AVariableOfZeroOrNoneLeavesWhatTheProgramHasSet)
{
    for (const std::optional<std::string>& text : {std::optional<std::string>(), {"0"}})
    {
        const Environment environment{{NO_VALIDATE, text}, {CHECK_STAMPS, text}};
        EXPECT_EQ(
            outputOf(joined({{"validate", "0", "start"}, FIRST, VERSION, {"living"}}), environment),
            VERSION_KEPT)
            << text.value_or("not set");
        EXPECT_EQ(outputOf(joined({{"checkStamps", "1", "start"}, FIRST, STAMP, {"living"}}),
                           environment),
                  STAMP_REFUSED)
            << text.value_or("not set");
    }
}

TEST(DbgBuildInfoUtil, TheEnvironmentCountsFromTheStartOn)
{
    const Environment environment{{NO_VALIDATE, "1"}, {CHECK_STAMPS, "1"}};
    EXPECT_EQ(outputOf(joined({FIRST, STAMP, {"living"}}), environment), STAMP_KEPT);
    // It overrides what the program has set before, and what the program sets later overrides it.
    EXPECT_EQ(outputOf(joined({{"validate", "1", "start"}, FIRST, VERSION, {"living"}}),
                       {{NO_VALIDATE, "1"}}),
              VERSION_KEPT);
    EXPECT_EQ(outputOf(joined({{"start", "validate", "1"}, FIRST, VERSION, {"living"}}),
                       {{NO_VALIDATE, "1"}}),
              VERSION_REFUSED);
}

TEST(DbgBuildInfoUtil, AClientThatFitsStartsAfterTheLibrary)
{
    EXPECT_EQ(withoutDate(outputOf({"start", "print", "plain"}, {{"BUILD_INFO_CLIENT", "fit"}})),
              "client starts\n"
              "client is up\n" +
                  UNKNOWN +
                  "API Corvane 0.2 pre-alpha: \n"
                  "\tlibZUbase (P. 187)\n"
                  "\tlibZUclient (P. 187, date)\n");
}

const std::string CLIENT_LINE = "BuildInfo Version mismatch, registering with API Corvane v0.2: "
                                "library libZUclient using v0.3\n";

// Nothing reports it before, and nothing is stopped.
TEST(DbgBuildInfoUtil, AMismatchDuringTheStartIsSeenByTheProgram)
{
    EXPECT_EQ(
        withoutDate(outputOf({"start", "print", "plain"}, {{"BUILD_INFO_CLIENT", "mismatch"}})),
        "client starts\n" + CLIENT_LINE +
            "ExVersionMismatch: Version mismatch, API 'Corvane' v0.2: library 'libZUclient' "
            "at v0.3.\n" +
            GROUP);
}

TEST(DbgBuildInfoUtil, AMismatchDuringTheStartIsKeptWhereVersionsAreNotValidated)
{
    EXPECT_EQ(
        outputOf({"start", "living"}, {{"BUILD_INFO_CLIENT", "mismatch"}, {NO_VALIDATE, "1"}}),
        "client starts\n" + CLIENT_LINE + "client is up\nliving 1\n");
}

// The library's record is held against one that came before it as any other.
TEST(DbgBuildInfoUtil, TheLibraryIsRefusedByAnEarlierRecordOfItsApi)
{
    const Words earlier = {"add", "Corvane", "0", "3", "libEarly", "P. 186"};
    const std::string line = "BuildInfo Version mismatch, registering with API Corvane v0.3: "
                             "library libZUbase using v0.2\n";
    EXPECT_EQ(outputOf(joined({earlier, {"start"}})),
              line + "ExVersionMismatch: Version mismatch, API 'Corvane' v0.3: library "
                     "'libZUbase' at v0.2.\n");
    EXPECT_EQ(
        withoutDate(outputOf(joined({earlier, {"start", "print", "plain"}}), {{NO_VALIDATE, "1"}})),
        line + UNKNOWN +
            "API Corvane 0.3 beta: \n"
            "\tlibEarly (P. 186, date)\n"
            "\tlibZUbase (P. 187)\n");
    const Words otherStamp = {"add", "Corvane", "0", "2", "libEarly", "P. 186"};
    EXPECT_EQ(outputOf(joined({otherStamp, {"start"}}), {{CHECK_STAMPS, "1"}}),
              "BuildInfo Build stamp mismatch, registering with API Corvane build P. 186: library "
              "libZUbase using  build P. 187\n"
              "ExBuildStampMismatch: Build stamp mismatch, API 'Corvane' build P. 186: library "
              "'libZUbase' using build P. 187.\n");
}

TEST(DbgBuildInfoUtil, AModuleThatFitsIsRegistered)
{
    EXPECT_EQ(withoutDate(outputOf({"start", "module", "buildInfoSame", "print", "plain"},
                                   {{CHECK_STAMPS, "1"}})),
              GROUP + "\tlibZUbuildInfoSame (P. 187, Jun 15 2012)\n");
}

TEST(DbgBuildInfoUtil, AModuleIsRegisteredAsOftenAsItIsAskedFor)
{
    EXPECT_EQ(withoutDate(outputOf({"start", "module", "buildInfoSame", "module", "buildInfoSame",
                                    "print", "plain"})),
              GROUP + "\tlibZUbuildInfoSame (P. 187, Jun 15 2012)\n"
                      "\tlibZUbuildInfoSame (P. 187, Jun 15 2012)\n");
}

// Its record is valid to the end, and is released with the packages.
TEST(DbgBuildInfoUtil, AModuleStaysLoaded)
{
    EXPECT_EQ(outputOf({"start", "module", "buildInfoSame", "stop", "print", "plain"}), UNKNOWN);
}

const std::string MODULE_LINE = "BuildInfo Version mismatch, registering with API Corvane v0.2: "
                                "library libZUbuildInfoOtherVersion using v0.3\n";

TEST(DbgBuildInfoUtil, AModuleOfAnotherVersionIsRefusedWhereVersionsAreValidated)
{
    EXPECT_EQ(withoutDate(outputOf({"start", "module", "buildInfoOtherVersion", "print", "plain"})),
              MODULE_LINE +
                  "ExVersionMismatch: Version mismatch, API 'Corvane' v0.2: library "
                  "'libZUbuildInfoOtherVersion' at v0.3.\n" +
                  GROUP);
    EXPECT_EQ(withoutDate(outputOf({"start", "module", "buildInfoOtherVersion", "print", "plain"},
                                   {{NO_VALIDATE, "1"}})),
              MODULE_LINE + GROUP + "\tlibZUbuildInfoOtherVersion (P. 187, Jun 15 2012)\n");
}

TEST(DbgBuildInfoUtil, AModuleOfAnotherBuildIsRefusedWhereStampsAreChecked)
{
    const Words words = {"start", "module", "buildInfoOtherStamp", "print", "plain"};
    EXPECT_EQ(withoutDate(outputOf(words)),
              GROUP + "\tlibZUbuildInfoOtherStamp (P. 188, Jun 15 2012)\n");
    EXPECT_EQ(withoutDate(outputOf(words, {{CHECK_STAMPS, "1"}})),
              "BuildInfo Build stamp mismatch, registering with API Corvane build P. 187: library "
              "libZUbuildInfoOtherStamp using  build P. 188\n"
              "ExBuildStampMismatch: Build stamp mismatch, API 'Corvane' build P. 187: library "
              "'libZUbuildInfoOtherStamp' using build P. 188.\n" +
                  GROUP);
}

// The long form is in the verbose print alone.
TEST(DbgBuildInfoUtil, TheVerbosePrintShowsTheLongStampsOfModules)
{
    const std::string out = outputOf({"start", "module", "buildInfoSame", "print", "verbose"});
    EXPECT_NE(out.find("\n\tlibZUbuildInfoSame (ProductRV-Corvane_187, Jun 15 2012)\n"
                       "\t\tBuilt by [Information not available] ([Information not available])\n"),
              std::string::npos)
        << out;
    EXPECT_EQ(out.find("P. 187"), std::string::npos) << out;
}

TEST(DbgBuildInfoUtil, AModuleThatIsMissingIsToldWithItsFileName)
{
    const std::string out = outputOf({"start", "module", "notThere", "living"});
    const std::string file = std::string("libZUnotThere") + Zu::OsSharedLib::getSuffix();
    const std::string start = "ExCantOpenLib: Can't open dynamic library '" + file + "': ";
    EXPECT_EQ(out.substr(0, start.size()), start);
    EXPECT_TRUE(out.ends_with("living 0\n")) << out;
}

// The library itself is no such module.
TEST(DbgBuildInfoUtil, AModuleWithoutARecordIsToldWithTheFunctionThatItLacks)
{
    const std::string file = std::string("libZUbase") + Zu::OsSharedLib::getSuffix();
    EXPECT_EQ(withoutDate(outputOf({"start", "module", "base", "print", "plain"})),
              "ExFunctionNotFound: Function 'getBuildInfo' not found in dynamic library '" + file +
                  "'.\n" + GROUP);
}

} // namespace
