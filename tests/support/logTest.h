// What tests of the logger share: a set-up that is limited to one test, and the content of files.

#ifndef ZU_TESTS_LOGTEST_H
#define ZU_TESTS_LOGTEST_H

#include "base/hwCounter.h"
#include "base/lgLog.h"
#include "base/lgMajorGroup.h"
#include "base/lgQueue.h"
#include "base/lgRegistry.h"
#include "base/lgTypes.h"
#include "base/osCpuInfo.h"

#include "support/childProcess.h"
#include "support/tempDir.h"
#include "support/variableGuard.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iostream>
#include <iterator>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace support
{

// A level, its text and the variable of its output; in the order of the levels.
struct LogLevel
{
    Zu::LgTypes::Level _level;
    const char* _name;
    const char* _variable;
};

inline constexpr LogLevel LOG_LEVELS[] = {
    {Zu::LgTypes::InternalError, "Internal Error", "ZU_LOG_INTERNAL_ERROR"},
    {Zu::LgTypes::FatalError, "Fatal Error", "ZU_LOG_FATAL_ERROR"},
    {Zu::LgTypes::Error, "Error", "ZU_LOG_RECOVERABLE_ERROR"},
    {Zu::LgTypes::Warning, "Warning", "ZU_LOG_WARNING"},
    {Zu::LgTypes::Informational, "Informational", "ZU_LOG_INFORMATIONAL"},
    {Zu::LgTypes::Tracing, "Tracing", "ZU_LOG_TRACING"},
    {Zu::LgTypes::Profiling, "Profiling", "ZU_LOG_PROFILING"},
};

// The logger's other variables.
inline constexpr const char* LOG_SWITCHES[] = {
    "B7Q_TEST_DIR",
    "ZU_LOG_DEFAULT_LEVEL",
    "ZU_LOG_GROUPS",
    "ZU_BLOCKING_TRACE",
    "ZU_INTERNAL_INTERPROCESS_LOG_LOCK",
    "ZU_LOG_DISABLE_TIMESTAMPS",
};

inline constexpr const char* START_BANNER = "===== Message Logger Startup =====\n";
inline constexpr const char* STOP_BANNER = "===== Message Logger Stopped =====\n";

// The bytes of a file; none if it does not exist.
inline std::string bytesOf(const std::string& file)
{
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

inline void writeBytes(const std::string& file, const std::string& bytes)
{
    std::ofstream(file, std::ios::binary) << bytes;
}

inline std::size_t countOf(const std::string& text, const std::string& part)
{
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

// What an act writes to standard output, with line endings reduced to line feeds.
template <class Act> std::string printedBy(Act act)
{
    testing::internal::CaptureStdout();
    act();
    std::cout.flush();
    return testing::internal::GetCapturedStdout();
}

// What displaySetup() prints for these descriptions, one for each level in order.
inline std::string setupText(const std::array<std::string, std::size(LOG_LEVELS)>& descriptions)
{
    std::string text = "===== Log Setup =====\n";
    for (std::size_t i = 0; i < descriptions.size(); ++i)
        text += std::string(LOG_LEVELS[i]._name) + ": " + descriptions[i] + "\n";
    return text + "===== End Setup =====\n";
}

// An environment without any of the logger's variables, and with these changes.
inline Environment logEnvironment(const Environment& changes = {})
{
    Environment environment;
    for (const LogLevel& level : LOG_LEVELS) environment[level._variable] = std::nullopt;
    for (const char* const name : LOG_SWITCHES) environment[name] = std::nullopt;
    for (const auto& [name, value] : changes) environment[name] = value;
    return environment;
}

// The output of a run of logProgram that succeeds and writes nothing to standard error.
inline std::string logOutputOf(const std::vector<std::string>& words,
                               const Environment& changes = {})
{
    const ProgramResult result = runProgram("logProgram", words, logEnvironment(changes));
    EXPECT_EQ(result.exitCode, 0) << result.out;
    EXPECT_EQ(result.err, "");
    return result.out;
}

// Restores the current directory at the end of the scope.
class CurrentDirGuard
{
public:
    CurrentDirGuard() : _path(std::filesystem::current_path()) {}
    CurrentDirGuard(const CurrentDirGuard&) = delete;
    CurrentDirGuard& operator=(const CurrentDirGuard&) = delete;
    ~CurrentDirGuard()
    {
        std::filesystem::current_path(_path);
    }

private:
    std::filesystem::path _path;
};

// The logger before and after the test is as in a process that has not started it: no variable is
// set, no file open, no level echoed. The test calls init() after it has set what it needs.
class LogTest : public testing::Test
{
protected:
    LogTest()
    {
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        Zu::OsCpuInfo::initialize();
        Zu::HwCounter::init();
        for (const LogLevel& level : LOG_LEVELS) guard(level._variable);
        for (const char* const name : LOG_SWITCHES) guard(name);
        reset();
    }

    ~LogTest() override
    {
        destroy();
        reset();
    }

    // The empty value removes the variable.
    void set(const std::string& name, const std::string& value)
    {
        _guards.at(name)->set(value);
    }

    // Sets all levels, for tests that give outputs to some of them only.
    void setAllLevels(const std::string& value)
    {
        for (const LogLevel& level : LOG_LEVELS) set(level._variable, value);
    }

    void init()
    {
        Zu::LgLog::init();
        _initialized = true;
    }

    void destroy()
    {
        if (_initialized) Zu::LgLog::destroy();
        _initialized = false;
    }

private:
    void guard(const char* name)
    {
        _guards[name] = std::make_unique<VariableGuard>(name);
        _guards[name]->set("");
    }

    // A level keeps some flags from one init() to the next; an empty set-up clears them.
    void reset()
    {
        for (const char* const name : LOG_SWITCHES) set(name, "");
        set("B7Q_TEST_DIR", std::filesystem::temp_directory_path().string());
        setAllLevels("--");
        Zu::LgLog::init();
        Zu::LgLog::destroy();
        setAllLevels("");
        set("B7Q_TEST_DIR", "");
        Zu::LgLog::setQueueFunction(nullptr);
        Zu::LgLog::setLoggerActivation(false);
        Zu::LgLog::setBlockingTrace(false);
        Zu::LgLog::enableTimeStamps();
        Zu::LgMajorGroup::setDefaultThreshold(Zu::LgTypes::Warning);
    }

    std::map<std::string, std::unique_ptr<VariableGuard>> _guards;
    bool _initialized = false;
};

// The same with a private current directory, in which "logs" is the log directory.
class LogFilesTest : public LogTest
{
protected:
    LogFilesTest()
    {
        std::filesystem::current_path(_dir.path());
        set("B7Q_TEST_DIR", _dir.file("logs"));
    }

    ~LogFilesTest() override
    {
        // Open files and the current directory can't be removed everywhere.
        destroy();
    }

    std::string logFile(const std::string& name) const
    {
        return (std::filesystem::path(_dir.file("logs")) / name).string();
    }

    const TempDir _dir;

private:
    const CurrentDirGuard _currentDir;
};

// Publishes an event, which must find room.
inline void addEvent(Zu::LgQueue& queue, Zu::LgTypes::Level level, const std::string& text)
{
    ASSERT_TRUE(queue.reserveEntry(level));
    queue.getStream() << text << Zu::ends;
    queue.addEntry();
}

// Drops all waiting entries of a queue.
inline void drain(Zu::LgQueue& queue)
{
    std::vector<char> text(32768);
    while (!queue.isEmpty())
    {
        if (!queue.readEntry().isOverflowEntry()) queue.getStream() >> text.data();
        queue.removeEntry();
    }
}

// A queue that is registered for the duration of a scope, and drained at its end.
template <class Queue> class Entered : public Queue
{
public:
    template <class... Arguments> explicit Entered(Arguments... arguments) : Queue(arguments...)
    {
        Zu::LgLog::getRegistry()->registerQueue(this);
    }
    Entered(const Entered&) = delete;
    Entered& operator=(const Entered&) = delete;
    ~Entered()
    {
        Zu::LgLog::getRegistry()->deregisterQueue(this);
        drain(*this);
    }
};

// Sets the time of the oldest entry of a queue to this many ticks after the logger's start. Entries
// are not constants; only the reader's view of them is.
inline void setTimeOfNext(Zu::LgQueue& queue, std::uint64_t ticks)
{
    auto& entry = const_cast<Zu::LgQueue::Entry&>(queue.readEntry());
    entry.setTimeStamp(Zu::LgLog::getStart() + ticks);
}

} // namespace support

#endif
