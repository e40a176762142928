#include "app/lgService.h"

#include "app/lgServiceEx.h"
#include "base/lgEvent.h"
#include "base/lgInterProcessLock.h"
#include "base/lgTrace.h"
#include "support/childProcess.h"
#include "support/platform.h"
#include "support/runningLogger.h"
#include "support/streamCapture.h"
#include "support/tempDir.h"
#include "support/variableGuard.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <future>
#include <gtest/gtest.h>
#include <iostream>
#include <memory>
#include <optional>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

ZU_DEFINE_LOG_GROUP(Kit);

namespace
{

using Zu::LgQueue;
using Zu::LgService;
using Zu::LgServiceEx;
namespace LgTypes = Zu::LgTypes;
using Texts = std::vector<std::string>;

class LgServiceTest : public testing::Test
{
protected:
    LgServiceTest() : _lockVariable("ZU_INTERNAL_INTERPROCESS_LOG_LOCK")
    {
        start();
    }

    ~LgServiceTest() override
    {
        stop();
    }

    void start()
    {
        _logger.emplace();
        ZU_START_LOG_GROUP("Kit", Kit);
    }

    void stop()
    {
        if (!_logger) return;
        ZU_STOP_LOG_GROUP(Kit);
        _logger.reset();
    }

    // Starts the logger again with a lock between processes, which is returned: while the test
    // holds it, the service can't write.
    std::unique_ptr<Zu::LgInterProcessLock> startWithLock()
    {
        stop();
        _lockName = "zuServiceTest" + std::to_string(support::processId());
        _lockVariable.set(_lockName);
        std::unique_ptr<Zu::LgInterProcessLock> lock(
            Zu::LgInterProcessLock::create(_lockName.c_str()));
        start();
        return lock;
    }

    static std::size_t numberOfQueues()
    {
        return Zu::LgLog::getRegistry()->getQueueList().size();
    }

    Texts texts(const std::string& file = "events.log") const
    {
        return _logger->textsOf(file);
    }

    support::VariableGuard _lockVariable;
    std::string _lockName;
    // Removed when the logger has closed its files.
    support::TempDir _elsewhere;
    std::optional<support::RunningLogger> _logger;
};

constexpr int FEW_THREADS = 4;
constexpr int FEW_EVENTS = 200;

// Several threads log at once: "<thread> <event>".
void logFromThreads()
{
    std::vector<std::thread> threads;
    for (int thread = 0; thread < FEW_THREADS; ++thread)
        threads.emplace_back(
            [thread]
            {
                for (int i = 0; i < FEW_EVENTS; ++i) ZU_LOG_WARNING(Kit, thread << ' ' << i);
            });
    for (std::thread& thread : threads) thread.join();
}

TEST_F(LgServiceTest, WritesTheEventsOfAllThreadsEachInItsOrder)
{
    {
        const LgService service;
        logFromThreads();
        EXPECT_EQ(service.getLostCount(), 0U);
    }
    const Texts written = texts();
    for (int thread = 0; thread < FEW_THREADS; ++thread)
    {
        Texts expected;
        for (int i = 0; i < FEW_EVENTS; ++i)
            expected.push_back("Kit " + std::to_string(thread) + " " + std::to_string(i));
        const std::string own = "Kit " + std::to_string(thread) + " ";
        Texts found;
        std::copy_if(written.begin(), written.end(), std::back_inserter(found),
                     [&own](const std::string& text) { return text.rfind(own, 0) == 0; });
        EXPECT_EQ(found, expected);
    }
    EXPECT_EQ(written.size(), static_cast<std::size_t>(FEW_THREADS * FEW_EVENTS));
}

TEST_F(LgServiceTest, ActivatesTheLoggerForItsLifeAlone)
{
    EXPECT_FALSE(Zu::LgLog::isLoggerActive());
    {
        const LgService service;
        EXPECT_TRUE(Zu::LgLog::isLoggerActive());
    }
    EXPECT_FALSE(Zu::LgLog::isLoggerActive());
}

TEST_F(LgServiceTest, ServesThreadsFromBeforeIt)
{
    std::promise<void> go;
    std::promise<void> done;
    std::promise<void> end;
    std::thread early(
        [&]
        {
            go.get_future().wait();
            ZU_LOG_WARNING(Kit, "from an old thread");
            done.set_value();
            end.get_future().wait();
        });
    {
        const LgService service;
        go.set_value();
        done.get_future().wait();
    }
    EXPECT_EQ(texts(), Texts{"Kit from an old thread"});
    {
        const LgService second;
        end.set_value();
        early.join();
    }
    EXPECT_EQ(texts().size(), 1U);
}

TEST_F(LgServiceTest, WritesWithoutBeingEnded)
{
    const LgService service;
    for (int i = 0; i < 10; ++i)
    {
        ZU_LOG_WARNING(Kit, i);
        while (texts().size() < static_cast<std::size_t>(i + 1)) std::this_thread::yield();
    }
}

TEST_F(LgServiceTest, AFlushLeavesNothingOfWhatWasLoggedBefore)
{
    const LgService service;
    logFromThreads();
    EXPECT_TRUE(service.flush(std::chrono::minutes(10)));
    EXPECT_EQ(_logger->textsOf("events.log").size(), std::size_t{FEW_THREADS * FEW_EVENTS});
    EXPECT_TRUE(service.flush(std::chrono::milliseconds::max()));
}

TEST_F(LgServiceTest, AFlushEndsThoughOthersGoOnLogging)
{
    const LgService service;
    std::atomic<bool> isOver{false};
    std::thread other(
        [&isOver]
        {
            while (!isOver) ZU_LOG_WARNING(Kit, "other");
        });
    ZU_LOG_WARNING(Kit, "mine");
    EXPECT_TRUE(service.flush(std::chrono::minutes(10)));
    isOver = true;
    other.join();
    const std::vector<std::string> texts = _logger->textsOf("events.log");
    EXPECT_EQ(std::count(texts.begin(), texts.end(), "Kit mine"), 1);
}

TEST_F(LgServiceTest, AFlushGivesUpWhenItsTimeIsOver)
{
    const std::unique_ptr<Zu::LgInterProcessLock> lock = startWithLock();
    const LgService service;
    lock->lock();
    ZU_LOG_WARNING(Kit, "held up");
    EXPECT_FALSE(service.flush(std::chrono::milliseconds(0)));
    EXPECT_FALSE(service.flush(std::chrono::milliseconds::min()));
    EXPECT_FALSE(service.flush(std::chrono::milliseconds(20)));
    lock->unlock();
    EXPECT_TRUE(service.flush(std::chrono::minutes(10)));
}

TEST_F(LgServiceTest, AFlushOnTheWritingThreadDoesNotWaitForItself)
{
    // A stream buffer of the application's, which the reader calls.
    class Flushing : public std::stringbuf
    {
    public:
        const LgService* _service = nullptr;
        std::atomic<int> _result{-1};

    protected:
        int sync() override
        {
            if (_result < 0 && _service)
                _result = _service->flush(std::chrono::minutes(10)) ? 1 : 0;
            return 0;
        }
    };
    Flushing buffer;
    std::streambuf* const former = std::cout.rdbuf(&buffer);
    {
        support::VariableGuard variable("ZU_LOG_WARNING");
        variable.set("%");
        stop();
        start();
        const LgService service;
        buffer._service = &service;
        ZU_LOG_WARNING(Kit, "text");
        EXPECT_TRUE(service.flush(std::chrono::minutes(10)));
        EXPECT_EQ(buffer._result, 0);
    }
    std::cout.rdbuf(former);
    EXPECT_NE(buffer.str().find("Kit text"), std::string::npos);
}

TEST_F(LgServiceTest, AStatementOfTheFlushLevelReturnsWhenItsEventIsInTheFile)
{
    Zu::LgServiceOptions options;
    options._flushLevel = LgTypes::Warning;
    options._waitLimit = std::chrono::hours(1);
    const LgService service(options);
    Texts expected;
    for (int i = 0; i < 50; ++i)
    {
        ZU_LOG_INFORMATIONAL(Kit, "not waited for, but before " << i);
        ZU_LOG(Kit, i % 2 == 0 ? LgTypes::Warning : LgTypes::InternalError, "waited for " << i);
        expected.push_back("Kit waited for " + std::to_string(i));
        Texts written = texts();
        EXPECT_EQ(written, expected);
    }
}

TEST_F(LgServiceTest, LosesNothingOfALevelThatWaitsForRoom)
{
    constexpr int EVENTS = 20000;
    Zu::LgServiceOptions options;
    options._entries = 64;
    options._waitLevels = 1U << LgTypes::Warning;
    options._waitLimit = std::chrono::hours(1);
    std::vector<std::thread> threads;
    {
        const LgService service(options);
        for (int thread = 0; thread < FEW_THREADS; ++thread)
            threads.emplace_back(
                [thread]
                {
                    for (int i = 0; i < EVENTS; ++i) ZU_LOG_WARNING(Kit, thread << ' ' << i);
                });
        for (std::thread& thread : threads) thread.join();
        EXPECT_EQ(service.getLostCount(), 0U);
    }
    EXPECT_EQ(texts().size(), std::size_t{FEW_THREADS} * EVENTS);
}

// Nor of its text: here the characters run out long before the entries do.
TEST_F(LgServiceTest, CutsNoTextOfALevelThatWaitsForRoom)
{
    constexpr int EVENTS = 400;
    Zu::LgServiceOptions options;
    options._characters = 64 * 1024;
    options._waitLevels = 1U << LgTypes::Warning;
    options._waitLimit = std::chrono::hours(1);
    const auto textOf = [](int event)
    {
        return "Kit " + std::to_string(event) +
               std::string(9000U + static_cast<unsigned>(event), 'x') + " 17 end";
    };
    Texts expected;
    {
        const LgService service(options);
        for (int i = 0; i < EVENTS; ++i)
        {
            ZU_LOG_WARNING(Kit, i << std::string(9000U + static_cast<unsigned>(i), 'x') << ' ' << 17
                                  << " end");
            expected.push_back(textOf(i));
        }
        EXPECT_EQ(service.getLostCount(), 0U);
    }
    EXPECT_EQ(texts(), expected);
}

// Without that, this would take a day.
TEST_F(LgServiceTest, NobodyWaitsWhileAFileFails)
{
    Zu::LgServiceOptions options;
    options._entries = 64;
    options._waitLevels = 1U << LgTypes::Warning;
    options._flushLevel = LgTypes::Error;
    options._waitLimit = std::chrono::hours(1);
    options._directory = _elsewhere.file("logs");
    std::filesystem::create_directories(_elsewhere.file("logs/events.log"));
    support::StreamCapture errors(std::cerr);
    const LgService service(options);
    for (int i = 0; i < 1000; ++i) ZU_LOG_WARNING(Kit, "one of many");
    ZU_LOG_ERROR(Kit, "one that would wait");
    EXPECT_TRUE(service.health()._files.front()._isFailing);
    std::filesystem::remove(_elsewhere.file("logs/events.log"));
}

TEST_F(LgServiceTest, ItsHealthIsThatOfQueuesAndFiles)
{
    const LgService service;
    for (int i = 0; i < 10; ++i) ZU_LOG_WARNING(Kit, "warning");
    ZU_LOG_ERROR(Kit, "error");
    std::thread([] { ZU_LOG_INTERNAL_ERROR(Kit, "of another thread"); }).join();
    ASSERT_TRUE(service.flush(std::chrono::hours(1)));
    // One more batch: the counts of the last one may still be on their way.
    ZU_LOG_WARNING(Kit, "last");
    ASSERT_TRUE(service.flush(std::chrono::hours(1)));
    const Zu::LgServiceHealth health = service.health();
    EXPECT_GE(health._events[LgTypes::Warning], 10U);
    EXPECT_LE(health._events[LgTypes::Warning], 11U);
    EXPECT_EQ(health._events[LgTypes::Error], 1U);
    EXPECT_EQ(health._events[LgTypes::InternalError], 1U);
    EXPECT_EQ(health._events[LgTypes::Informational], 0U);
    EXPECT_EQ(health._lost, 0U);
    EXPECT_EQ(health._unwritten, 0U);
    EXPECT_EQ(health._waiting, 0U);
    EXPECT_EQ(health._behind.count(), 0);
    EXPECT_EQ(health._recovered, 0U);
    const auto isMine = [](const Zu::LgServiceHealth::Queue& queue)
    { return queue._thread == support::threadId(); };
    const auto mine = std::find_if(health._queues.begin(), health._queues.end(), isMine);
    ASSERT_NE(mine, health._queues.end());
    EXPECT_EQ(mine->_entries, 4096U);
    EXPECT_EQ(mine->_waiting, 0U);
    EXPECT_GE(mine->_largest, 1U);
    EXPECT_LE(mine->_largest, 11U);
    ASSERT_GE(health._files.size(), 1U);
    EXPECT_EQ(health._files.front()._path.substr(health._files.front()._path.size() - 10),
              "events.log");
    EXPECT_FALSE(health._files.front()._isFailing);
    EXPECT_EQ(health._files.front()._pending, 0U);
    EXPECT_EQ(health._files.front()._rotations, 0U);
}

TEST_F(LgServiceTest, ItsHealthSaysHowLongEventsHaveWaited)
{
    const std::unique_ptr<Zu::LgInterProcessLock> lock = startWithLock();
    const LgService service;
    const Zu::LgInterProcessLockGuard guard(lock.get());
    ZU_LOG_WARNING(Kit, "waits for the lock");
    EXPECT_EQ(service.health()._waiting, 1U);
    std::chrono::microseconds behind{0};
    while (behind.count() == 0) behind = service.health()._behind;
    while (service.health()._behind <= behind) std::this_thread::yield();
}

TEST_F(LgServiceTest, DeletesTheQueueOfAThreadThatHasEnded)
{
    const LgService service;
    ZU_LOG_WARNING(Kit, "own");
    const std::size_t before = numberOfQueues();
    for (int i = 0; i < 20; ++i)
    {
        std::thread([] { ZU_LOG_WARNING(Kit, "short"); }).join();
        while (numberOfQueues() > before) std::this_thread::yield();
    }
    while (texts().size() < 21) std::this_thread::yield();
}

TEST_F(LgServiceTest, OverflowShowsInTheLogAndAsACount)
{
    constexpr std::uint64_t ATTEMPTED = 9000;
    const auto lock = startWithLock();
    {
        const LgService service;
        lock->lock();
        // In a fresh queue: slots with marks of earlier losses would add their counts.
        std::thread(
            []
            {
                for (std::uint64_t i = 0; i < ATTEMPTED; ++i) ZU_LOG_WARNING(Kit, i);
            })
            .join();
        lock->unlock();
        EXPECT_GE(service.getLostCount(), ATTEMPTED - 4095);
    }
    std::uint64_t written = 0;
    std::uint64_t told = 0;
    for (const std::string& text : texts())
    {
        const std::string mark = "Event overflow [";
        if (text.rfind(mark, 0) == 0)
            told += std::stoull(text.substr(mark.size()));
        else
            ++written;
    }
    EXPECT_GT(told, 0U);
    EXPECT_LE(told, ATTEMPTED - written);
    const LgService next;
    EXPECT_EQ(next.getLostCount(), 0U);
}

TEST_F(LgServiceTest, WhatWasAttemptedIsWrittenOrCounted)
{
    constexpr std::uint64_t ATTEMPTED = 25000;
    const auto lock = startWithLock();
    std::uint64_t lost = 0;
    {
        const LgService service;
        for (std::uint64_t i = 0; i < ATTEMPTED; ++i)
        {
            // Occasionally nobody reads.
            if (i % 7500 == 0) lock->lock();
            ZU_LOG_WARNING(Kit, i);
            if (i % 7500 == 6500) lock->unlock();
        }
        lost = service.getLostCount();
        // The last round took the lock and did not release it.
        lock->unlock();
    }
    std::uint64_t written = 0;
    for (const std::string& text : texts())
        if (text.rfind("Kit ", 0) == 0) ++written;
    EXPECT_GT(lost, 0U);
    EXPECT_EQ(written + lost, ATTEMPTED);
}

// Producers that come in bursts, with pauses in which the reader falls asleep.
TEST_F(LgServiceTest, ALongRunKeepsEveryProducersOrderAndTheAccount)
{
    constexpr unsigned int PRODUCERS = 3;
    constexpr int EVENTS = 20000;
    std::uint64_t lost = 0;
    {
        const LgService service;
        std::vector<std::thread> producers;
        for (unsigned int producer = 0; producer < PRODUCERS; ++producer)
            producers.emplace_back(
                [producer]
                {
                    std::mt19937 random(producer);
                    for (int i = 0; i < EVENTS; ++i)
                    {
                        ZU_LOG_WARNING(Kit, producer << ' ' << i);
                        if (random() % 500 != 0) continue;
                        const LgQueue& own = Zu::LgLog::getQueue();
                        while (!own.isEmpty()) std::this_thread::yield();
                    }
                });
        for (std::thread& producer : producers) producer.join();
        lost = service.getLostCount();
    }
    std::vector<int> last(PRODUCERS, -1);
    std::uint64_t written = 0;
    for (const std::string& text : texts())
    {
        if (text.rfind("Kit ", 0) != 0) continue;
        std::istringstream words(text.substr(4));
        std::size_t producer = 0;
        int number = 0;
        words >> producer >> number;
        ASSERT_LT(producer, PRODUCERS);
        ASSERT_GT(number, last[producer]);
        last[producer] = number;
        ++written;
    }
    EXPECT_EQ(written + lost, PRODUCERS * EVENTS);
}

TEST_F(LgServiceTest, BlockingTraceLosesNothing)
{
    constexpr int LINES = 3000;
    const auto lock = startWithLock();
    Zu::LgLog::setBlockingTrace(true);
    const support::StreamCapture out(std::cout);
    {
        const LgService service;
        lock->lock();
        std::atomic<int> printed{0};
        std::thread producer(
            [&printed]
            {
                for (int i = 0; i < LINES; ++i, ++printed)
                    Zu::LgTrace::print(std::to_string(i).c_str());
            });
        // The most that can wait: from here on the producer has to wait for the reader.
        while (printed < 1022) std::this_thread::yield();
        lock->unlock();
        producer.join();
        EXPECT_EQ(service.getLostCount(), 0U);
    }
    Zu::LgLog::setBlockingTrace(false);
    const Texts lines = support::linesOf(out.text());
    ASSERT_EQ(lines.size(), static_cast<std::size_t>(LINES));
    for (int i = 0; i < LINES; ++i)
    {
        const std::string& line = lines[static_cast<std::size_t>(i)];
        EXPECT_EQ(line.substr(line.find("Tracing: ")), "Tracing: " + std::to_string(i));
    }
}

TEST_F(LgServiceTest, ASecondOneIsRefusedWhileTheFirstLives)
{
    {
        const LgService service;
        EXPECT_THROW(LgService(), LgServiceEx::ExAlreadyRunning);
        EXPECT_TRUE(Zu::LgLog::isLoggerActive());
        ZU_LOG_WARNING(Kit, "still there");
    }
    const LgService next;
    EXPECT_EQ(texts(), Texts{"Kit still there"});
}

TEST_F(LgServiceTest, AnEventThatComesLateIsWrittenByTheNextService)
{
    {
        const LgService service;
        ZU_LOG_WARNING(Kit, "in time");
    }
    // Like a thread that found the logger active just before the end.
    LgQueue& queue = Zu::LgLog::getQueue();
    ASSERT_TRUE(queue.reserveEntry(LgTypes::Warning));
    queue.getStream() << "late" << Zu::ends;
    queue.addEntry();
    EXPECT_EQ(texts(), Texts{"Kit in time"});
    {
        const LgService next;
    }
    EXPECT_EQ(texts(), (Texts{"Kit in time", "late"}));
}

TEST_F(LgServiceTest, ALoggerThatIsStartedAnewServesTheThreadsThatAreThere)
{
    {
        const LgService service;
        ZU_LOG_WARNING(Kit, "first");
    }
    EXPECT_EQ(texts(), Texts{"Kit first"});
    stop();
    start();
    {
        const LgService service;
        ZU_LOG_WARNING(Kit, "second");
    }
    EXPECT_EQ(texts(), Texts{"Kit second"});
}

TEST_F(LgServiceTest, TheReaderSurvivesALockWhoseHolderHasDied)
{
    // Standard error of the library, as far as it goes through std::cerr.
    const support::StreamCapture errors(std::cerr);
    const auto lock = startWithLock();
    const support::ProgramResult holder = support::runProgram("serviceProgram", {"die", _lockName});
    ASSERT_EQ(holder.exitCode, 0);
    {
        const LgService service;
        for (int i = 0; i < 10; ++i) ZU_LOG_WARNING(Kit, i);
    }
    EXPECT_EQ(texts().size(), 10U);
    const Texts told = support::linesOf(errors.text());
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told[0].rfind("The log service can't write an event and tries again: ", 0), 0U)
        << told[0];
}

TEST_F(LgServiceTest, AStatementInsideTheEndOfAThreadIsWritten)
{
    {
        const LgService service;
        std::thread(
            []
            {
                struct Logging
                {
                    ~Logging()
                    {
                        ZU_LOG_WARNING(Kit, "at the end of the thread");
                    }
                };
                static thread_local const Logging logging;
                static_cast<void>(&logging);
                ZU_LOG_WARNING(Kit, "in the thread");
            })
            .join();
    }
    EXPECT_EQ(texts(), (Texts{"Kit in the thread", "Kit at the end of the thread"}));
}

// The lines of a program's log file, without banners, each from the text of its level on.
Texts fileTexts(const std::string& path)
{
    Texts result;
    std::ifstream file(path, std::ios::binary);
    for (std::string line; std::getline(file, line);)
        if (line.find(": Service ") != std::string::npos)
            result.push_back(line.substr(line.find(": Service ") + 2));
    return result;
}

TEST(LgServiceProgram, IsRefusedBeforeTheStartOfTheLogger)
{
    const support::ProgramResult result = support::runProgram("serviceProgram", {"early"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "The package 'logger' is not started.\n");
}

TEST(LgServiceProgram, WritesAllBeforeAnOrderlyEnd)
{
    const support::TempDir dir;
    const support::ProgramResult result =
        support::runProgram("serviceProgram", {"threads"}, {{"B7Q_TEST_DIR", dir.path()}});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(fileTexts(dir.file("events.log")).size(), 300U);
}

TEST(LgServiceProgram, AProcessWithoutALockNameTakesNoLock)
{
    const support::TempDir dir;
    support::Environment environment{{"B7Q_TEST_DIR", dir.path()},
                                     {"ZU_LOG_WARNING", "+" + dir.file("shared.log")},
                                     {"ZU_INTERNAL_INTERPROCESS_LOG_LOCK", std::nullopt}};
    EXPECT_EQ(support::runProgram("serviceProgram", {"lock"}, environment).out, "no lock\n");
    environment["ZU_INTERNAL_INTERPROCESS_LOG_LOCK"] =
        "zuNamedLock" + std::to_string(support::processId());
    EXPECT_EQ(support::runProgram("serviceProgram", {"lock"}, environment).out, "a lock\n");
}

TEST(LgServiceProgram, MayExitWhileTheServiceLivesAndAThreadLogs)
{
    const support::ProgramResult result = support::runProgram("serviceProgram", {"exit"});
    EXPECT_FALSE(result.aborted);
    EXPECT_EQ(result.exitCode, 7);
    EXPECT_EQ(result.out, "lost some: 0\n");
}

TEST(LgServiceProgram, AnExitReportsWhatLimitedStatementsOwe)
{
    const support::TempDir dir;
    const support::ProgramResult result =
        support::runProgram("serviceProgram", {"owe"}, {{"B7Q_TEST_DIR", dir.path()}});
    EXPECT_EQ(result.exitCode, 8);
    const Texts events = fileTexts(dir.file("events.log"));
    ASSERT_EQ(events.size(), 3U);
    EXPECT_EQ(events[0], "Service number 0");
    EXPECT_EQ(events[1], "Service number 3 (2 left out)");
    EXPECT_EQ(events[2].rfind("Service (1 left out, serviceProgram.cpp:", 0), 0U) << events[2];
}

TEST(LgServiceProgram, AChildOfAForkEndsAndLogsToStandardOutput)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no fork";
    if (support::underSanitizer)
        GTEST_SKIP() << "what the sanitizers lock does not survive a fork beside other threads";
    const support::TempDir dir;
    const support::ProgramResult result =
        support::runProgram("serviceProgram", {"fork"},
                            {{"B7Q_TEST_DIR", dir.path()},
                             {"ZU_LOG_GROUPS", "Test=Informational"},
                             {"ZU_LOG_SERVICE_MAPPING_DIRECTORY", dir.path()}});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "Service in the child\nService in a thread of the child\n");
    Texts events = fileTexts(dir.file("events.log"));
    events.erase(std::remove(events.begin(), events.end(), "Service busy"), events.end());
    // The parent's first line may be written after the fork, and so behind those of its children.
    ASSERT_FALSE(events.empty());
    EXPECT_EQ(events.back(), "Service child ended with 3");
    std::sort(events.begin(), events.end());
    EXPECT_EQ(events, (Texts{"Service before the fork", "Service by a service of its own",
                             "Service by a service of its own", "Service child ended with 3"}));
}

// Each process writes the line that it completed, once; the child by a service of its own, as the
// logger was active when the statement began.
TEST(LgServiceProgram, AStatementWhoseOperandForksIsCompletedByBothProcesses)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no fork";
    if (support::underSanitizer)
        GTEST_SKIP() << "what the sanitizers lock does not survive a fork beside other threads";
    const support::TempDir dir;
    const support::ProgramResult result =
        support::runProgram("serviceProgram", {"forkInside"}, {{"B7Q_TEST_DIR", dir.path()}});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "Service next of the child\n");
    Texts events = fileTexts(dir.file("events.log"));
    // The parent may write its line at any time.
    const auto ofTheParent =
        std::find(events.begin(), events.end(), "Service completed by the parent, once");
    ASSERT_NE(ofTheParent, events.end());
    events.erase(ofTheParent);
    EXPECT_EQ(events, (Texts{"Service completed by the child, once",
                             "Service by a service of its own", "Service child ended with 3"}));
}

TEST(LgServiceProgram, WhatWaitedAtAForkIsWrittenOnceAndByTheParent)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no fork";
    if (support::underSanitizer)
        GTEST_SKIP() << "what the sanitizers lock does not survive a fork beside other threads";
    const support::TempDir dir;
    const support::ProgramResult result = support::runProgram(
        "serviceProgram", {"forkBetween"},
        {{"B7Q_TEST_DIR", dir.path()}, {"ZU_LOG_SERVICE_MAPPING_DIRECTORY", dir.path()}});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out, "in the child: lost 0, queues 1\n");
    Texts expected{"Service in time", "Service late of the child", "Service in the child",
                   "Service in a thread of the child"};
    expected.insert(expected.end(), 4094, "Service late");
    expected.insert(expected.end(),
                    {"Service late of an ended thread", "Service late of a living thread",
                     "Service child ended with 3"});
    EXPECT_EQ(fileTexts(dir.file("events.log")), expected);
}

// Each process keeps what it has logged itself.
TEST(LgServiceProgram, WhatWaitsForAFileAtAForkIsWrittenOnceAndByTheParent)
{
    if (support::onWindows) GTEST_SKIP() << "Windows has no fork";
    if (support::underSanitizer)
        GTEST_SKIP() << "what the sanitizers lock does not survive a fork beside other threads";
    const support::TempDir dir;
    const support::TempDir maps;
    const std::string log = dir.file("events.log");
    std::filesystem::create_directory(log);
    const support::Environment environment{{"B7Q_TEST_DIR", dir.path()},
                                           {"ZU_LOG_SERVICE_MAPPING_DIRECTORY", maps.path()}};
    const support::ProgramResult result =
        support::runProgram("serviceProgram", {"forkFailing"}, environment);
    EXPECT_EQ(result.exitCode, 3) << result.err;
    EXPECT_EQ(fileTexts(log), Texts{"Service in the parent"});
    support::runProgram("serviceProgram", {"service"}, environment);
    EXPECT_EQ(fileTexts(log), (Texts{"Service in the parent", "Service in the child"}));
}

} // namespace
