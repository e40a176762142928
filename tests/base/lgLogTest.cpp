#include "base/lgLog.h"

#include "base/exInternalError.h"
#include "base/hwCounter.h"
#include "base/lgEvent.h"
#include "base/lgMajorGroup.h"
#include "base/lgQueue.h"
#include "base/lgReader.h"
#include "base/lgRegistry.h"
#include "base/osCpuInfo.h"

#include "support/assertionText.h"
#include "support/childProcess.h"
#include "support/logTest.h"
#include "support/platform.h"
#include "support/tempDir.h"
#include "support/variableGuard.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <gtest/gtest.h>
#include <ios>
#include <iterator>
#include <optional>
#include <ostream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace
{

using support::Environment;
using support::logOutputOf;
using support::printedBy;
using support::setupText;
using support::START_BANNER;
using support::STOP_BANNER;
using support::TempDir;
using Zu::LgLog;
using Zu::LgMajorGroup;
using Zu::LgQueue;
namespace LgTypes = Zu::LgTypes;

ZU_DEFINE_LOG_GROUP(Road);

const std::string DISABLED = "Disabled";

constexpr int NUM_LEVELS = static_cast<int>(std::size(support::LOG_LEVELS));

// The banner of a file that was opened in some second of this span, if the bytes contain it;
// otherwise that of its first second.
std::string bannerIn(const std::string& bytes, std::time_t from, std::time_t to)
{
    std::array<char, 40> period{};
    std::snprintf(period.data(), period.size(), "%.9f", Zu::HwCounter::resolution());
    const auto bannerAt = [&](std::time_t time)
    {
        return START_BANNER + ("===== Started on " + std::string(std::ctime(&time))) +
               "\n===== Clock Frequency: " + period.data() + "\n";
    };
    for (std::time_t time = from; time <= to; ++time)
        if (bytes.starts_with(bannerAt(time))) return bannerAt(time);
    return bannerAt(from);
}

class LgLogTest : public support::LogFilesTest
{
protected:
    ~LgLogTest() override
    {
        theQueue = nullptr;
    }

    static std::string displayed()
    {
        return printedBy(LgLog::displaySetup);
    }

    static std::ostream* outputOf(const support::LogLevel& level)
    {
        return LgLog::getLevelOutput(level._level);
    }

    static std::uint32_t levelsOf(const char* name)
    {
        return LgMajorGroup::getInstanceForName(name).getLogLevels();
    }

    static std::string groups()
    {
        std::ostringstream out;
        LgMajorGroup::printAll(out);
        return out.str();
    }

    // The reason of the ExInternalError that an act raises.
    template <class Act> static std::string internalErrorOf(Act act)
    {
        try
        {
            act();
        }
        catch (const Zu::ExInternalError& exception)
        {
            return exception.getReason();
        }
        return "nothing raised";
    }

    // Makes `queue` the one of all threads.
    static void use(LgQueue& queue)
    {
        theQueue = &queue;
        LgLog::setQueueFunction([] { return theQueue; });
    }

    static inline LgQueue* theQueue = nullptr;
};

TEST(LgLog, NothingIsSetUpBeforeTheFirstInit)
{
    EXPECT_EQ(logOutputOf({"state"}), "active no\n"
                                      "blocking no\n"
                                      "time stamps yes\n"
                                      "start zero\n"
                                      "registry null\n"
                                      "lock null\n"
                                      "echoed -------, outputs -------\n"
                                      "end of main\n");
}

TEST(LgLog, InitSetsUpWhatIsReadFromIt)
{
    EXPECT_EQ(logOutputOf({"init", "state"}), "active no\n"
                                              "blocking no\n"
                                              "time stamps yes\n"
                                              "start set\n"
                                              "registry set\n"
                                              "lock null\n"
                                              "echoed -----e-, outputs ooooo-o\n"
                                              "end of main\n");
}

// From the start of a process to its end, with the log directory unset, empty and set.
TEST(LgLog, WithoutVariablesErrorsShareAFileAndTracingIsPrinted)
{
    Zu::OsCpuInfo::initialize();
    Zu::HwCounter::init();
    struct Row
    {
        const char* _what;
        std::optional<std::string> _variable;
    };
    const TempDir named;
    const Row cases[] = {{"unset", std::nullopt}, {"empty", ""}, {"set", named.path()}};
    for (const auto& row : cases)
    {
        SCOPED_TRACE(row._what);
        const TempDir temp;
        const TempDir& dir = row._variable == named.path() ? named : temp;
        const std::string events = dir.file("events.log");

        const std::time_t before = std::time(nullptr);
        const std::string out =
            logOutputOf({"set", "TMPDIR=" + temp.path(), "set", "TMP=" + temp.path(), "set",
                         "TEMP=" + temp.path(), "start", "display"},
                        {{"B7Q_TEST_DIR", row._variable}});
        const std::time_t after = std::time(nullptr);

        EXPECT_EQ(out, "Sample starts\n" +
                           setupText({events + " ", events + " ", events + " ", events + " ",
                                      events + " ", "stdout, ", dir.file("prof.log") + " "}) +
                           "Sample stops\n"
                           "end of main\n");
        for (const char* const name : {"events.log", "prof.log"})
        {
            const std::string bytes = support::bytesOf(dir.file(name));
            EXPECT_EQ(bytes, bannerIn(bytes, before, after) + STOP_BANNER) << name;
        }
    }
}

TEST_F(LgLogTest, TheLogDirectoryIsMadeAndJoinedWithTheLeafNames)
{
    using std::filesystem::path;
    std::filesystem::create_directory(_dir.file("there"));
    const std::string separator(1, static_cast<char>(path::preferred_separator));
    const struct
    {
        const char* _what;
        std::string _variable;
        std::string _dir;
    } cases[] = {
        {"there already", _dir.file("there"), _dir.file("there")},
        {"to be made", _dir.file("new"), _dir.file("new")},
        {"with a separator at its end", _dir.file("there") + separator, _dir.file("there")},
        {"relative", "relative", "relative"},
    };
    for (const auto& row : cases)
    {
        SCOPED_TRACE(row._what);
        set("B7Q_TEST_DIR", row._variable);
        init();
        const std::string events = (path(row._dir) / "events.log").string() + " ";
        const std::string prof = (path(row._dir) / "prof.log").string() + " ";
        EXPECT_EQ(displayed(),
                  setupText({events, events, events, events, events, "stdout, ", prof}));
        destroy();
        for (const char* const name : {"events.log", "prof.log"})
        {
            const std::string bytes = support::bytesOf((path(row._dir) / name).string());
            EXPECT_EQ(support::countOf(bytes, STOP_BANNER), 1U) << name;
        }
    }
}

struct GrammarRow
{
    const char* _value;
    bool _enabled;
    bool _echo;
    bool _append;
    // Null without a file.
    const char* _file;
};

const GrammarRow GRAMMAR[] = {
    {"%", true, true, false, nullptr},
    {"+", true, false, true, nullptr},
    {"%+", true, true, true, ""},
    {"++", true, false, true, ""},
    {"--", false, false, false, nullptr},
    {"--name", false, false, false, nullptr},
    {"--+name", false, false, false, nullptr},
    {"---", false, false, false, nullptr},
    {"%name", true, true, false, "name"},
    {"+name", true, false, true, "name"},
    {"%+name", true, true, true, "name"},
    {"++name", true, false, true, "name"},
    {"+%name", true, false, true, "%name"},
    {"%%name", true, true, false, "%name"},
    {"%--", true, true, false, "--"},
    {"+--", true, false, true, "--"},
    {"%-name", true, true, false, "-name"},
    {"%++name", true, true, true, "+name"},
    {"+++name", true, false, true, "+name"},
    {"name", true, false, false, "name"},
    {"-name", true, false, false, "-name"},
    {"-", true, false, false, "-"},
    {"-%name", true, false, false, "-%name"},
    {"na+me%--", true, false, false, "na+me%--"},
    {"two words.log", true, false, false, "two words.log"},
};

std::string descriptionOf(const GrammarRow& row)
{
    if (!row._enabled) return DISABLED;
    return std::string(row._echo ? "stdout, " : "") +
           (row._file ? std::string(row._file) + " " : "") + (row._append ? "[Append]" : "");
}

TEST_F(LgLogTest, TheVariableOfALevelSaysWhereItsTextGoes)
{
    set("ZU_LOG_DISABLE_TIMESTAMPS", "1");
    for (const support::LogLevel& level : support::LOG_LEVELS)
    {
        for (const GrammarRow& row : GRAMMAR)
        {
            SCOPED_TRACE(std::string(level._variable) + "=" + row._value);
            setAllLevels("--");
            set(level._variable, row._value);
            const bool hasName = row._file && *row._file;
            if (hasName) support::writeBytes(row._file, "old\n");

            init();
            std::array<std::string, NUM_LEVELS> descriptions;
            descriptions.fill(DISABLED);
            descriptions[static_cast<std::size_t>(level._level)] = descriptionOf(row);
            EXPECT_EQ(displayed(), setupText(descriptions));
            for (const support::LogLevel& any : support::LOG_LEVELS)
            {
                const bool isThis = any._level == level._level;
                EXPECT_EQ(LgLog::isLevelEchoed(any._level), isThis && row._echo);
                EXPECT_EQ(outputOf(any) != nullptr, isThis && row._file);
            }
            if (outputOf(level))
            {
                EXPECT_EQ(outputOf(level)->fail(), !hasName);
            }
            destroy();

            EXPECT_TRUE(std::filesystem::is_empty("logs"));
            if (!hasName) continue;
            EXPECT_EQ(support::bytesOf(row._file),
                      (row._append ? "old\n" : "") + std::string(START_BANNER) + STOP_BANNER);
            std::filesystem::remove(row._file);
        }
    }
}

TEST(LgLog, AnEmptyVariableOfALevelIsAnEmptyFileName)
{
    if (support::onWindows) GTEST_SKIP() << "the platform has no empty variables";
    const TempDir dir;
    const std::string out =
        logOutputOf({"init", "display", "destroy"}, {{"ZU_LOG_WARNING", ""},
                                                     {"ZU_LOG_INTERNAL_ERROR", "--"},
                                                     {"ZU_LOG_FATAL_ERROR", "--"},
                                                     {"ZU_LOG_RECOVERABLE_ERROR", "--"},
                                                     {"ZU_LOG_INFORMATIONAL", "--"},
                                                     {"ZU_LOG_TRACING", "--"},
                                                     {"ZU_LOG_PROFILING", "--"}});
    EXPECT_EQ(out, setupText({DISABLED, DISABLED, DISABLED, " ", DISABLED, DISABLED, DISABLED}) +
                       "end of main\n");
}

TEST_F(LgLogTest, AFileNameIsTakenFromTheCurrentDirectory)
{
    setAllLevels("--");
    set("ZU_LOG_WARNING", "mine.log");
    // The variable of level Error has another name.
    const support::VariableGuard guard("ZU_LOG_ERROR");
    guard.set("other.log");
    set("ZU_LOG_INFORMATIONAL", _dir.file("absolute.log"));
    init();
    destroy();
    EXPECT_TRUE(std::filesystem::exists(_dir.file("mine.log")));
    EXPECT_TRUE(std::filesystem::exists(_dir.file("absolute.log")));
    EXPECT_TRUE(std::filesystem::is_empty(_dir.file("logs")));
    EXPECT_FALSE(std::filesystem::exists(_dir.file("other.log")));
}

TEST_F(LgLogTest, LevelsWithTheSameFileNameShareItsStream)
{
    setAllLevels("--");
    set("ZU_LOG_INFORMATIONAL", "mine.log");
    set("ZU_LOG_WARNING", "mine.log");
    set("ZU_LOG_TRACING", "%mine.log");
    set("ZU_LOG_RECOVERABLE_ERROR", "other.log");
    const std::time_t before = std::time(nullptr);
    init();
    const std::time_t after = std::time(nullptr);
    std::ostream* const shared = LgLog::getLevelOutput(LgTypes::Warning);
    ASSERT_TRUE(shared);
    EXPECT_EQ(LgLog::getLevelOutput(LgTypes::Informational), shared);
    EXPECT_EQ(LgLog::getLevelOutput(LgTypes::Tracing), shared);
    EXPECT_NE(LgLog::getLevelOutput(LgTypes::Error), shared);
    EXPECT_TRUE(LgLog::isLevelEchoed(LgTypes::Tracing));
    EXPECT_FALSE(LgLog::isLevelEchoed(LgTypes::Warning));
    destroy();
    const std::string banner = bannerIn(support::bytesOf("mine.log"), before, after);
    EXPECT_EQ(support::bytesOf("mine.log"), banner + STOP_BANNER);
    const std::string otherBanner = bannerIn(support::bytesOf("other.log"), before, after);
    EXPECT_EQ(support::bytesOf("other.log"), otherBanner + STOP_BANNER);
}

TEST_F(LgLogTest, FileNamesAreComparedAsTexts)
{
    setAllLevels("--");
    set("ZU_LOG_WARNING", "+mine.log");
    set("ZU_LOG_INFORMATIONAL", "+./mine.log");
    init();
    EXPECT_NE(LgLog::getLevelOutput(LgTypes::Warning),
              LgLog::getLevelOutput(LgTypes::Informational));
    destroy();
    EXPECT_EQ(support::countOf(support::bytesOf("mine.log"), START_BANNER), 2U);
    EXPECT_EQ(support::countOf(support::bytesOf("mine.log"), STOP_BANNER), 2U);
}

TEST_F(LgLogTest, TheFirstLevelOfAFileDecidesWhetherItIsAppendedTo)
{
    const struct
    {
        const char* _first;
        const char* _firstValue;
        const char* _second;
        const char* _secondValue;
        bool _isKept;
        // How many of the two levels show that they append.
        std::size_t _marks;
    } cases[] = {
        {"ZU_LOG_FATAL_ERROR", "+other.log", "ZU_LOG_RECOVERABLE_ERROR", "other.log", true, 1},
        {"ZU_LOG_FATAL_ERROR", "other.log", "ZU_LOG_RECOVERABLE_ERROR", "+other.log", false, 1},
        {"ZU_LOG_INTERNAL_ERROR", "%+other.log", "ZU_LOG_PROFILING", "other.log", true, 1},
        {"ZU_LOG_INTERNAL_ERROR", "%other.log", "ZU_LOG_PROFILING", "+other.log", false, 1},
        {"ZU_LOG_TRACING", "+other.log", "ZU_LOG_PROFILING", "other.log", true, 1},
        {"ZU_LOG_TRACING", "other.log", "ZU_LOG_PROFILING", "+other.log", false, 1},
        {"ZU_LOG_WARNING", "++other.log", "ZU_LOG_INFORMATIONAL", "+other.log", true, 2},
    };
    set("ZU_LOG_DISABLE_TIMESTAMPS", "1");
    for (const auto& row : cases)
    {
        setAllLevels("--");
        set(row._first, row._firstValue);
        set(row._second, row._secondValue);
        support::writeBytes("other.log", "old\n");
        init();
        EXPECT_EQ(support::countOf(displayed(), "[Append]"), row._marks)
            << row._first << row._firstValue;
        destroy();
        EXPECT_EQ(support::bytesOf("other.log"),
                  (row._isKept ? "old\n" : "") + std::string(START_BANNER) + STOP_BANNER)
            << row._first << row._firstValue;
    }
}

TEST_F(LgLogTest, TheBannerBearsTheTimeAndTheCountersPeriod)
{
    setAllLevels("--");
    set("ZU_LOG_WARNING", "mine.log");
    const std::time_t before = std::time(nullptr);
    init();
    const std::time_t after = std::time(nullptr);
    const std::ostream& output = *LgLog::getLevelOutput(LgTypes::Warning);
    EXPECT_EQ(output.precision(), 6);
    EXPECT_EQ(output.flags() & std::ios_base::floatfield, std::ios_base::fixed);
    destroy();
    const std::string bytes = support::bytesOf("mine.log");
    EXPECT_EQ(bytes, bannerIn(bytes, before, after) + STOP_BANNER);
    if (!support::onWindows)
    {
        // The platform's counter counts nanoseconds.
        EXPECT_NE(bytes.find("\n\n===== Clock Frequency: 0.000000001\n"), std::string::npos);
    }
}

TEST_F(LgLogTest, WithoutTimeStampsTheBannerIsItsFirstLine)
{
    setAllLevels("--");
    set("ZU_LOG_WARNING", "mine.log");
    for (const bool byVariable : {true, false})
    {
        set("ZU_LOG_DISABLE_TIMESTAMPS", byVariable ? "yes" : "");
        if (!byVariable) LgLog::disableTimeStamps();
        init();
        EXPECT_EQ(LgLog::getLevelOutput(LgTypes::Warning)->precision(), 6);
        destroy();
        EXPECT_EQ(support::bytesOf("mine.log"), std::string(START_BANNER) + STOP_BANNER);
        LgLog::enableTimeStamps();
    }
}

TEST_F(LgLogTest, AnyValueDisablesTimeStampsAndNoneLeavesThemAsTheyAre)
{
    for (const char* const value : {"1", "0", "no", " "})
    {
        LgLog::enableTimeStamps();
        set("ZU_LOG_DISABLE_TIMESTAMPS", value);
        init();
        EXPECT_FALSE(LgLog::isTimeStampsEnabled()) << value;
        destroy();
    }
    set("ZU_LOG_DISABLE_TIMESTAMPS", "");
    init();
    EXPECT_FALSE(LgLog::isTimeStampsEnabled());
    destroy();
    LgLog::enableTimeStamps();
    init();
    EXPECT_TRUE(LgLog::isTimeStampsEnabled());
}

TEST_F(LgLogTest, AnyValueSetsBlockingTraceAndNoneClearsIt)
{
    for (const char* const value : {"1", "0", "no", " "})
    {
        set("ZU_BLOCKING_TRACE", value);
        init();
        EXPECT_TRUE(LgLog::getBlockingTrace()) << value;
        destroy();
    }
    set("ZU_BLOCKING_TRACE", "");
    init();
    EXPECT_FALSE(LgLog::getBlockingTrace());
}

TEST(LgLog, EmptySwitchesAreSetToo)
{
    if (support::onWindows) GTEST_SKIP() << "the platform has no empty variables";
    EXPECT_EQ(logOutputOf({"init", "state", "groups"}, {{"ZU_BLOCKING_TRACE", ""},
                                                        {"ZU_LOG_DISABLE_TIMESTAMPS", ""},
                                                        {"ZU_LOG_GROUPS", ""},
                                                        {"ZU_LOG_DEFAULT_LEVEL", ""}}),
              "active no\n"
              "blocking yes\n"
              "time stamps no\n"
              "start set\n"
              "registry set\n"
              "lock null\n"
              "echoed -----e-, outputs ooooo-o\n"
              "Major Groups:\n"
              "end of main\n");
}

TEST_F(LgLogTest, TheSwitchesCanBeSetAtAnyTime)
{
    LgLog::setLoggerActivation(true);
    EXPECT_TRUE(LgLog::isLoggerActive());
    LgLog::setLoggerActivation(false);
    EXPECT_FALSE(LgLog::isLoggerActive());
    LgLog::setBlockingTrace(true);
    EXPECT_TRUE(LgLog::getBlockingTrace());
    LgLog::setBlockingTrace(false);
    EXPECT_FALSE(LgLog::getBlockingTrace());
    LgLog::disableTimeStamps();
    EXPECT_FALSE(LgLog::isTimeStampsEnabled());
    LgLog::enableTimeStamps();
    EXPECT_TRUE(LgLog::isTimeStampsEnabled());
}

TEST_F(LgLogTest, TheOriginOfTimesIsTheMomentOfInit)
{
    const std::uint64_t before = Zu::HwCounter::timeStamp();
    init();
    const std::uint64_t after = Zu::HwCounter::timeStamp();
    const std::uint64_t start = LgLog::getStart();
    EXPECT_GE(start, before);
    EXPECT_LE(start, after);
    destroy();
    EXPECT_EQ(LgLog::getStart(), start);
    init();
    EXPECT_GE(LgLog::getStart(), after);
}

TEST_F(LgLogTest, TheDefaultThresholdIsAnExactLevelText)
{
    const struct
    {
        const char* _value;
        LgTypes::Level _threshold;
        std::uint32_t _mask;
    } cases[] = {
        {"Internal Error", LgTypes::FatalError, 0xC0},
        {"Fatal Error", LgTypes::FatalError, 0xC0},
        {"Error", LgTypes::Error, 0xE0},
        {"Warning", LgTypes::Warning, 0xF0},
        {"Informational", LgTypes::Informational, 0xF8},
        {"Tracing", LgTypes::Tracing, 0xFC},
        {"Profiling", LgTypes::Profiling, 0x02},
        {"", LgTypes::Warning, 0xF0},
        {"tracing", LgTypes::Warning, 0xF0},
        {"Tracing ", LgTypes::Warning, 0xF0},
        {" Tracing", LgTypes::Warning, 0xF0},
        {"Trac", LgTypes::Warning, 0xF0},
        {"5", LgTypes::Warning, 0xF0},
        {"Bogus", LgTypes::Warning, 0xF0},
    };
    for (const auto& row : cases)
    {
        LgMajorGroup::setDefaultThreshold(LgTypes::Warning);
        set("ZU_LOG_DEFAULT_LEVEL", row._value);
        EXPECT_EQ(printedBy([this] { init(); }), "") << row._value;
        EXPECT_EQ(LgMajorGroup::getDefaultThreshold(), row._threshold) << row._value;
        EXPECT_EQ(levelsOf("New"), row._mask) << row._value;
        destroy();
    }
    LgMajorGroup::setDefaultThreshold(LgTypes::Error);
    set("ZU_LOG_DEFAULT_LEVEL", "");
    init();
    EXPECT_EQ(LgMajorGroup::getDefaultThreshold(), LgTypes::Error);
}

TEST_F(LgLogTest, GroupsOfTheEnvironmentStartFromItsDefaultThreshold)
{
    set("ZU_LOG_DEFAULT_LEVEL", "Error");
    set("ZU_LOG_GROUPS", "A=Profiling,B=Tracing,C=Fatal Error");
    EXPECT_EQ(printedBy([this] { init(); }), "");
    EXPECT_EQ(groups(), "Major Groups:\n"
                        "                       A Tracing, Profiling\n"
                        "                       B Tracing\n"
                        "                       C Tracing\n");
    EXPECT_EQ(levelsOf("A"), 0xE2U);
    EXPECT_EQ(levelsOf("B"), 0xFCU);
    EXPECT_EQ(levelsOf("C"), 0xC0U);
    EXPECT_EQ(levelsOf("D"), 0xE0U);
}

TEST_F(LgLogTest, AMalformedGroupIsToldAndSkipped)
{
    set("ZU_LOG_GROUPS", "A=Bogus,B=Tracing");
    EXPECT_EQ(printedBy([this] { init(); }), "Invalid level string specified: Bogus\n");
    EXPECT_EQ(groups(), "Major Groups:\n                       B Tracing\n");
}

TEST_F(LgLogTest, WithoutGroupsInTheEnvironmentThereAreNone)
{
    init();
    EXPECT_EQ(groups(), "Major Groups:\n");
}

TEST_F(LgLogTest, WithoutALogDirectoryOnlyFilesOfTheirOwnNameAreWritten)
{
    support::writeBytes("plain", "plain\n");
    const struct
    {
        const char* _what;
        std::string _variable;
    } cases[] = {
        {"a missing parent", (std::filesystem::path(_dir.file("missing")) / "logs").string()},
        {"below a plain file", (std::filesystem::path(_dir.file("plain")) / "logs").string()},
    };
    for (const auto& row : cases)
    {
        SCOPED_TRACE(row._what);
        // Nothing is left of the round before.
        setAllLevels("--");
        init();
        destroy();
        setAllLevels("");
        set("B7Q_TEST_DIR", row._variable);
        EXPECT_EQ(printedBy([this] { init(); }), "");
        EXPECT_EQ(displayed(), setupText({DISABLED, "", "", "", "", "stdout, ", DISABLED}));
        for (const support::LogLevel& level : support::LOG_LEVELS)
        {
            EXPECT_EQ(outputOf(level), nullptr) << level._name;
            EXPECT_EQ(LgLog::isLevelEchoed(level._level), level._level == LgTypes::Tracing);
        }
        support::Entered<LgQueue> queue;
        LgLog::disableTimeStamps();
        support::addEvent(queue, LgTypes::Error, "nowhere");
        support::addEvent(queue, LgTypes::InternalError, "nowhere");
        support::addEvent(queue, LgTypes::Profiling, "nowhere");
        support::addEvent(queue, LgTypes::Tracing, "printed");
        const std::uint64_t unwritten = Zu::LgReader::getUnwrittenCount();
        EXPECT_EQ(printedBy([] { Zu::LgReader().flushAll(); }), "printed\n");
        EXPECT_TRUE(queue.isEmpty());
        // All but that of tracing.
        EXPECT_EQ(Zu::LgReader::getUnwrittenCount(), unwritten + 3);
        destroy();

        set("ZU_LOG_PROFILING", "prof");
        set("ZU_LOG_INTERNAL_ERROR", "%");
        set("ZU_LOG_RECOVERABLE_ERROR", "--");
        init();
        EXPECT_EQ(displayed(), setupText({"stdout, ", "", DISABLED, "", "", "stdout, ", "prof "}));
        support::Entered<LgQueue> later;
        support::addEvent(later, LgTypes::InternalError, "printed");
        support::addEvent(later, LgTypes::Warning, "nowhere");
        support::addEvent(later, LgTypes::Error, "not wanted");
        EXPECT_EQ(printedBy([] { Zu::LgReader().flushAll(); }), "printed\n");
        EXPECT_EQ(Zu::LgReader::getUnwrittenCount(), unwritten + 4);
        destroy();
        EXPECT_EQ(support::bytesOf("prof"), std::string(START_BANNER) + STOP_BANNER);
        std::filesystem::remove("prof");
        LgLog::enableTimeStamps();
    }
    EXPECT_FALSE(std::filesystem::exists("missing"));
    EXPECT_EQ(support::bytesOf("plain"), "plain\n");
}

TEST_F(LgLogTest, APlainFileInPlaceOfTheLogDirectoryIsAnError)
{
    support::writeBytes("plain", "plain\n");
    set("B7Q_TEST_DIR", _dir.file("plain"));
    EXPECT_EQ(internalErrorOf([this] { init(); }),
              "A regular file with the same path name exists.");
    EXPECT_EQ(support::bytesOf("plain"), "plain\n");
    set("B7Q_TEST_DIR", _dir.file("logs"));
    init();
    EXPECT_TRUE(LgLog::getLevelOutput(LgTypes::Warning));
}

TEST(LgLog, APlainFileInPlaceOfTheLogDirectoryFailsTheStartOfTheProcess)
{
    const TempDir dir;
    support::writeBytes(dir.file("plain"), "plain\n");
    EXPECT_EQ(logOutputOf({"start"}, {{"B7Q_TEST_DIR", dir.file("plain")}}),
              "start: A regular file with the same path name exists.\n"
              "end of main\n");
}

TEST_F(LgLogTest, AFileThatCannotBeOpenedLosesItsTextAndKeepsTheEcho)
{
    std::filesystem::create_directory("place");
    const std::string longName(5000, 'x');
    const struct
    {
        std::string _value;
        std::string _description;
        bool _echo;
    } cases[] = {
        {"place", "place ", false},
        {"%place", "stdout, place ", true},
        {"%+place", "stdout, place [Append]", true},
        {"%+", "stdout,  [Append]", true},
        {"++", " [Append]", false},
        {"%missing/name", "stdout, missing/name ", true},
        {"%" + longName, "stdout, " + longName + " ", true},
    };
    for (const auto& row : cases)
    {
        SCOPED_TRACE(row._value.substr(0, 20));
        setAllLevels("--");
        set("ZU_LOG_WARNING", row._value);
        set("ZU_LOG_INFORMATIONAL", row._value);
        EXPECT_EQ(printedBy([this] { init(); }), "");
        EXPECT_EQ(displayed(), setupText({DISABLED, DISABLED, DISABLED, row._description,
                                          row._description, DISABLED, DISABLED}));
        std::ostream* const output = LgLog::getLevelOutput(LgTypes::Warning);
        ASSERT_TRUE(output);
        EXPECT_TRUE(output->fail());
        EXPECT_EQ(LgLog::getLevelOutput(LgTypes::Informational), output);

        support::Entered<LgQueue> queue;
        LgLog::disableTimeStamps();
        for (const char* const text : {"one", "two"})
            support::addEvent(queue, LgTypes::Warning, text);
        EXPECT_EQ(printedBy([] { Zu::LgReader().flushAll(); }), row._echo ? "one\ntwo\n" : "");
        EXPECT_TRUE(queue.isEmpty());
        LgLog::enableTimeStamps();
        EXPECT_EQ(printedBy([this] { destroy(); }), "");
        EXPECT_EQ(LgLog::getLevelOutput(LgTypes::Warning), nullptr);
    }
    EXPECT_TRUE(std::filesystem::is_empty("place"));
}

TEST_F(LgLogTest, AFullDiskLosesTextAndKeepsTheEcho)
{
    if (support::onWindows) GTEST_SKIP() << "the platform has no device that is always full";
    setAllLevels("--");
    set("ZU_LOG_WARNING", "%/dev/full");
    init();
    LgLog::disableTimeStamps();
    support::Entered<LgQueue> queue;
    std::string expected;
    for (int i = 0; i < 100; ++i)
    {
        support::addEvent(queue, LgTypes::Warning, std::string(100, 'x'));
        expected += std::string(100, 'x') + "\n";
    }
    EXPECT_EQ(printedBy([] { Zu::LgReader().flushAll(); }), expected);
    EXPECT_TRUE(queue.isEmpty());
    EXPECT_EQ(printedBy([this] { destroy(); }), "");
}

TEST_F(LgLogTest, DestroyEndsEachFileOnce)
{
    setAllLevels("--");
    set("ZU_LOG_INTERNAL_ERROR", "mine.log");
    set("ZU_LOG_WARNING", "mine.log");
    set("ZU_LOG_PROFILING", "mine.log");
    set("ZU_LOG_TRACING", "%other.log");
    set("ZU_LOG_FATAL_ERROR", "%");
    set("ZU_LOG_DISABLE_TIMESTAMPS", "1");
    init();
    EXPECT_EQ(support::bytesOf("mine.log"), START_BANNER);
    destroy();
    for (const char* const file : {"mine.log", "other.log"})
        EXPECT_EQ(support::bytesOf(file), std::string(START_BANNER) + STOP_BANNER) << file;
}

TEST_F(LgLogTest, DestroyLeavesAllButOutputsAndGroups)
{
    init();
    Zu::LgRegistry* const registry = LgLog::getRegistry();
    LgLog::setLoggerActivation(true);
    LgLog::setBlockingTrace(true);
    LgMajorGroup::getInstanceForName("Some");
    destroy();
    EXPECT_EQ(LgLog::getRegistry(), registry);
    EXPECT_TRUE(LgLog::isLoggerActive());
    EXPECT_TRUE(LgLog::getBlockingTrace());
    for (const support::LogLevel& level : support::LOG_LEVELS)
    {
        EXPECT_EQ(outputOf(level), nullptr);
        EXPECT_EQ(LgLog::isLevelEchoed(level._level), level._level == LgTypes::Tracing);
    }
    EXPECT_EQ(internalErrorOf([] { LgMajorGroup::getInstanceForName("Some"); }),
              "Assertion 'names' failed.");
}

TEST_F(LgLogTest, DestroyLeavesWhatWaitsInQueues)
{
    setAllLevels("mine.log");
    init();
    support::Entered<LgQueue> queue;
    support::addEvent(queue, LgTypes::Warning, "too late");
    destroy();
    EXPECT_FALSE(queue.isEmpty());
    EXPECT_TRUE(support::bytesOf("mine.log").ends_with(STOP_BANNER));
    EXPECT_EQ(support::bytesOf("mine.log").find("too late"), std::string::npos);
}

// A variable that is unset at a second init() resets its level, except for what three levels keep.
TEST_F(LgLogTest, ASecondInitKeepsSomeFlagsOfThreeLevels)
{
    const std::string events = logFile("events.log") + " ";
    const std::string prof = logFile("prof.log") + " ";
    const struct
    {
        const char* _variable;
        const char* _firstValue;
        std::string _description;
    } cases[] = {
        {"ZU_LOG_INTERNAL_ERROR", "%+a.log", "stdout, " + events + "[Append]"},
        {"ZU_LOG_INTERNAL_ERROR", "%", "stdout, " + events},
        {"ZU_LOG_INTERNAL_ERROR", "+", events + "[Append]"},
        {"ZU_LOG_INTERNAL_ERROR", "--", events},
        {"ZU_LOG_FATAL_ERROR", "%+a.log", events},
        {"ZU_LOG_FATAL_ERROR", "--", events},
        {"ZU_LOG_RECOVERABLE_ERROR", "%+a.log", events},
        {"ZU_LOG_RECOVERABLE_ERROR", "--", events},
        {"ZU_LOG_WARNING", "%+a.log", events},
        {"ZU_LOG_WARNING", "--", events},
        {"ZU_LOG_INFORMATIONAL", "%+a.log", events},
        {"ZU_LOG_INFORMATIONAL", "--", events},
        {"ZU_LOG_PROFILING", "%+a.log", "stdout, " + prof + "[Append]"},
        {"ZU_LOG_PROFILING", "%", "stdout, " + prof},
        {"ZU_LOG_PROFILING", "+", prof + "[Append]"},
        {"ZU_LOG_PROFILING", "--", prof},
        {"ZU_LOG_TRACING", "+t.log", "stdout, t.log [Append]"},
        {"ZU_LOG_TRACING", "t.log", "stdout, t.log "},
        {"ZU_LOG_TRACING", "+", "stdout, [Append]"},
        {"ZU_LOG_TRACING", "%", "stdout, "},
        {"ZU_LOG_TRACING", "--", "stdout, "},
    };
    for (const auto& row : cases)
    {
        SCOPED_TRACE(std::string(row._variable) + "=" + row._firstValue);
        setAllLevels("--");
        init();
        destroy();
        setAllLevels("");
        set(row._variable, row._firstValue);
        init();
        destroy();
        set(row._variable, "");
        init();
        std::array<std::string, NUM_LEVELS> descriptions = {events, events,     events, events,
                                                            events, "stdout, ", prof};
        for (const support::LogLevel& level : support::LOG_LEVELS)
            if (std::string(level._variable) == row._variable)
                descriptions[static_cast<std::size_t>(level._level)] = row._description;
        EXPECT_EQ(displayed(), setupText(descriptions));
        destroy();
    }
}

TEST_F(LgLogTest, ASecondInitOpensTheFileThatTracingKept)
{
    set("ZU_LOG_DISABLE_TIMESTAMPS", "1");
    const std::string run = std::string(START_BANNER) + STOP_BANNER;
    set("ZU_LOG_TRACING", "+t.log");
    init();
    destroy();
    EXPECT_EQ(support::bytesOf("t.log"), run);
    set("ZU_LOG_TRACING", "");
    init();
    EXPECT_TRUE(LgLog::getLevelOutput(LgTypes::Tracing));
    destroy();
    EXPECT_EQ(support::bytesOf("t.log"), run + run);
    // A stream that belonged to an earlier level is gone, and its name with it.
    set("ZU_LOG_WARNING", "t.log");
    set("ZU_LOG_TRACING", "t.log");
    init();
    destroy();
    set("ZU_LOG_WARNING", "");
    set("ZU_LOG_TRACING", "");
    init();
    EXPECT_FALSE(LgLog::getLevelOutput(LgTypes::Tracing));
    destroy();
    EXPECT_EQ(support::bytesOf("t.log"), run);
}

TEST_F(LgLogTest, ASecondInitBeginsItsFilesAnew)
{
    init();
    destroy();
    const std::time_t before = std::time(nullptr);
    init();
    destroy();
    const std::time_t after = std::time(nullptr);
    for (const char* const name : {"events.log", "prof.log"})
    {
        const std::string bytes = support::bytesOf(logFile(name));
        EXPECT_EQ(bytes, bannerIn(bytes, before, after) + STOP_BANNER) << name;
    }
}

class CountedRegistry : public Zu::LgSimpleRegistry
{
public:
    explicit CountedRegistry(int& living) : _living(living)
    {
        ++_living;
    }
    CountedRegistry(const CountedRegistry&) = delete;
    CountedRegistry& operator=(const CountedRegistry&) = delete;
    ~CountedRegistry() override
    {
        --_living;
    }

private:
    int& _living;
};

TEST_F(LgLogTest, InitReplacesTheRegistryByAnEmptyOne)
{
    init();
    EXPECT_TRUE(dynamic_cast<Zu::LgSimpleRegistry*>(LgLog::getRegistry()));
    support::Entered<LgQueue> queue;
    int living = 0;
    LgLog::setRegistry(Zu::ObjPtr<Zu::LgRegistry>(new CountedRegistry(living)));
    destroy();
    EXPECT_EQ(living, 1);
    EXPECT_EQ(LgLog::getRegistry()->getQueueList().size(), 1U);
    init();
    EXPECT_EQ(living, 0);
    EXPECT_TRUE(LgLog::getRegistry()->getQueueList().empty());
    EXPECT_TRUE(dynamic_cast<Zu::LgSimpleRegistry*>(LgLog::getRegistry()));
}

TEST_F(LgLogTest, ANewRegistryTakesTheQueuesInTheirOrder)
{
    init();
    support::Entered<LgQueue> queues[3];
    const Zu::List<LgQueue*> expected = {&queues[0], &queues[1], &queues[2]};
    Zu::LgRegistry* const former = LgLog::getRegistry();
    Zu::LgRegistry* const added = new Zu::LgSimpleRegistry;
    {
        const Zu::ObjPtr<Zu::LgRegistry> returned =
            LgLog::setRegistry(Zu::ObjPtr<Zu::LgRegistry>(added));
        EXPECT_EQ(returned.get(), former);
        EXPECT_TRUE(former->getQueueList().empty());
    }
    EXPECT_EQ(LgLog::getRegistry(), added);
    EXPECT_EQ(added->getQueueList(), expected);
    EXPECT_TRUE(LgLog::setRegistry(Zu::ObjPtr<Zu::LgRegistry>()).isNull());
    EXPECT_EQ(LgLog::getRegistry(), added);
    EXPECT_EQ(added->getQueueList(), expected);
}

TEST_F(LgLogTest, TheDefaultQueueIsOneForAllThreadsThatNoReaderSees)
{
    init();
    LgQueue& queue = LgLog::getQueue();
    EXPECT_EQ(&LgLog::getQueue(), &queue);
    LgQueue* ofThread = nullptr;
    std::thread([&] { ofThread = &LgLog::getQueue(); }).join();
    EXPECT_EQ(ofThread, &queue);
    EXPECT_EQ(queue.getThreadId(), 0U);
    EXPECT_TRUE(LgLog::getRegistry()->getQueueList().empty());

    int accepted = 0;
    const std::uint64_t lostBefore = queue.getLostCount();
    for (int i = 0; i < 1100; ++i)
    {
        if (!queue.reserveEntry(LgTypes::Warning)) continue;
        queue.getStream() << "x" << Zu::ends;
        queue.addEntry();
        ++accepted;
    }
    EXPECT_EQ(accepted, 1022);
    EXPECT_EQ(queue.getLostCount() - lostBefore, 78U);
    EXPECT_FALSE(Zu::LgReader().eventsPending());
    EXPECT_FALSE(Zu::LgReader().flushEarliest());
    support::drain(queue);

    destroy();
    EXPECT_EQ(&LgLog::getQueue(), &queue);
}

TEST_F(LgLogTest, TheQueueFunctionIsAskedEachTime)
{
    init();
    static LgQueue* queues[2];
    LgQueue one(1);
    LgQueue two(2);
    queues[0] = &one;
    queues[1] = &two;
    static std::size_t calls;
    calls = 0;
    LgQueue& byDefault = LgLog::getQueue();
    LgLog::setQueueFunction([] { return queues[calls++]; });
    EXPECT_EQ(&LgLog::getQueue(), &one);
    EXPECT_EQ(&LgLog::getQueue(), &two);
    EXPECT_EQ(calls, 2U);
    LgLog::setQueueFunction(nullptr);
    EXPECT_EQ(&LgLog::getQueue(), &byDefault);
    EXPECT_EQ(calls, 2U);
}

TEST(LgLog, OnlyProfilingIsNotPrintedWhileTheLoggerIsInactive)
{
    for (const support::LogLevel& level : support::LOG_LEVELS)
        EXPECT_EQ(LgLog::isInactiveOutputAllowed(level._level), level._level != LgTypes::Profiling)
            << level._name;
}

// The whole road of an event from its statement, with the group of the tests.
class LgLogRoadTest : public LgLogTest
{
protected:
    LgLogRoadTest()
    {
        set("ZU_LOG_GROUPS", "Roads=Informational,Roads=Profiling");
        setAllLevels("+mine.log");
        init();
        LgLog::disableTimeStamps();
        ZU_START_LOG_GROUP("Roads", Road);
        use(_queue);
        LgLog::getRegistry()->registerQueue(&_queue);
        _before = support::bytesOf("mine.log");
    }

    ~LgLogRoadTest() override
    {
        ZU_STOP_LOG_GROUP(Road);
        support::drain(_queue);
        LgLog::getRegistry()->deregisterQueue(&_queue);
        LgLog::setQueueFunction(nullptr);
    }

    std::string written() const
    {
        return support::bytesOf("mine.log").substr(_before.size());
    }

    LgQueue _queue;

private:
    std::string _before;
};

TEST_F(LgLogRoadTest, AnInactiveLoggerPrintsAllButProfiling)
{
    EXPECT_FALSE(LgLog::isLoggerActive());
    for (const support::LogLevel& level : support::LOG_LEVELS)
    {
        const bool isPrinted = level._level <= LgTypes::Informational;
        const std::string out =
            printedBy([&] { ZU_LOG(Road, level._level, "text " << 7 << ", " << true); });
        EXPECT_EQ(out, isPrinted ? "Road text 7, true\n" : "") << level._name;
    }
    EXPECT_TRUE(_queue.isEmpty());
    EXPECT_EQ(written(), "");
}

TEST_F(LgLogRoadTest, AnActiveLoggerQueuesForTheReader)
{
    LgLog::setLoggerActivation(true);
    for (const support::LogLevel& level : support::LOG_LEVELS)
    {
        const std::string out = printedBy([&] { ZU_LOG(Road, level._level, "text " << 7); });
        EXPECT_EQ(out, "");
        const bool isQueued = level._level != LgTypes::Tracing;
        ASSERT_NE(_queue.isEmpty(), isQueued) << level._name;
        if (!isQueued) continue;
        EXPECT_EQ(_queue.readEntry().getLevel(), level._level);
        EXPECT_TRUE(Zu::LgReader().flushEarliest());
    }
    std::string expected;
    for (int i = 0; i < NUM_LEVELS - 1; ++i) expected += "Road text 7\n";
    EXPECT_EQ(written(), expected);
}

TEST_F(LgLogRoadTest, NoTextIsMadeForALevelThatIsOff)
{
    int made = 0;
    const auto text = [&]
    {
        ++made;
        return "text";
    };
    for (const bool isActive : {true, false})
    {
        LgLog::setLoggerActivation(isActive);
        EXPECT_EQ(printedBy([&] { ZU_LOG_TRACING(Road, text()); }), "");
    }
    EXPECT_EQ(made, 0);
    EXPECT_EQ(_queue.getLostCount(), 0U);
    LgMajorGroup::getInstanceForName("Roads").setLogThreshold(LgTypes::Tracing, false);
    EXPECT_EQ(printedBy([&] { ZU_LOG_TRACING(Road, text()); }), "Road text\n");
    EXPECT_EQ(made, 1);
}

TEST_F(LgLogRoadTest, AnEventThatFindsNoRoomEndsAtTheQueue)
{
    LgLog::setLoggerActivation(true);
    for (int i = 0; i < 1030; ++i) ZU_LOG_WARNING(Road, i);
    EXPECT_EQ(_queue.getLostCount(), 8U);
    EXPECT_EQ(printedBy([] { Zu::LgReader().flushAll(); }), "");
    std::string expected;
    for (int i = 0; i < 1022; ++i) expected += "Road " + std::to_string(i) + "\n";
    EXPECT_EQ(written(), expected + "Event overflow [8]\n");
}

TEST_F(LgLogTest, ALevelWithoutOutputsIsStillQueued)
{
    setAllLevels("mine.log");
    set("ZU_LOG_WARNING", "--");
    init();
    const std::string before = support::bytesOf("mine.log");
    support::Entered<LgQueue> queue;
    use(queue);
    ZU_START_LOG_GROUP("Roads", Road);
    EXPECT_EQ(printedBy([] { ZU_LOG_WARNING(Road, "inactive"); }), "Road inactive\n");
    LgLog::setLoggerActivation(true);
    ZU_LOG_WARNING(Road, "active");
    EXPECT_FALSE(queue.isEmpty());
    EXPECT_EQ(printedBy([] { Zu::LgReader().flushAll(); }), "");
    EXPECT_TRUE(queue.isEmpty());
    EXPECT_EQ(support::bytesOf("mine.log"), before);
    ZU_STOP_LOG_GROUP(Road);
}

TEST_F(LgLogTest, AStatementOfAGroupThatWasNotStartedIsAnError)
{
    init();
    EXPECT_EQ(internalErrorOf([] { ZU_LOG_TRACING(Road, "text"); }), "Assertion 'minor' failed.");
}

// The name is that of no other lock on the machine.
std::string lockNameOf(const TempDir& dir)
{
    return std::filesystem::path(dir.path()).filename().string();
}

TEST(LgLog, TheLockIsMadeWhenItsVariableIsSetAndStays)
{
    const TempDir dir;
    const std::string name = lockNameOf(dir);
    const std::string out = logOutputOf(
        {"init", "holding", "lockElsewhere", "destroy", "lockElsewhere", "set",
         "ZU_INTERNAL_INTERPROCESS_LOG_LOCK=", "init", "lockElsewhere", "destroy", "holding"},
        {{"ZU_INTERNAL_INTERPROCESS_LOG_LOCK", name}});
    EXPECT_EQ(out, "not held\n"
                   "free for others\n"
                   "free for others\n"
                   "free for others\n"
                   "not held\n"
                   "end of main\n");
}

TEST(LgLog, BannersAreWrittenUnderTheLock)
{
    const TempDir dir;
    const TempDir files;
    const std::string name = lockNameOf(dir);
    const Environment environment = {{"ZU_INTERNAL_INTERPROCESS_LOG_LOCK", name},
                                     {"ZU_LOG_DISABLE_TIMESTAMPS", "1"},
                                     {"B7Q_TEST_DIR", files.path()}};
    // Taking a lock whose holder has died raises.
    EXPECT_EQ(logOutputOf({"abandon", name, "init"}, environment),
              "init: system error\nend of main\n");
    EXPECT_EQ(logOutputOf({"init", "abandon", name, "destroy", "lockElsewhere"}, environment),
              "destroy: system error\nfree for others\nend of main\n");
    EXPECT_EQ(logOutputOf({"abandon", name, "start"}, environment),
              "start: system error\nend of main\n");
}

// The file that is closed first is not under the lock, and has no banner; nothing else is left out.
TEST(LgLog, AnEndThatIsToldOfADeadHolderIsWhole)
{
    const TempDir dir;
    const TempDir files;
    const std::string name = lockNameOf(dir);
    EXPECT_EQ(logOutputOf({"init", "abandon", name, "destroy"},
                          {{"ZU_INTERNAL_INTERPROCESS_LOG_LOCK", name},
                           {"ZU_LOG_DISABLE_TIMESTAMPS", "1"},
                           {"ZU_LOG_INTERNAL_ERROR", files.file("first.log")},
                           {"B7Q_TEST_DIR", files.path()}}),
              "destroy: system error\nend of main\n");
    const std::string whole = std::string(START_BANNER) + STOP_BANNER;
    EXPECT_EQ(support::bytesOf(files.file("first.log")), START_BANNER);
    EXPECT_EQ(support::bytesOf(files.file("events.log")), whole);
    EXPECT_EQ(support::bytesOf(files.file("prof.log")), whole);
}

TEST(LgLog, AStartThatFailedMayBeTriedAgain)
{
    const TempDir dir;
    const TempDir files;
    const std::string name = lockNameOf(dir);
    const std::string lock = "ZU_INTERNAL_INTERPROCESS_LOG_LOCK";
    const std::string whole = std::string(START_BANNER) + STOP_BANNER;
    support::writeBytes(files.file("plain"), "plain\n");
    const struct
    {
        const char* _what;
        std::vector<std::string> _steps;
        Environment _environment;
        std::string _error;
    } cases[] = {
        {"a dead holder",
         {"abandon", name, "init", "init"},
         {{lock, name}},
         "init: system error\n"},
        {"a lock that can't be made",
         {"init", "set", lock + "=" + name, "init"},
         {{lock, std::string(20000, 'x')}},
         "init: system error\n"},
        {"a file in the place of the directory",
         {"init", "set", "B7Q_TEST_DIR=" + files.path(), "init"},
         {{"B7Q_TEST_DIR", files.file("plain")}},
         "init: A regular file with the same path name exists.\n"},
    };
    for (const auto& row : cases)
    {
        SCOPED_TRACE(row._what);
        Environment environment = {{"ZU_LOG_DISABLE_TIMESTAMPS", "1"},
                                   {"B7Q_TEST_DIR", files.path()},
                                   {"ZU_LOG_WARNING", files.file("warning.log")}};
        for (const auto& [variable, value] : row._environment) environment[variable] = value;
        std::vector<std::string> steps = row._steps;
        steps.emplace_back("destroy");
        EXPECT_EQ(logOutputOf(steps, environment), row._error + "end of main\n");
        for (const char* const file : {"events.log", "prof.log", "warning.log"})
        {
            EXPECT_EQ(support::bytesOf(files.file(file)), whole) << file;
            std::filesystem::remove(files.file(file));
        }
    }
}

TEST(LgLog, ALaterLockReplacesTheFormerOne)
{
    const TempDir former;
    const TempDir later;
    const std::string variable = "ZU_INTERNAL_INTERPROCESS_LOG_LOCK";
    EXPECT_EQ(logOutputOf({"init", "destroy", "set", variable + "=" + lockNameOf(later), "init",
                           "abandon", lockNameOf(former), "destroy", "init", "abandon",
                           lockNameOf(later), "destroy"},
                          {{variable, lockNameOf(former)}}),
              "destroy: system error\nend of main\n");
}

TEST(LgLog, WithoutAFileNothingIsWrittenUnderTheLock)
{
    const TempDir dir;
    const std::string name = lockNameOf(dir);
    Environment environment = {{"ZU_INTERNAL_INTERPROCESS_LOG_LOCK", name}};
    for (const support::LogLevel& level : support::LOG_LEVELS) environment[level._variable] = "%";
    EXPECT_EQ(logOutputOf({"abandon", name, "init", "destroy"}, environment), "end of main\n");
}

TEST(LgLog, ALockThatCannotBeMadeIsAnError)
{
    const std::string tooLong(20000, 'x');
    EXPECT_EQ(logOutputOf({"init"}, {{"ZU_INTERNAL_INTERPROCESS_LOG_LOCK", tooLong}}),
              "init: system error\nend of main\n");
    EXPECT_EQ(logOutputOf({"start"}, {{"ZU_INTERNAL_INTERPROCESS_LOG_LOCK", tooLong}}),
              "start: system error\nend of main\n");
}

// Values that only nonsense in the environment requests.
TEST(LgLog, AProcessGoesOnWithMalformedVariables)
{
    const TempDir dir;
    const std::string nowhere = (std::filesystem::path("missing") / "x.log").string();
    const std::string out =
        logOutputOf({"cd", dir.path(), "start", "display", "log", "Warning", "text"},
                    {{"ZU_LOG_INTERNAL_ERROR", "%" + nowhere},
                     {"ZU_LOG_FATAL_ERROR", "+" + std::string(3000, 'y')},
                     {"ZU_LOG_RECOVERABLE_ERROR", "%+%s%n%d/"},
                     {"ZU_LOG_WARNING", "%+"},
                     {"ZU_LOG_INFORMATIONAL", "--%+"},
                     {"ZU_LOG_TRACING", "."},
                     {"ZU_LOG_PROFILING", "+"},
                     {"ZU_LOG_DEFAULT_LEVEL", "%s%n"},
                     {"ZU_LOG_GROUPS", "==,,A=B=C,%s=%n"},
                     {"ZU_BLOCKING_TRACE", "%n"},
                     {"ZU_LOG_DISABLE_TIMESTAMPS", "%n"}});
    EXPECT_NE(out.find("Invalid level string specified: %n\n"), std::string::npos) << out;
    EXPECT_NE(out.find(setupText({"stdout, " + nowhere + " ", std::string(3000, 'y') + " [Append]",
                                  "stdout, %s%n%d/ [Append]", "stdout,  [Append]", DISABLED, ". ",
                                  "[Append]"}) +
                       "Sample text\n"
                       "Sample stops\n"
                       "end of main\n"),
              std::string::npos)
        << out;
}

TEST(LgLog, AGroupWithoutALevelFailsTheStartOfTheProcess)
{
    for (const char* const value : {"A", "A=", "A=Error,B"})
        EXPECT_EQ(logOutputOf({"start"}, {{"ZU_LOG_GROUPS", value}}),
                  "start: Assertion 's' failed.\nend of main\n")
            << value;
}

class LgLogDeathTest : public support::LogTest
{
protected:
    LgLogDeathTest()
    {
        set("B7Q_TEST_DIR", std::filesystem::temp_directory_path().string());
        setAllLevels("--");
    }
};

TEST_F(LgLogDeathTest, ASecondInitWithoutDestroyIsFatal)
{
    EXPECT_DEATH(
        {
            LgLog::init();
            LgLog::init();
        },
        support::AssertionText("file_prof == 0"));
}

TEST_F(LgLogDeathTest, ASecondDestroyIsFatal)
{
    // The name of a file that is never made.
    set("ZU_LOG_WARNING", (std::filesystem::path("missing") / "directory" / "x.log").string());
    EXPECT_DEATH(
        {
            LgLog::init();
            LgLog::destroy();
            LgLog::destroy();
        },
        support::AssertionText("_level[i]._output"));
}

} // namespace
