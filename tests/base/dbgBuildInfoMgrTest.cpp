#include "base/dbgBuildInfoMgr.h"

#include "base/dbgBuildText.h"

#include "support/assertionText.h"
#include "support/childProcess.h"

#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <iterator>
#include <optional>
#include <regex>
#include <string>
#include <type_traits>
#include <vector>

namespace
{

using support::ProgramResult;
using Words = std::vector<std::string>;
using Zu::DbgBuildInfo;
using Zu::DbgBuildInfoMgr;
using Zu::ObjPtr;

static_assert(!std::is_default_constructible_v<DbgBuildInfoMgr>);

const std::string UNKNOWN = "Unknown application name / version.\n";
const std::string END = "end of main\n";

// The parts one after the other.
Words joined(const std::vector<Words>& parts)
{
    Words words;
    for (const Words& part : parts) std::copy(part.begin(), part.end(), std::back_inserter(words));
    return words;
}

// A command that registers a record; with the checks of the call or with those of the process.
Words add(const std::string& api, const std::string& major, const std::string& minor,
          const std::string& library, const std::string& stamp = "S. 1")
{
    return {"add", api, major, minor, library, stamp};
}

Words addWith(bool validateVersions, bool checkStamps, const Words& record)
{
    Words words = {"addWith", validateVersions ? "1" : "0", checkStamps ? "1" : "0"};
    words.insert(words.end(), record.begin() + 1, record.end());
    return words;
}

Words app(const std::string& name)
{
    return {"app", name, "1", "2", "lib", "S. 1"};
}

ProgramResult play(const std::vector<Words>& parts, const support::Environment& changes = {})
{
    support::Environment environment{
        {"ZU_BUILDINFO_NO_VALIDATE", std::nullopt},  {"ZU_BUILDINFO_CHECK_STAMPS", std::nullopt},
        {"BUILD_INFO_CLIENT", std::nullopt},         {"ZU_LOG_GROUPS", std::nullopt},
        {"ZU_LOG_DISABLE_TIMESTAMPS", std::nullopt}, {"ZU_LOG_FATAL_ERROR", std::nullopt}};
    for (const auto& [name, value] : changes) environment[name] = value;
    return support::runProgram("buildInfoProgram", joined(parts), environment);
}

// The output of the commands in a successful run, without the last line.
std::string outputOf(const std::vector<Words>& parts, const support::Environment& changes = {})
{
    const ProgramResult result = play(parts, changes);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_TRUE(result.out.ends_with(END)) << result.out;
    return result.out.substr(0, result.out.size() - std::min(result.out.size(), END.size()));
}

// The output of print, in parts: the banner and then the groups in byte order, as their order is
// unspecified.
std::vector<std::string> partsOf(const std::string& text)
{
    std::vector<std::string> parts{""};
    for (const std::string& line : support::linesOf(text))
    {
        if (line.starts_with("API ")) parts.emplace_back();
        parts.back() += line + "\n";
    }
    std::sort(parts.begin() + 1, parts.end());
    return parts;
}

std::string versionLine(const std::string& library, const std::string& version)
{
    return "BuildInfo Version mismatch, registering with API Sample v1.4: library " + library +
           " using v" + version + "\n";
}

std::string versionReason(const std::string& library, const std::string& version)
{
    return "ExVersionMismatch: Version mismatch, API 'Sample' v1.4: library '" + library +
           "' at v" + version + ".\n";
}

std::string stampLine(const std::string& library, const std::string& stamp)
{
    // The two blanks are as they should be.
    return "BuildInfo Build stamp mismatch, registering with API Sample build S. 1: library " +
           library + " using  build " + stamp + "\n";
}

std::string stampReason(const std::string& library, const std::string& stamp)
{
    return "ExBuildStampMismatch: Build stamp mismatch, API 'Sample' build S. 1: library '" +
           library + "' using build " + stamp + ".\n";
}

const Words START = {"start"};
const Words STOP = {"stop"};
const Words PLAIN = {"print", "plain"};
const Words VERBOSE = {"print", "verbose"};
const Words LIVING = {"living"};
const Words FIRST = add("Sample", "1", "4", "libA");

TEST(DbgBuildInfoMgr, TheFirstRecordOfAnApiIsHeldAgainstNothing)
{
    EXPECT_EQ(outputOf({START, addWith(true, true, FIRST), LIVING}), "living 1\n");
    // Neither is that of another API.
    EXPECT_EQ(outputOf({START, addWith(true, true, FIRST),
                        addWith(true, true, add("sample", "7", "8", "libB", "S. 9")), LIVING}),
              "living 2\n");
}

TEST(DbgBuildInfoMgr, RecordsThatFitAreKeptInTheOrderOfTheirRegistration)
{
    const std::string out = outputOf({addWith(true, true, add("Sample", "1", "4", "libC")),
                                      addWith(true, true, add("Sample", "1", "4", "libA")),
                                      addWith(true, true, add("Sample", "1", "4", "libB")),
                                      addWith(true, true, add("Sample", "1", "4", "libA")), PLAIN});
    EXPECT_EQ(out, UNKNOWN + "API Sample 1.4 beta: \n"
                             "\tlibC (S. 1, date)\n"
                             "\tlibA (S. 1, date)\n"
                             "\tlibB (S. 1, date)\n"
                             "\tlibA (S. 1, date)\n");
}

struct VersionRow
{
    const char* _what;
    const char* _major;
    const char* _minor;
    bool _fits;
};

const VersionRow VERSIONS[] = {
    {"the same", "1", "4", true},
    {"another minor version", "1", "5", false},
    {"an older minor version", "1", "3", false},
    {"another major version", "2", "4", false},
    {"both others", "2", "5", false},
    {"exchanged", "4", "1", false},
};

TEST(DbgBuildInfoMgr, AnotherVersionIsLoggedAndRefusedWhereVersionsAreValidated)
{
    for (const VersionRow& row : VERSIONS)
    {
        const std::string version = std::string(row._major) + "." + row._minor;
        const Words second = add("Sample", row._major, row._minor, "libB");
        for (const bool checkStamps : {false, true})
            EXPECT_EQ(outputOf({START, FIRST, addWith(true, checkStamps, second), LIVING}),
                      row._fits ? "living 2\n"
                                : versionLine("libB", version) + versionReason("libB", version) +
                                      "living 1\n")
                << row._what;
    }
}

TEST(DbgBuildInfoMgr, AnotherVersionIsLoggedAndKeptWhereTheyAreNot)
{
    for (const VersionRow& row : VERSIONS)
    {
        const std::string version = std::string(row._major) + "." + row._minor;
        const Words second = add("Sample", row._major, row._minor, "libB");
        EXPECT_EQ(outputOf({START, FIRST, addWith(false, false, second), LIVING}),
                  (row._fits ? "" : versionLine("libB", version)) + "living 2\n")
            << row._what;
    }
}

TEST(DbgBuildInfoMgr, AnotherStampIsLoggedAndRefusedWhereStampsAreChecked)
{
    const Words second = add("Sample", "1", "4", "libB", "S. 2");
    for (const bool validateVersions : {false, true})
    {
        EXPECT_EQ(outputOf({START, FIRST, addWith(validateVersions, true, second), LIVING}),
                  stampLine("libB", "S. 2") + stampReason("libB", "S. 2") + "living 1\n");
        EXPECT_EQ(outputOf({START, FIRST, addWith(validateVersions, false, second), LIVING}),
                  "living 2\n");
    }
    // A stamp that begins as the other one, and the empty one.
    for (const char* const stamp : {"S. 11", "S. ", ""})
        EXPECT_EQ(outputOf({START, FIRST,
                            addWith(true, true, add("Sample", "1", "4", "libB", stamp)), LIVING}),
                  stampLine("libB", stamp) + stampReason("libB", stamp) + "living 1\n");
}

TEST(DbgBuildInfoMgr, TheVersionIsLookedAtBeforeTheStamp)
{
    const Words second = add("Sample", "1", "5", "libB", "S. 2");
    EXPECT_EQ(outputOf({START, FIRST, addWith(true, true, second), LIVING}),
              versionLine("libB", "1.5") + versionReason("libB", "1.5") + "living 1\n");
    EXPECT_EQ(outputOf({START, FIRST, addWith(false, true, second), LIVING}),
              versionLine("libB", "1.5") + stampLine("libB", "S. 2") + stampReason("libB", "S. 2") +
                  "living 1\n");
}

TEST(DbgBuildInfoMgr, RecordsAreHeldAgainstTheFirstOneAlone)
{
    const Words second = add("Sample", "2", "0", "libB", "S. 2");
    EXPECT_EQ(outputOf({START, FIRST, addWith(false, false, second),
                        addWith(true, true, add("Sample", "1", "4", "libC")), LIVING,
                        addWith(true, true, add("Sample", "2", "0", "libD", "S. 2")), LIVING}),
              versionLine("libB", "2.0") + "living 3\n" + versionLine("libD", "2.0") +
                  versionReason("libD", "2.0") + "living 3\n");
}

TEST(DbgBuildInfoMgr, ARefusedRecordLeavesTheGroupsAsTheyWere)
{
    const std::string out = outputOf({START,
                                      FIRST,
                                      add("Sample", "1", "5", "libB"),
                                      {"checkStamps", "1"},
                                      add("Sample", "1", "4", "libC", "S. 2"),
                                      add("Sample", "1", "4", "libD"),
                                      PLAIN});
    const std::string before = versionLine("libB", "1.5") + versionReason("libB", "1.5") +
                               stampLine("libC", "S. 2") + stampReason("libC", "S. 2") + UNKNOWN;
    const std::vector<std::string> parts = partsOf(out);
    ASSERT_EQ(parts.size(), 3U);
    EXPECT_EQ(parts[0], before);
    EXPECT_EQ(parts[2], "API Sample 1.4 beta: \n"
                        "\tlibA (S. 1, date)\n"
                        "\tlibD (S. 1, date)\n");
}

TEST(DbgBuildInfoMgr, AMismatchGoesIntoTheQueueOfAnActiveLogger)
{
    const std::string version = versionLine("libB", "1.5");
    const std::string stamp = stampLine("libC", "S. 2");
    EXPECT_EQ(outputOf({START,
                        {"queue"},
                        FIRST,
                        addWith(true, false, add("Sample", "1", "5", "libB")),
                        addWith(true, true, add("Sample", "1", "4", "libC", "S. 2")),
                        {"entries"}}),
              versionReason("libB", "1.5") + stampReason("libC", "S. 2") +
                  "Fatal Error: " + version + "Fatal Error: " + stamp);
    EXPECT_EQ(outputOf({START,
                        {"queue"},
                        FIRST,
                        addWith(false, false, add("Sample", "1", "5", "libB")),
                        LIVING,
                        {"entries"}}),
              "living 2\nFatal Error: " + version);
    // When the logger is inactive again, so is the queue.
    EXPECT_EQ(outputOf({START,
                        {"queue"},
                        {"deactivate"},
                        FIRST,
                        addWith(false, false, add("Sample", "1", "5", "libB")),
                        {"entries"}}),
              version);
}

TEST(DbgBuildInfoMgr, TheReaderWritesAMismatchAsALine)
{
    EXPECT_EQ(outputOf({START,
                        {"queue"},
                        FIRST,
                        addWith(false, false, add("Sample", "1", "5", "libB")),
                        {"flush"}},
                       {{"ZU_LOG_FATAL_ERROR", "%"}, {"ZU_LOG_DISABLE_TIMESTAMPS", "1"}}),
              versionLine("libB", "1.5"));
}

TEST(DbgBuildInfoMgr, AMismatchThatFindsNoRoomInTheQueueIsDroppedAndRefusedAllTheSame)
{
    // The filling loses one event, and each mismatch another one.
    EXPECT_EQ(outputOf({START,
                        {"queue"},
                        {"fill"},
                        FIRST,
                        addWith(true, false, add("Sample", "1", "5", "libB")),
                        LIVING,
                        addWith(false, false, add("Sample", "1", "5", "libB")),
                        LIVING,
                        addWith(true, true, add("Sample", "1", "4", "libC", "S. 2")),
                        {"drain"}}),
              "lost 1\n" + versionReason("libB", "1.5") + "living 1\n" + "living 2\n" +
                  stampReason("libC", "S. 2") + "lost 4\n");
}

// A group can't be set to let less through than that.
TEST(DbgBuildInfoMgr, AMismatchIsLoggedWhateverTheThresholdOfTheGroup)
{
    for (const char* const groups : {"Base=Internal Error", "Base=Fatal Error", "Base=Tracing"})
        EXPECT_EQ(outputOf({START, FIRST, addWith(false, false, add("Sample", "1", "5", "libB"))},
                           {{"ZU_LOG_GROUPS", groups}}),
                  versionLine("libB", "1.5"))
            << groups;
}

TEST(DbgBuildInfoMgr, AMismatchIsFatalWhereItCantBeLogged)
{
    const Words second = add("Sample", "1", "5", "libB");
    const Words stamped = add("Sample", "1", "4", "libB", "S. 2");
    const std::vector<std::vector<Words>> stories = {
        {FIRST, addWith(true, false, second)},
        {FIRST, addWith(false, false, second)},
        {FIRST, addWith(true, true, stamped)},
        // As before the start, so after the end.
        {START, STOP, FIRST, addWith(true, false, second)},
    };
    for (std::size_t i = 0; i < stories.size(); ++i)
    {
        const ProgramResult result = play(stories[i]);
        EXPECT_TRUE(result.aborted) << i;
        EXPECT_EQ(result.out, "") << i;
        EXPECT_NE(result.err.find("Assertion failed: minor, file "), std::string::npos)
            << result.err;
    }
    // Nothing is checked unless it is requested.
    EXPECT_EQ(outputOf({FIRST, addWith(true, false, stamped), LIVING}), "living 2\n");
}

TEST(DbgBuildInfoMgr, TheBannerIsALineAndVerboseOneMore)
{
    EXPECT_EQ(outputOf({app("Painter"), {"printApp", "plain"}}), "Painter 1.2 beta (S. 1, date)\n");
    EXPECT_EQ(outputOf({app("Painter"), {"printApp", "verbose"}}),
              "Painter 1.2 beta (long S. 1, long date)\n"
              "\tBuilt by long builder (long configuration)\n");
}

TEST(DbgBuildInfoMgr, WithoutARecordOfTheApplicationTheBannerSaysSo)
{
    for (const char* const form : {"plain", "verbose"})
    {
        EXPECT_EQ(outputOf({{"printApp", form}}), UNKNOWN) << form;
        EXPECT_EQ(outputOf({{"print", form}}), UNKNOWN) << form;
        // The libraries are no application.
        EXPECT_EQ(outputOf({START, {"printApp", form}}), UNKNOWN) << form;
    }
}

TEST(DbgBuildInfoMgr, TheApplicationHasOneRecord)
{
    EXPECT_EQ(
        outputOf({{"showApp"}, app("Painter"), {"showApp"}, app("Player"), {"showApp"}, LIVING}),
        "ExAppNotRegistered: No application-level build info available.\n"
        "application Painter\n"
        "ExAppAlreadyRegistered: Application-level build info already registered.\n"
        "application Painter\n"
        "living 1\n");
}

TEST(DbgBuildInfoMgr, TheApplicationsRecordIsOfNoGroup)
{
    EXPECT_EQ(
        outputOf({app("Sample"), addWith(true, true, add("Sample", "5", "6", "libA")), PLAIN}),
        "Sample 1.2 beta (S. 1, date)\n"
        "API Sample 5.6 beta: \n"
        "\tlibA (S. 1, date)\n");
}

TEST(DbgBuildInfoMgr, GroupsArePrintedWithTheirRecords)
{
    const std::vector<Words> records = {app("Painter"), FIRST, add("Other", "-3", "0", "libB", ""),
                                        add("Sample", "1", "4", "libC", "S. 3")};
    std::vector<Words> plain = records;
    plain.push_back(PLAIN);
    EXPECT_EQ(partsOf(outputOf(plain)), (std::vector<std::string>{"Painter 1.2 beta (S. 1, date)\n",
                                                                  "API Other -3.0 beta: \n"
                                                                  "\tlibB (, date)\n",
                                                                  "API Sample 1.4 beta: \n"
                                                                  "\tlibA (S. 1, date)\n"
                                                                  "\tlibC (S. 3, date)\n"}));
    std::vector<Words> verbose = records;
    verbose.push_back(VERBOSE);
    const std::string builtBy = "Built by long builder (long configuration)\n";
    EXPECT_EQ(partsOf(outputOf(verbose)),
              (std::vector<std::string>{"Painter 1.2 beta (long S. 1, long date)\n\t" + builtBy,
                                        "API Other -3.0 beta: \n"
                                        "\tlong libB (long , long date)\n\t\t" +
                                            builtBy,
                                        "API Sample 1.4 beta: \n"
                                        "\tlong libA (long S. 1, long date)\n\t\t" +
                                            builtBy + "\tlong libC (long S. 3, long date)\n\t\t" +
                                            builtBy}));
}

// The heading is of the first record, also where a later one differs.
TEST(DbgBuildInfoMgr, AGroupIsHeadedByItsFirstRecord)
{
    const std::string out =
        outputOf({START, FIRST, addWith(false, false, add("Sample", "2", "5", "libB")), PLAIN});
    EXPECT_EQ(partsOf(out).back(), "API Sample 1.4 beta: \n"
                                   "\tlibA (S. 1, date)\n"
                                   "\tlibB (S. 1, date)\n");
}

// Far more than the table has places for at first.
TEST(DbgBuildInfoMgr, AnyNumberOfApisIsKeptApart)
{
    const int count = 500;
    std::vector<std::string> expected;
    for (int number = 1; number <= count; ++number)
        expected.push_back("API Api" + std::to_string(number) + " " + std::to_string(number) +
                           ".0 beta: \n\tlib (stamp, date)\n");
    std::sort(expected.begin(), expected.end());
    expected.insert(expected.begin(), UNKNOWN);
    EXPECT_EQ(partsOf(outputOf({{"addMany", std::to_string(count)}, PLAIN})), expected);
}

// Names that are easily taken for each other: of one sum, of one beginning, of no character.
TEST(DbgBuildInfoMgr, ApisAreToldApartByTheirWholeNames)
{
    std::vector<Words> words;
    std::vector<std::string> expected;
    int number = 0;
    for (const char* const name : {"ab", "b]", "Sample", "sample", "Sample2", "Sampl", ""})
    {
        const std::string major = std::to_string(++number);
        words.push_back(add(name, major, "0", "lib" + major));
        words.push_back(add(name, major, "0", "lib" + major + "b"));
        expected.push_back("API " + std::string(name) + " " + major + ".0 beta: \n\tlib" + major +
                           " (S. 1, date)\n\tlib" + major + "b (S. 1, date)\n");
    }
    words.push_back(PLAIN);
    std::sort(expected.begin(), expected.end());
    expected.insert(expected.begin(), UNKNOWN);
    EXPECT_EQ(partsOf(outputOf(words)), expected);
}

// Replaces texts that depend on the build by a word.
std::string libraryGroup(const std::string& text)
{
    const std::regex date("(Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) [ 123][0-9] "
                          "[0-9]{4}");
    const std::regex builder("\t\tBuilt by [^\\n]*\\\\[^\\n]* \\([^\\n]+\\)\n");
    for (const std::string& part : partsOf(text))
        if (part.starts_with("API Corvane "))
            return std::regex_replace(std::regex_replace(part, date, "DATE"), builder, "BUILDER");
    return "none";
}

TEST(DbgBuildInfoMgr, TheLibraryRegistersItsOwnRecordAtStartUp)
{
    EXPECT_EQ(outputOf({PLAIN}), UNKNOWN);
    EXPECT_EQ(libraryGroup(outputOf({START, PLAIN})), "API Corvane 0.2 pre-alpha: \n"
                                                      "\tlibZUbase (P. 187, DATE)\n");
    EXPECT_EQ(libraryGroup(outputOf({START, VERBOSE})),
              "API Corvane 0.2 pre-alpha: \n"
              "\tlibZUbase (ProductRV-Corvane_187, DATE)\n"
              "BUILDER");
    EXPECT_EQ(partsOf(outputOf({START, PLAIN})).size(), 2U);
}

TEST(DbgBuildInfoMgr, AllRecordsEndWithThePackages)
{
    const Words other = add("Other", "1", "0", "libC");
    EXPECT_EQ(outputOf({app("Painter"),
                        FIRST,
                        START,
                        add("Sample", "1", "4", "libB"),
                        other,
                        LIVING,
                        STOP,
                        LIVING,
                        PLAIN,
                        VERBOSE,
                        {"showApp"}}),
              "living 4\n"
              "living 0\n" +
                  UNKNOWN + UNKNOWN +
                  "ExAppNotRegistered: No application-level build info available.\n");
}

TEST(DbgBuildInfoMgr, RecordsAreTakenAgainAfterTheEnd)
{
    EXPECT_EQ(outputOf({app("Painter"),
                        FIRST,
                        START,
                        {"addMany", "100"},
                        STOP,
                        app("Player"),
                        add("Sample", "7", "8", "libB"),
                        LIVING,
                        PLAIN}),
              "living 2\n"
              "Player 1.2 beta (S. 1, date)\n"
              "API Sample 7.8 beta: \n"
              "\tlibB (S. 1, date)\n");
}

constexpr Zu::DbgBuildText text = {"Sample", 1, 4, "beta", "libZUsample"};

TEST(DbgBuildInfoMgrDeathTest, ANullRecordIsFatal)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(DbgBuildInfoMgr::registerInfo(ObjPtr<DbgBuildInfo>(), true, true),
                 "Assertion failed: ");
    EXPECT_DEATH(DbgBuildInfoMgr::registerAppInfo(ObjPtr<DbgBuildInfo>()), "Assertion failed: ");
}

TEST(DbgBuildInfoMgrDeathTest, AMismatchBeforeTheStartNamesTheMissingGroup)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    static constexpr Zu::DbgBuildText other = {"Sample", 1, 5, "beta", "libZUother"};
    EXPECT_DEATH(
        {
            DbgBuildInfoMgr::registerInfo(ObjPtr<DbgBuildInfo>(new Zu::DbgTextBuildInfo(text)),
                                          true, false);
            DbgBuildInfoMgr::registerInfo(ObjPtr<DbgBuildInfo>(new Zu::DbgTextBuildInfo(other)),
                                          true, false);
        },
        support::AssertionText("minor"));
}

} // namespace
