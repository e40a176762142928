#include "sampleLogging.h"

#include "app/lgService.h"
#include "base/base.h"

#include <atomic>
#include <cstdint>
#include <fstream>
#include <iostream>
#include <string>
#include <thread>
#include <vector>

ZU_DEFINE_LOG_GROUP(Query);
ZU_DEFINE_LOG_GROUP(Window);

namespace sample
{

namespace
{

constexpr int PRODUCERS = 3;
constexpr int ROUNDS = 40;
constexpr int BURST = 12000;
// Fewer than a queue holds, so that the second process can't lose one.
constexpr int EVENTS_OF_SECOND_PROCESS = 50;
constexpr std::size_t LINES_SHOWN = 4;

// Statements that were let through in this process, for the account at the end.
std::atomic<std::uint64_t> attempted{0};

std::string logFile(const char* name)
{
    const char* const directory = Zu::OsEnv::getVariable("B7Q_TEST_DIR");
    const Zu::OsFilePath path =
        directory && *directory != '\0' ? Zu::OsFilePath(directory) : Zu::OsFilePath::getTempDir();
    return (path + name).getChars();
}

void setUnlessSet(const std::string& name, const std::string& value)
{
    if (!Zu::OsEnv::getVariable(name.c_str())) Zu::OsEnv::putVariable((name + "=" + value).c_str());
}

const char* counted(const char* text)
{
    ++attempted;
    return text;
}

// One statement of each level. Those that the group does not let through evaluate no operands, and
// so are not counted.
void logAllLevels(int producer, int round)
{
    ZU_LOG_INTERNAL_ERROR(Query, counted("index broken, producer ") << producer);
    ZU_LOG_FATAL_ERROR(Query, counted("disk gone, producer ") << producer);
    ZU_LOG_ERROR(Query, counted("no answer in round ") << round);
    ZU_LOG_WARNING(Query, counted("took ") << 0.125 * round << " s");
    ZU_LOG_INFORMATIONAL(Window, counted("opened by producer ") << producer);
    ZU_LOG_TRACING(Window, counted("draw ") << round << ", visible: " << (round % 2 == 0));
    ZU_LOG_PROFILING(Window, counted("drawn in ") << 0.001 * round << " s");
    ZU_LOG_TRACING(Query, counted("is not let through: the group's threshold is Warning"));
}

void logFromThreads()
{
    std::vector<std::thread> producers;
    for (int producer = 0; producer < PRODUCERS; ++producer)
        producers.emplace_back(
            [producer]
            {
                for (int round = 0; round < ROUNDS; ++round) logAllLevels(producer, round);
            });
    for (std::thread& producer : producers) producer.join();
}

// While this thread holds the lock on the files nobody can write, so the queue overflows.
void provokeOverflow()
{
    const Zu::LgInterProcessLockGuard guard(Zu::LgLog::getInterProcessLock());
    for (int i = 0; i < BURST; ++i) ZU_LOG_WARNING(Query, counted("burst ") << i);
}

std::vector<std::string> linesOf(const std::string& name)
{
    std::vector<std::string> lines;
    std::ifstream file(name);
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
}

// The number of event lines, without banners and lines that count lost events.
std::uint64_t eventsIn(const std::string& name)
{
    std::uint64_t count = 0;
    for (const std::string& line : linesOf(name))
        if (line.find("(0x") != std::string::npos && line.find("overflow [") == std::string::npos)
            ++count;
    return count;
}

void printLastLines(const char* name)
{
    const std::vector<std::string> lines = linesOf(logFile(name));
    std::cout << "  the last lines of " << name << ":" << std::endl;
    const std::size_t first = lines.size() > LINES_SHOWN ? lines.size() - LINES_SHOWN : 0;
    for (std::size_t i = first; i < lines.size(); ++i) std::cout << "    " << lines[i] << std::endl;
}

} // namespace

void prepareLogging()
{
    // Several processes share the files: all of them append, and write under one lock.
    for (const char* const variable :
         {"ZU_LOG_INTERNAL_ERROR", "ZU_LOG_FATAL_ERROR", "ZU_LOG_RECOVERABLE_ERROR",
          "ZU_LOG_WARNING", "ZU_LOG_INFORMATIONAL", "ZU_LOG_TRACING"})
        setUnlessSet(variable, "+" + logFile("events.log"));
    setUnlessSet("ZU_LOG_PROFILING", "+" + logFile("prof.log"));
    setUnlessSet("ZU_INTERNAL_INTERPROCESS_LOG_LOCK",
                 "sampleApplication" + std::to_string(Zu::OsUtils::getPid()));
    setUnlessSet("ZU_LOG_GROUPS", "Database=Warning,UI=Tracing,UI=Profiling");
}

void startLogGroups()
{
    ZU_START_LOG_GROUP("Database", Query);
    ZU_START_LOG_GROUP("UI", Window);
}

void stopLogGroups()
{
    ZU_STOP_LOG_GROUP(Window);
    ZU_STOP_LOG_GROUP(Query);
}

void showLogging(const char* program)
{
    Zu::LgLog::displaySetup();
    std::uint64_t written = eventsIn(logFile("events.log")) + eventsIn(logFile("prof.log"));
    std::uint64_t lost = 0;
    {
        const Zu::LgService service;
        Zu::OsProcess second;
        const char* const words[] = {program, "-s", nullptr};
        second.start(words);
        logFromThreads();
        provokeOverflow();
        second.wait();
        lost = service.getLostCount();
    }
    written = eventsIn(logFile("events.log")) + eventsIn(logFile("prof.log")) - written;
    printLastLines("events.log");
    printLastLines("prof.log");
    const std::uint64_t all = attempted + EVENTS_OF_SECOND_PROCESS;
    std::cout << "  account: " << all << " attempted = " << written << " written + " << lost
              << " lost" << (all == written + lost ? "" : ": DOES NOT HOLD") << std::endl;
}

void logAsSecondProcess()
{
    const Zu::LgService service;
    for (int i = 0; i < EVENTS_OF_SECOND_PROCESS; ++i)
        ZU_LOG_WARNING(Query, "from the second process, " << i);
}

} // namespace sample
