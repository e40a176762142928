// What the options of the log service do to its files.

#include "app/lgService.h"

#include "base/lgEvent.h"
#include "base/lgMajorGroup.h"
#include "base/osFilePath.h"
#include "support/childProcess.h"
#include "support/fileTest.h"
#include "support/logTest.h"
#include "support/platform.h"
#include "support/runningLogger.h"
#include "support/streamCapture.h"
#include "support/tempDir.h"
#include "support/variableGuard.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <iostream>
#include <optional>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

ZU_DEFINE_LOG_GROUP(Setup);

namespace
{

using support::readFile;
using Zu::LgService;
using Options = Zu::LgServiceOptions;
using Texts = std::vector<std::string>;

const char* const STARTED = "===== Message Logger Startup =====\n";
const char* const STOPPED = "===== Message Logger Stopped =====\n";

// The only one there is; Windows has no name for it.
constexpr int HANGUP = 1;

class LgServiceSetupTest : public testing::Test
{
protected:
    LgServiceSetupTest()
    {
        start();
    }

    ~LgServiceSetupTest() override
    {
        stop();
    }

    void start()
    {
        _logger.emplace();
        ZU_START_LOG_GROUP("Setup", Setup);
    }

    void stop()
    {
        if (!_logger) return;
        ZU_STOP_LOG_GROUP(Setup);
        _logger.reset();
    }

    // Options with a directory of the test, which is missing.
    Options elsewhere(const std::string& name) const
    {
        Options options;
        options._directory = _dir.file(name);
        return options;
    }

    // A service logs a text and ends.
    static void logOnce(const Options& options, const std::string& text)
    {
        const LgService service(options);
        ZU_LOG_WARNING(Setup, text);
    }

    support::TempDir _dir;
    std::optional<support::RunningLogger> _logger;
};

std::string join(const std::string& directory, const std::string& name)
{
    return (Zu::OsFilePath(directory.c_str()) + name.c_str()).getChars();
}

// Of a file in the directory that the logger chose.
std::string ownFile(const std::string& name)
{
    return join(Zu::LgLog::getDirectory(), name);
}

// The lines of a file that are no banners.
Texts linesOf(const std::string& file)
{
    Texts lines;
    for (const std::string& line : support::linesOf(readFile(file)))
        if (!line.empty() && line.rfind("=====", 0) != 0) lines.push_back(line);
    return lines;
}

// What stands behind the level in them.
Texts textsOf(const std::string& file)
{
    Texts texts = linesOf(file);
    for (std::string& text : texts) text.erase(0, text.find("Setup "));
    return texts;
}

std::size_t countOf(const std::string& part, const std::string& text)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

TEST_F(LgServiceSetupTest, FilesAreWhereTheOptionsSayUntilTheLoggerEnds)
{
    Zu::LgMajorGroup::getInstanceForName("Setup").setLogThreshold(Zu::LgTypes::Profiling, false);
    Options options = elsewhere("logs");
    options._eventsName = "shop.log";
    options._profilesName = "spans.log";
    const std::string own = Zu::LgLog::getDirectory();
    {
        const LgService service(options);
        ZU_LOG_WARNING(Setup, "an event");
        ZU_LOG_PROFILING(Setup, "a profile");
    }
    EXPECT_FALSE(std::filesystem::exists(join(own, "events.log")));
    EXPECT_FALSE(std::filesystem::exists(join(own, "prof.log")));
    stop();
    const std::string events = join(options._directory, "shop.log");
    const std::string profiles = join(options._directory, "spans.log");
    EXPECT_EQ(textsOf(events), Texts{"Setup an event"});
    EXPECT_EQ(textsOf(profiles), Texts{"Setup a profile"});
    for (const std::string& file : {events, profiles})
    {
        const std::string text = readFile(file);
        EXPECT_EQ(text.rfind(STARTED, 0), 0U) << text;
        EXPECT_EQ(countOf(STARTED, text), 1U) << text;
        EXPECT_EQ(countOf(STOPPED, text), 1U) << text;
        EXPECT_EQ(text.substr(text.size() - std::string(STOPPED).size()), STOPPED);
    }
}

TEST_F(LgServiceSetupTest, TheEnvironmentSetsThemForAServiceWithoutOptions)
{
    const support::VariableGuard directory("ZU_LOG_SERVICE_DIRECTORY");
    const support::VariableGuard name("ZU_LOG_SERVICE_EVENTS_NAME");
    directory.set(_dir.file("logs"));
    name.set("shop.log");
    {
        const LgService service;
        ZU_LOG_WARNING(Setup, "an event");
    }
    EXPECT_EQ(textsOf(join(_dir.file("logs"), "shop.log")), Texts{"Setup an event"});
    EXPECT_TRUE(std::filesystem::exists(join(_dir.file("logs"), "prof.log")));
}

TEST_F(LgServiceSetupTest, NamesHaveTheProcessIdBeforeTheirLastDotIfWanted)
{
    const std::string id = std::to_string(support::processId());
    const std::pair<std::string, std::string> rows[] = {
        {"events.log", "events." + id + ".log"},
        {"events", "events." + id},
        {"my.own.log", "my.own." + id + ".log"},
        {".log", "." + id + ".log"},
        {"end.", "end." + id + "."},
    };
    if (support::onWindows) std::cout << "without \"end.\": Windows has no such names\n";
    for (const auto& [given, name] : rows)
    {
        if (support::onWindows && given == "end.") continue;
        Options options = elsewhere("logs");
        options._eventsName = given;
        options._processInNames = true;
        logOnce(options, given);
        EXPECT_EQ(textsOf(join(options._directory, name)), Texts{"Setup " + given});
        EXPECT_FALSE(std::filesystem::exists(join(options._directory, given)));
        EXPECT_TRUE(std::filesystem::exists(join(options._directory, "prof." + id + ".log")));
    }
}

TEST_F(LgServiceSetupTest, NamesAloneAreInTheLoggersOwnDirectory)
{
    Options options;
    options._eventsName = "shop.log";
    logOnce(options, "an event");
    EXPECT_EQ(textsOf(ownFile("shop.log")), Texts{"Setup an event"});
    EXPECT_TRUE(std::filesystem::exists(ownFile("prof.log")));
    EXPECT_FALSE(std::filesystem::exists(ownFile("events.log")));
}

TEST_F(LgServiceSetupTest, AFileThatAVariableNamesStaysWhereItIs)
{
    const support::VariableGuard variable("ZU_LOG_WARNING");
    variable.set("+" + _dir.file("warnings.log"));
    stop();
    start();
    Options options = elsewhere("logs");
    options._processInNames = true;
    options._eventsName = "shop";
    {
        const LgService service(options);
        ZU_LOG_WARNING(Setup, "a warning");
        ZU_LOG_ERROR(Setup, "an error");
    }
    const std::string name = "shop." + std::to_string(support::processId());
    EXPECT_EQ(textsOf(_dir.file("warnings.log")), Texts{"Setup a warning"});
    EXPECT_EQ(textsOf(join(options._directory, name)), Texts{"Setup an error"});
}

TEST_F(LgServiceSetupTest, ADirectoryThatIsRefusedIsOneLineAndTheLoggersOwnStays)
{
    support::writeFile(_dir.file("file"), "not a directory");
    int number = 0;
    for (const std::string& name : {join(_dir.file("missing"), "logs"), _dir.file("file")})
    {
        const std::string text = "event " + std::to_string(++number);
        const support::StreamCapture errors(std::cerr);
        Options options;
        options._directory = name;
        {
            const LgService service(options);
            ZU_LOG_WARNING(Setup, text);
            const std::string setup = support::coutOf([&] { service.displaySetup(); });
            EXPECT_NE(setup.find("\ndirectory: \"\" ("), std::string::npos) << setup;
        }
        const Texts lines = support::linesOf(errors.text());
        ASSERT_EQ(lines.size(), 1U) << errors.text();
        const std::string line = "The log directory \"" + name +
                                 "\" can't be used, and the log files are in \"" +
                                 Zu::LgLog::getDirectory() + "\": ";
        EXPECT_EQ(lines[0].substr(0, line.size()), line);
        EXPECT_GT(lines[0].size(), line.size());
        EXPECT_EQ(textsOf(ownFile("events.log")).back(), "Setup " + text);
    }
    EXPECT_FALSE(std::filesystem::exists(_dir.file("missing")));
    EXPECT_EQ(readFile(_dir.file("file")), "not a directory");
}

TEST_F(LgServiceSetupTest, TheNextServiceMayLogElsewhere)
{
    const Options first = elsewhere("first");
    const Options second = elsewhere("second");
    logOnce(first, "one");
    logOnce(second, "two");
    logOnce(Options(), "three");
    logOnce(first, "four");
    EXPECT_EQ(textsOf(join(first._directory, "events.log")), (Texts{"Setup one", "Setup four"}));
    EXPECT_EQ(textsOf(join(second._directory, "events.log")), Texts{"Setup two"});
    EXPECT_EQ(textsOf(ownFile("events.log")), Texts{"Setup three"});
    const std::string own = ownFile("events.log");
    stop();
    EXPECT_EQ(countOf(STOPPED, readFile(join(first._directory, "events.log"))), 1U);
    EXPECT_EQ(countOf(STOPPED, readFile(join(second._directory, "events.log"))), 0U);
}

// Restores the current directory.
class CurrentDirectory
{
public:
    explicit CurrentDirectory(const std::string& path) : _former(std::filesystem::current_path())
    {
        std::filesystem::current_path(path);
    }

    CurrentDirectory(const CurrentDirectory&) = delete;
    CurrentDirectory& operator=(const CurrentDirectory&) = delete;

    ~CurrentDirectory()
    {
        std::filesystem::current_path(_former);
    }

private:
    std::filesystem::path _former;
};

TEST_F(LgServiceSetupTest, ARelativeDirectoryCountsFromWhereTheProcessWas)
{
    Options options;
    options._directory = "logs/";
    std::optional<CurrentDirectory> there(_dir.path());
    const LgService service(options);
    there.reset();
    service.reopen();
    ZU_LOG_WARNING(Setup, "an event");
    ASSERT_TRUE(service.flush(std::chrono::minutes(10)));
    EXPECT_EQ(textsOf(join(_dir.file("logs"), "events.log")), Texts{"Setup an event"});
}

TEST_F(LgServiceSetupTest, LinesBeginWithTheTimeInTheFormThatIsWanted)
{
    const std::string id = std::to_string(support::processId());
    const std::string tail = R"( \(0x[0-9a-f]{8}\) Warning: Setup an event)";
    const std::string wall = R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{6})";
    const std::pair<Options::LineForm, std::string> rows[] = {
        {Options::LineForm::Ticks, R"(\d{10} \d{10})" + tail},
        {Options::LineForm::Local, wall + R"([+-]\d\d:\d\d )" + id + tail},
        {Options::LineForm::Utc, wall + "Z " + id + tail},
    };
    for (const auto& [form, pattern] : rows)
    {
        Options options = elsewhere("form" + std::to_string(static_cast<int>(form)));
        options._lineForm = form;
        logOnce(options, "an event");
        const Texts lines = linesOf(join(options._directory, "events.log"));
        ASSERT_EQ(lines.size(), 1U);
        EXPECT_TRUE(std::regex_match(lines[0], std::regex(pattern))) << lines[0];
    }
}

TEST_F(LgServiceSetupTest, ALineFeedForgesNoLineUnlessTextsAreRaw)
{
    const std::string forged = "===== Message Logger Startup =====\nroot \x1b[2J\\";
    const std::pair<bool, std::string> rows[] = {
        {false, "Warning: Setup a\n\t===== Message Logger Startup =====\n\troot \\x1b[2J\\\n"},
        {true, "Warning: Setup a\n" + forged + "\n"},
    };
    for (const auto& [isRaw, expected] : rows)
    {
        Options options = elsewhere(isRaw ? "raw" : "plain");
        options._rawText = isRaw;
        logOnce(options, "a\n" + forged);
        const std::string text = readFile(join(options._directory, "events.log"));
        const std::size_t begin = text.find("Warning: ");
        ASSERT_NE(begin, std::string::npos);
        EXPECT_EQ(text.substr(begin), expected);
    }
}

TEST_F(LgServiceSetupTest, FilesThatGrowTooLargeAreRotatedAndTheLastOnesKept)
{
    Options options = elsewhere("logs");
    options._rotateSize = 2000;
    options._keptFiles = 2;
    constexpr int EVENTS = 100;
    {
        const LgService service(options);
        for (int i = 0; i < EVENTS; ++i)
        {
            ZU_LOG_WARNING(Setup, i << ' ' << std::string(80, '.'));
            ASSERT_TRUE(service.flush(std::chrono::minutes(10)));
        }
    }
    const std::string file = join(options._directory, "events.log");
    EXPECT_FALSE(std::filesystem::exists(file + ".3"));
    // The last events are there, in their order, and no file is too long.
    Texts texts;
    for (const std::string& name : {file + ".2", file + ".1", file})
    {
        ASSERT_TRUE(std::filesystem::exists(name)) << name;
        EXPECT_LE(std::filesystem::file_size(name), options._rotateSize);
        EXPECT_EQ(readFile(name).rfind(STARTED, 0), 0U);
        const Texts some = textsOf(name);
        EXPECT_FALSE(some.empty());
        texts.insert(texts.end(), some.begin(), some.end());
    }
    ASSERT_LT(texts.size(), static_cast<std::size_t>(EVENTS));
    int number = EVENTS - static_cast<int>(texts.size());
    for (const std::string& text : texts)
        EXPECT_EQ(text, "Setup " + std::to_string(number++) + " " + std::string(80, '.'));
}

volatile std::sig_atomic_t hangups = 0;

void countHangup(int)
{
    hangups = hangups + 1;
}

using Handler = void (*)(int);

// Restores the handler that a test replaces.
class HandlerGuard
{
public:
    explicit HandlerGuard(Handler handler) : _former(std::signal(HANGUP, handler)) {}
    HandlerGuard(const HandlerGuard&) = delete;
    HandlerGuard& operator=(const HandlerGuard&) = delete;

    ~HandlerGuard()
    {
        std::signal(HANGUP, _former);
    }

private:
    Handler _former;
};

// Reads it by setting and restoring it.
Handler presentHandler()
{
    const Handler present = std::signal(HANGUP, SIG_IGN);
    std::signal(HANGUP, present);
    return present;
}

// Logs until the file was opened as often as this; the writing thread may take its time.
void logUntilOpened(const LgService& service, const std::string& file, std::size_t times)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + std::chrono::minutes(5);
    while (countOf(STARTED, readFile(file)) < times)
    {
        ASSERT_LT(Clock::now(), end) << readFile(file);
        ZU_LOG_WARNING(Setup, "again");
        ASSERT_TRUE(service.flush(std::chrono::minutes(5)));
    }
}

TEST_F(LgServiceSetupTest, AHangupOpensTheFilesAgainIfThatIsWanted)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no hangups";
    const Handler handlers[] = {SIG_DFL, SIG_IGN, &countHangup};
    for (const Handler handler : handlers)
    {
        const HandlerGuard guard(handler);
        hangups = 0;
        Options options = elsewhere("logs" + std::to_string(handler == SIG_DFL) +
                                    std::to_string(handler == SIG_IGN));
        options._reopenOnHangup = true;
        const std::string file = join(options._directory, "events.log");
        {
            const LgService service(options);
            ZU_LOG_WARNING(Setup, "before");
            ASSERT_TRUE(service.flush(std::chrono::minutes(10)));
            EXPECT_EQ(countOf(STARTED, readFile(file)), 1U);
            for (std::size_t times = 2; times < 5; ++times)
            {
                std::raise(HANGUP);
                logUntilOpened(service, file, times);
            }
        }
        EXPECT_EQ(hangups, handler == &countHangup ? 3 : 0);
        EXPECT_EQ(presentHandler(), handler);
    }
}

TEST_F(LgServiceSetupTest, WithoutThatWishAHangupIsLeftToTheProgram)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no hangups";
    const HandlerGuard guard(&countHangup);
    hangups = 0;
    const LgService service(elsewhere("logs"));
    EXPECT_EQ(presentHandler(), &countHangup);
    std::raise(HANGUP);
    EXPECT_EQ(hangups, 1);
    for (int i = 0; i < 3; ++i)
    {
        ZU_LOG_WARNING(Setup, i);
        ASSERT_TRUE(service.flush(std::chrono::minutes(10)));
    }
    EXPECT_EQ(countOf(STARTED, readFile(join(_dir.file("logs"), "events.log"))), 1U);
}

Handler beforeLater = nullptr;

void countAndPassOn(int signal)
{
    hangups = hangups + 1;
    if (beforeLater && beforeLater != SIG_DFL && beforeLater != SIG_IGN) beforeLater(signal);
}

TEST_F(LgServiceSetupTest, AHandlerThatCameLaterStaysAndTheNextServiceHearsOfHangupsThroughIt)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no hangups";
    const HandlerGuard guard(SIG_DFL);
    hangups = 0;
    Options options = elsewhere("logs");
    options._reopenOnHangup = true;
    {
        const LgService service(options);
        beforeLater = std::signal(HANGUP, &countAndPassOn);
    }
    EXPECT_EQ(presentHandler(), &countAndPassOn);
    std::raise(HANGUP);
    EXPECT_EQ(hangups, 1);
    const std::string file = join(options._directory, "events.log");
    {
        const LgService service(options);
        ZU_LOG_WARNING(Setup, "before");
        ASSERT_TRUE(service.flush(std::chrono::minutes(10)));
        const std::size_t times = countOf(STARTED, readFile(file));
        std::raise(HANGUP);
        logUntilOpened(service, file, times + 1);
    }
    EXPECT_EQ(hangups, 2);
    // The program takes its handler out again, and then there is one of the service's to remove.
    std::signal(HANGUP, beforeLater);
    {
        const LgService service(options);
    }
    EXPECT_EQ(presentHandler(), SIG_DFL);
}

TEST_F(LgServiceSetupTest, TheChildOfAForkDoesNotHandleHangups)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no fork";
    if (support::underSanitizer)
        GTEST_SKIP() << "what the sanitizers lock does not survive a fork beside other threads";
    const HandlerGuard guard(SIG_DFL);
    Options options = elsewhere("logs");
    options._reopenOnHangup = true;
    const LgService service(options);
    EXPECT_NE(presentHandler(), SIG_DFL);
    if (support::forkProcess() == support::Side::CHILD)
        std::_Exit(presentHandler() == SIG_DFL ? 3 : 4);
    EXPECT_EQ(support::awaitForkedChild(), 3);
    EXPECT_NE(presentHandler(), SIG_DFL);
}

TEST_F(LgServiceSetupTest, DisplaysTheOptionsInEffectAndTheOutputsOfTheLevels)
{
    const support::VariableGuard warning("ZU_LOG_WARNING");
    const support::VariableGuard error("ZU_LOG_RECOVERABLE_ERROR");
    const support::VariableGuard informational("ZU_LOG_INFORMATIONAL");
    warning.set("%" + _dir.file("warnings.log"));
    error.set("--");
    informational.set("+" + _dir.file("plain.log"));
    stop();
    start();
    Options options = elsewhere("logs");
    options._eventsName = "shop.log";
    options._entries = 100;
    options._keptFiles = 0;
    const support::StreamCapture errors(std::cerr);
    const LgService service(options);
    EXPECT_EQ(support::countOf(errors.text(), "is out of range"), 1U) << errors.text();
    options._entries = 128;
    options._keptFiles = 10;
    std::ostringstream shown;
    options.display(shown);
    const std::string events = join(options._directory, "shop.log");
    EXPECT_EQ(support::coutOf([&] { service.displaySetup(); }),
              "===== Log Service Setup =====\n" + shown.str() + "Internal Error: " + events +
                  "\nFatal Error: " + events + "\nError: none\nWarning: stdout, " +
                  _dir.file("warnings.log") + "\nInformational: " + _dir.file("plain.log") +
                  "\nTracing: stdout\nProfiling: " + join(options._directory, "prof.log") +
                  "\n===== End Setup =====\n");
}

// The directory decides whose service writes what a process left, however the directory is written.
TEST(LgServiceSetupProgram, WhatIsLeftIsWrittenByTheNextServiceOfTheSameDirectory)
{
    const support::TempDir own;
    const support::TempDir dir;
    const support::TempDir mappings;
    const std::string lock = "zuSetup" + std::to_string(support::processId());
    const auto run = [&](const Texts& words, const std::string& logs)
    {
        const bool isLeaving = words[0] == "leave";
        const support::ProgramResult result =
            support::runProgram("serviceProgram", words,
                                {{"B7Q_TEST_DIR", own.path()},
                                 {"ZU_LOG_SERVICE_DIRECTORY", logs},
                                 {"ZU_LOG_SERVICE_MAPPING_DIRECTORY", mappings.path()},
                                 {"ZU_INTERNAL_INTERPROCESS_LOG_LOCK",
                                  isLeaving ? std::optional<std::string>(lock) : std::nullopt}});
        EXPECT_EQ(result.exitCode, 0);
        EXPECT_EQ(result.err, "");
    };
    const auto countLeft = [&dir](const std::string& name)
    { return countOf("Service left behind", readFile(join(dir.file(name), "events.log"))); };
    run({"leave"}, dir.file("logs"));
    EXPECT_EQ(countLeft("logs"), 0U);
    run({"threads"}, dir.file("others"));
    EXPECT_EQ(countLeft("others"), 0U);
    run({"threads"}, dir.file("logs") + "/");
    EXPECT_EQ(countLeft("logs"), 1U);
    run({"threads"}, dir.file("logs"));
    EXPECT_EQ(countLeft("logs"), 1U);
    EXPECT_TRUE(std::filesystem::is_empty(own.path()));
}

} // namespace
