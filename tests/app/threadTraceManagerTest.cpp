#include "app/threadTraceManager.h"

#include "app/lgService.h"
#include "base/traceStatement.h"
#include "support/childProcess.h"
#include "support/logTest.h"
#include "support/platform.h"
#include "support/traceTest.h"

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <cstdio>
#include <gtest/gtest.h>
#include <iostream>
#include <limits>
#include <map>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <streambuf>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace
{

ZU_TRACE_LEVEL(Main);

using support::coutOf;
using Zu::LogTraceManager;
using Zu::ThreadTraceManager;
using Zu::Trace;
using Zu::TraceManager;

using Texts = std::vector<std::string>;

static_assert(std::is_base_of_v<TraceManager, ThreadTraceManager>);
static_assert(std::is_base_of_v<TraceManager, LogTraceManager>);
static_assert(!std::is_copy_constructible_v<ThreadTraceManager>);
static_assert(!std::is_copy_constructible_v<LogTraceManager>);

std::string prefixOf(std::uint32_t thread)
{
    char text[32];
    std::snprintf(text, sizeof text, "(0x%08x) ", static_cast<unsigned int>(thread));
    return text;
}

std::string ownPrefix()
{
    return prefixOf(support::threadId());
}

bool isCurrent(const TraceManager& manager)
{
    return &TraceManager::getInstance() == &manager;
}

// Lets threads take steps in a given order.
class Turns
{
public:
    template <class Act> void take(int turn, Act act)
    {
        std::unique_lock lock(_mutex);
        _changed.wait(lock, [&] { return _turn == turn; });
        // The action takes locks of its own.
        lock.unlock();
        act();
        lock.lock();
        ++_turn;
        _changed.notify_all();
    }

private:
    std::mutex _mutex;
    std::condition_variable _changed;
    int _turn = 0;
};

using Scope = std::optional<const Trace::Entry>;

void enter(Scope& scope, const char* name)
{
    scope.emplace(TraceManager::getInstance().getTrace(), *TraceLevels::Main, name, "a.cpp", 1);
}

// Two threads whose trees of two scopes interleave; gives their ids.
struct TwoThreads
{
    TwoThreads()
    {
        std::thread first(
            [this]
            {
                _first = support::threadId();
                Scope outer;
                Scope inner;
                _turns.take(0, [&] { enter(outer, "first"); });
                _turns.take(2, [&] { enter(inner, "first inner"); });
                _turns.take(4, [] { ZU_TRACE(Main, "first text"); });
                _turns.take(6, [&] { inner.reset(); });
                _turns.take(8, [&] { outer.reset(); });
            });
        std::thread second(
            [this]
            {
                _second = support::threadId();
                Scope outer;
                _turns.take(1, [&] { enter(outer, "second"); });
                _turns.take(3, [] { ZU_TRACE(Main, "second text"); });
                _turns.take(5, [&] { outer.reset(); });
                _turns.take(7, [] { ZU_TRACE(Main, "second again"); });
            });
        first.join();
        second.join();
    }

    std::uint32_t _first = 0;
    std::uint32_t _second = 0;

private:
    Turns _turns;
};

class ThreadTraceManagerTest : public support::TracingTest
{
protected:
    ThreadTraceManagerTest()
    {
        // The first manager of a process is current whatever its priority.
        const ThreadTraceManager first;
    }

    ~ThreadTraceManagerTest() override
    {
        EXPECT_TRUE(isCurrent(_default));
    }

    TraceManager& _default = TraceManager::getInstance();
};

TEST_F(ThreadTraceManagerTest, DisplacesTheDefaultManagerUntilItEnds)
{
    {
        const ThreadTraceManager manager;
        EXPECT_TRUE(isCurrent(manager));
    }
    EXPECT_TRUE(isCurrent(_default));
    const LogTraceManager manager;
    EXPECT_TRUE(isCurrent(manager));
}

template <class Manager, class Other> void expectPriorities(const TraceManager& atFirst)
{
    for (const int priority : {0, -1, std::numeric_limits<int>::min()})
    {
        const Manager leftOut(priority);
        EXPECT_TRUE(isCurrent(atFirst)) << priority;
    }
    const Other first;
    const Manager equal;
    EXPECT_TRUE(isCurrent(first));
    const Manager equalInWords(1);
    EXPECT_TRUE(isCurrent(first));
    const Manager higher(2);
    EXPECT_TRUE(isCurrent(higher));
    const Other lower(1);
    EXPECT_TRUE(isCurrent(higher));
    const Other highest(std::numeric_limits<int>::max());
    EXPECT_TRUE(isCurrent(highest));
}

TEST_F(ThreadTraceManagerTest, OnlyAHigherPriorityDisplaces)
{
    expectPriorities<ThreadTraceManager, ThreadTraceManager>(_default);
    expectPriorities<ThreadTraceManager, LogTraceManager>(_default);
    expectPriorities<LogTraceManager, ThreadTraceManager>(_default);
}

TEST_F(ThreadTraceManagerTest, TheThreadsIdStandsInFrontOfEachLine)
{
    const ThreadTraceManager manager;
    const std::string out = coutOf(
        []
        {
            ZU_TRACE_SCOPE(Main, "scope");
            ZU_TRACE(Main, "text");
        });
    const std::string prefix = ownPrefix();
    EXPECT_EQ(out, prefix + "+ scope\n" + prefix + "  | text\n" + prefix + "  /\n");
}

TEST_F(ThreadTraceManagerTest, TheOptionNoprefixLeavesTheIdOut)
{
    const ThreadTraceManager manager;
    set("noprefix");
    EXPECT_EQ(coutOf([] { ZU_TRACE(Main, "without"); }), "| without\n");
    set("prefix");
    EXPECT_EQ(coutOf([] { ZU_TRACE(Main, "with"); }), ownPrefix() + "| with\n");
}

TEST_F(ThreadTraceManagerTest, TheIdStandsBetweenTheProcessAndTheSource)
{
    const ThreadTraceManager manager;
    set("noprefix,pid");
    const std::string process = coutOf([] { ZU_TRACE(Main, "text"); });
    ASSERT_EQ(process.substr(process.size() - 7), "| text\n");
    set("prefix");
    EXPECT_EQ(coutOf([] { ZU_TRACE(Main, "text"); }),
              process.substr(0, process.size() - 7) + ownPrefix() + "| text\n");
    set("nopid,line");
    const std::string source = coutOf([] { ZU_TRACE(Main, "text"); });
    EXPECT_EQ(source.rfind(ownPrefix(), 0), 0U) << source;
    EXPECT_NE(source, ownPrefix() + "| text\n");
}

TEST_F(ThreadTraceManagerTest, AThreadKeepsItsTrace)
{
    ThreadTraceManager manager;
    Trace& own = manager.getTrace();
    EXPECT_EQ(&manager.getTrace(), &own);
    std::thread other(
        [&]
        {
            const Trace* const others = &manager.getTrace();
            EXPECT_NE(others, &own);
            EXPECT_EQ(&manager.getTrace(), others);
        });
    other.join();
    EXPECT_EQ(&manager.getTrace(), &own);
}

TEST_F(ThreadTraceManagerTest, TreesOfThreadsThatInterleaveHaveIndentationsOfTheirOwn)
{
    const ThreadTraceManager manager;
    set("noprefix");
    EXPECT_EQ(coutOf([] { const TwoThreads threads; }), "+ first\n"
                                                        "+ second\n"
                                                        "  + first inner\n"
                                                        "  | second text\n"
                                                        "  | | first text\n"
                                                        "  /\n"
                                                        "  | /\n"
                                                        "| second again\n"
                                                        "  /\n");
}

TEST_F(ThreadTraceManagerTest, LinesThatInterleaveTellTheirThreads)
{
    const ThreadTraceManager manager;
    std::string first;
    std::string second;
    const std::string out = coutOf(
        [&]
        {
            const TwoThreads threads;
            first = prefixOf(threads._first);
            second = prefixOf(threads._second);
        });
    EXPECT_NE(first, second);
    EXPECT_EQ(out, first + "+ first\n" + second + "+ second\n" + first + "  + first inner\n" +
                       second + "  | second text\n" + first + "  | | first text\n" + second +
                       "  /\n" + first + "  | /\n" + second + "| second again\n" + first + "  /\n");
}

TEST_F(ThreadTraceManagerTest, AThreadBeginsAtTheMarginWithinAScopeOfAnother)
{
    const ThreadTraceManager manager;
    set("noprefix");
    const std::string out = coutOf(
        []
        {
            ZU_TRACE_SCOPE(Main, "outer");
            std::thread([] { ZU_TRACE_SCOPE(Main, "inner"); }).join();
            ZU_TRACE(Main, "text");
        });
    EXPECT_EQ(out, "+ outer\n+ inner\n  /\n  | text\n  /\n");
}

// A scope that the thread enters and never leaves.
void enterForEver()
{
    alignas(Trace::Entry) static unsigned char place[sizeof(Trace::Entry)];
    new (place) Trace::Entry(TraceManager::getInstance().getTrace(), *TraceLevels::Main,
                             "never left", "a.cpp", 1);
}

TEST_F(ThreadTraceManagerTest, AThreadBeginsAtTheMarginAfterOneThatEndedInsideAScope)
{
    const ThreadTraceManager manager;
    set("noprefix");
    const std::string out = coutOf(
        []
        {
            for (int i = 0; i < 3; ++i)
                std::thread(
                    []
                    {
                        enterForEver();
                        ZU_TRACE(Main, "text");
                    })
                    .join();
        });
    const std::string once = "+ never left\n  | text\n";
    EXPECT_EQ(out, once + once + once);
}

TEST_F(ThreadTraceManagerTest, AManagerMayEndWithinAScope)
{
    const std::string out = coutOf(
        []
        {
            auto manager = std::make_unique<ThreadTraceManager>();
            ZU_TRACE_SCOPE(Main, "scope");
            manager.reset();
            // From here on the default manager formats and prints lines.
            ZU_TRACE(Main, "text");
        });
    EXPECT_EQ(out, ownPrefix() + "+ scope\n| text\n" + ownPrefix() + "  /\n");
}

TEST_F(ThreadTraceManagerTest, AManagerMayEndWithinScopesOfOtherThreads)
{
    set("noprefix");
    const std::string out = coutOf(
        []
        {
            Turns turns;
            auto manager = std::make_unique<ThreadTraceManager>();
            std::thread thread(
                [&turns]
                {
                    Scope scope;
                    turns.take(0, [&] { enter(scope, "scope"); });
                    turns.take(2, [&] { scope.reset(); });
                });
            turns.take(1, [&] { manager.reset(); });
            thread.join();
        });
    EXPECT_EQ(out, "+ scope\n  /\n");
}

TEST_F(ThreadTraceManagerTest, TheIndentationIsTheThreadsAndNotTheManagers)
{
    set("noprefix");
    const std::string out = coutOf(
        []
        {
            auto manager = std::make_unique<ThreadTraceManager>();
            ZU_TRACE_SCOPE(Main, "scope");
            manager = nullptr;
            const ThreadTraceManager next;
            ZU_TRACE(Main, "text");
        });
    EXPECT_EQ(out, "+ scope\n  | text\n  /\n");
}

TEST_F(ThreadTraceManagerTest, PrintsALineAsItIs)
{
    const ThreadTraceManager manager;
    EXPECT_EQ(coutOf([&] { manager.print("100%s %n"); }), "100%s %n\n");
    EXPECT_EQ(coutOf([&] { manager.print("two\nlines\n"); }), "two\nlines\n\n");
    const std::string longText(100000, 'x');
    EXPECT_EQ(coutOf([&] { manager.print(longText.c_str()); }), longText + '\n');
}

TEST_F(ThreadTraceManagerTest, NullAndEmptyTextsPrintNothing)
{
    const ThreadTraceManager manager;
    EXPECT_EQ(coutOf([&] { manager.print(nullptr); }), "");
    EXPECT_EQ(coutOf([&] { manager.print(""); }), "");
}

// Yields after each character, so that lines that are not written as a whole get mixed.
class YieldingBuffer : public std::streambuf
{
public:
    std::string text()
    {
        const std::lock_guard guard(_mutex);
        return _text;
    }

protected:
    int_type overflow(int_type character) override
    {
        {
            const std::lock_guard guard(_mutex);
            _text += traits_type::to_char_type(character);
        }
        std::this_thread::yield();
        return character;
    }

private:
    std::mutex _mutex;
    std::string _text;
};

TEST_F(ThreadTraceManagerTest, LinesOfManyThreadsAreWhole)
{
    constexpr int THREADS = 6;
    constexpr int LINES = 200;
    const ThreadTraceManager manager;
    std::vector<std::uint32_t> ids(THREADS);
    YieldingBuffer buffer;
    {
        const support::BufferGuard guard(std::cout, buffer);
        // All of them live until all are done, so that no id is reused.
        std::vector<std::thread> threads;
        Turns turns;
        for (int thread = 0; thread < THREADS; ++thread)
            threads.emplace_back(
                [&, thread]
                {
                    ids[static_cast<std::size_t>(thread)] = support::threadId();
                    for (int i = 0; i < LINES; ++i)
                    {
                        ZU_TRACE_SCOPE(Main, "scope");
                        ZU_TRACE(Main, "line " << i << " of " << thread);
                    }
                    turns.take(thread, [] {});
                });
        for (std::thread& thread : threads) thread.join();
    }
    std::map<std::string, Texts> linesOf;
    const std::size_t size = prefixOf(0).size();
    for (const std::string& line : support::linesOf(buffer.text()))
        linesOf[line.substr(0, size)].push_back(line.substr(std::min(size, line.size())));
    EXPECT_EQ(linesOf.size(), static_cast<std::size_t>(THREADS));
    for (int thread = 0; thread < THREADS; ++thread)
    {
        Texts expected;
        for (int i = 0; i < LINES; ++i)
        {
            expected.push_back("+ scope");
            expected.push_back("  | line " + std::to_string(i) + " of " + std::to_string(thread));
            expected.push_back("  /");
        }
        EXPECT_EQ(linesOf[prefixOf(ids[static_cast<std::size_t>(thread)])], expected) << thread;
    }
}

TEST_F(ThreadTraceManagerTest, AStatementInsideTheEndOfAThreadIsPrinted)
{
    const ThreadTraceManager manager;
    set("noprefix");
    const std::string out = coutOf(
        []
        {
            std::thread(
                []
                {
                    struct Tracing
                    {
                        ~Tracing()
                        {
                            ZU_TRACE(Main, "at the end of the thread");
                        }
                    };
                    static thread_local const Tracing tracing;
                    static_cast<void>(&tracing);
                    ZU_TRACE(Main, "in the thread");
                })
                .join();
        });
    EXPECT_EQ(out, "| in the thread\n| at the end of the thread\n");
}

// Lines of level Tracing go to a file of their own.
class LogTraceManagerTest : public support::LogFilesTest
{
protected:
    LogTraceManagerTest()
    {
        Trace::setOptions("reset");
        // As above: the first manager would be current whatever its priority.
        const LogTraceManager first;
        static_cast<void>(TraceManager::getInstance());
        set("ZU_LOG_TRACING", _file);
    }

    ~LogTraceManagerTest() override
    {
        Trace::setOptions("reset");
    }

    // The lines of the file without banners and the empty lines beside them.
    Texts lines() const
    {
        Texts found;
        for (const std::string& line : support::linesOf(support::bytesOf(_file)))
            if (!line.empty() && line.rfind("=====", 0) != 0) found.push_back(line);
        return found;
    }

    // The text behind the level in the lines of this thread.
    Texts textsOf(std::uint32_t thread) const
    {
        const std::string mark = prefixOf(thread) + "Tracing: ";
        Texts found;
        for (const std::string& line : lines())
            if (const std::size_t at = line.find(mark); at != std::string::npos)
                found.push_back(line.substr(at + mark.size()));
        return found;
    }

    const std::string _file = _dir.file("tracing.log");
};

TEST_F(LogTraceManagerTest, LinesAreEventsOfLevelTracingWithoutAPrefix)
{
    init();
    const std::string out = coutOf(
        []
        {
            const LogTraceManager manager;
            const Zu::LgService service;
            ZU_TRACE_SCOPE(Main, "scope");
            ZU_TRACE(Main, "text 100%s %n");
        });
    EXPECT_EQ(out, "");
    EXPECT_EQ(lines().size(), 3U);
    EXPECT_EQ(textsOf(support::threadId()), (Texts{"+ scope", "  | text 100%s %n", "  /"}));
    EXPECT_EQ(support::bytesOf(logFile("events.log")).find("scope"), std::string::npos);
}

TEST_F(LogTraceManagerTest, ALineIsTheEventsWholeText)
{
    set("ZU_LOG_DISABLE_TIMESTAMPS", "1");
    init();
    {
        const LogTraceManager manager;
        const Zu::LgService service;
        ZU_TRACE_SCOPE(Main, "scope");
        ZU_TRACE(Main, "text");
    }
    EXPECT_EQ(lines(), (Texts{"+ scope", "  | text", "  /"}));
}

TEST_F(LogTraceManagerTest, TreesOfThreadsHaveIndentationsOfTheirOwn)
{
    init();
    std::uint32_t first = 0;
    std::uint32_t second = 0;
    {
        const LogTraceManager manager;
        const Zu::LgService service;
        const TwoThreads threads;
        first = threads._first;
        second = threads._second;
    }
    EXPECT_EQ(lines().size(), 9U);
    EXPECT_EQ(textsOf(first),
              (Texts{"+ first", "  + first inner", "  | | first text", "  | /", "  /"}));
    EXPECT_EQ(textsOf(second), (Texts{"+ second", "  | second text", "  /", "| second again"}));
}

TEST_F(LogTraceManagerTest, UnlessAFileIsNamedTheLogWritesTracingToStandardOutput)
{
    set("ZU_LOG_TRACING", "");
    init();
    const std::string out = coutOf(
        []
        {
            const LogTraceManager manager;
            const Zu::LgService service;
            ZU_TRACE(Main, "text");
        });
    const std::string end = " " + ownPrefix() + "Tracing: | text\n";
    ASSERT_GT(out.size(), end.size());
    EXPECT_EQ(out.substr(out.size() - end.size()), end);
    EXPECT_EQ(support::countOf(out, "\n"), 1U);
}

TEST_F(LogTraceManagerTest, WithoutARunningLoggerLinesGoToStandardOutput)
{
    const LogTraceManager manager;
    const auto trace = []
    {
        ZU_TRACE_SCOPE(Main, "scope");
        ZU_TRACE(Main, "text");
    };
    EXPECT_EQ(coutOf(trace), "+ scope\n  | text\n  /\n");
    init();
    EXPECT_EQ(coutOf(trace), "+ scope\n  | text\n  /\n");
    {
        const Zu::LgService service;
    }
    EXPECT_EQ(coutOf(trace), "+ scope\n  | text\n  /\n");
    EXPECT_EQ(lines(), Texts());
}

TEST_F(LogTraceManagerTest, LinesOfManyThreadsAreWholeWithoutARunningLogger)
{
    constexpr int THREADS = 6;
    constexpr int LINES = 200;
    const LogTraceManager manager;
    YieldingBuffer buffer;
    {
        const support::BufferGuard guard(std::cout, buffer);
        std::vector<std::thread> threads;
        for (int thread = 0; thread < THREADS; ++thread)
            threads.emplace_back(
                [thread]
                {
                    for (int i = 0; i < LINES; ++i) ZU_TRACE(Main, "line of " << thread);
                });
        for (std::thread& thread : threads) thread.join();
    }
    std::map<std::string, int> counts;
    for (const std::string& line : support::linesOf(buffer.text())) ++counts[line];
    EXPECT_EQ(counts.size(), static_cast<std::size_t>(THREADS));
    for (const auto& [line, count] : counts) EXPECT_EQ(count, LINES) << line;
}

TEST_F(LogTraceManagerTest, TheOptionPrefixChangesNothing)
{
    const LogTraceManager manager;
    for (const char* const option : {"noprefix", "prefix"})
    {
        Trace::setOptions(option);
        EXPECT_EQ(coutOf([] { ZU_TRACE(Main, "text"); }), "| text\n") << option;
    }
}

TEST_F(LogTraceManagerTest, NullAndEmptyTextsAreNoEvents)
{
    init();
    const LogTraceManager manager;
    EXPECT_EQ(coutOf([&] { manager.print(nullptr); }), "");
    EXPECT_EQ(coutOf([&] { manager.print(""); }), "");
    {
        const Zu::LgService service;
        manager.print(nullptr);
        manager.print("");
        manager.print("text");
    }
    EXPECT_EQ(textsOf(support::threadId()), Texts{"text"});
    EXPECT_EQ(lines().size(), 1U);
}

TEST_F(LogTraceManagerTest, AManagerMayEndWithinAScope)
{
    init();
    const std::string out = coutOf(
        []
        {
            const Zu::LgService service;
            auto manager = std::make_unique<LogTraceManager>();
            ZU_TRACE_SCOPE(Main, "scope");
            manager.reset();
        });
    // The default manager prints the exit, as formatted by the thread's own Trace.
    EXPECT_EQ(out, "  /\n");
    EXPECT_EQ(textsOf(support::threadId()), Texts{"+ scope"});
}

TEST_F(LogTraceManagerTest, AThreadBeginsAtTheMarginAfterOneThatEndedInsideAScope)
{
    const LogTraceManager manager;
    const std::string out = coutOf(
        []
        {
            for (int i = 0; i < 2; ++i) std::thread(enterForEver).join();
        });
    EXPECT_EQ(out, "+ never left\n+ never left\n");
}

// The output of a run of the program that ends with this value.
std::string outputOf(const std::string& what, int exitCode = 0)
{
    const support::ProgramResult result =
        support::runProgram("threadTraceProgram", {what}, {{"ZU_TRACE_OPTIONS", std::nullopt}});
    EXPECT_FALSE(result.aborted);
    EXPECT_EQ(result.exitCode, exitCode);
    EXPECT_EQ(result.err, "");
    return result.out;
}

// The lines, grouped by the prefix of their thread.
std::map<std::string, Texts> linesByPrefix(const std::string& text)
{
    const std::size_t size = prefixOf(0).size();
    std::map<std::string, Texts> found;
    for (const std::string& line : support::linesOf(text))
        found[line.substr(0, size)].push_back(line.substr(std::min(size, line.size())));
    return found;
}

Texts treeOf(int thread)
{
    Texts tree;
    for (int i = 0; i < 100; ++i)
    {
        tree.push_back("+ scope");
        tree.push_back("  | thread " + std::to_string(thread) + " line " + std::to_string(i));
        tree.push_back("  /");
    }
    return tree;
}

TEST(ThreadTraceManagerProgram, LinesOfThreadsAreWholeInStandardOutput)
{
    // A thread may get the id of one that has ended.
    std::vector<Texts> expected;
    for (int thread = 0; thread < 4; ++thread) expected.push_back(treeOf(thread));
    std::size_t count = 0;
    for (const auto& [prefix, lines] : linesByPrefix(outputOf("threads")))
    {
        count += lines.size();
        ASSERT_EQ(lines.size() % 300, 0U) << prefix;
        for (auto line = lines.begin(); line != lines.end(); line += 300)
            EXPECT_NE(std::find(expected.begin(), expected.end(), Texts(line, line + 300)),
                      expected.end());
    }
    EXPECT_EQ(count, 1200U);
}

TEST(ThreadTraceManagerProgram, MayExitWhileTheManagerLivesAndAThreadTraces)
{
    // At the end of a process its runtime empties and changes the stream without regard to threads,
    // so only what was written before the end began is sure to be whole.
    const Texts tree = treeOf(0);
    const Texts lines = support::linesOf(outputOf("exit", 7));
    ASSERT_GE(lines.size(), 2 * tree.size());
    const std::size_t size = prefixOf(0).size();
    for (std::size_t i = 0; i < 2 * tree.size(); ++i)
        ASSERT_EQ(lines[i].substr(std::min(size, lines[i].size())), tree[i % tree.size()]) << i;
}

TEST(ThreadTraceManagerProgram, WorksToTheEndOfStaticObjects)
{
    Texts texts;
    for (const auto& [prefix, lines] : linesByPrefix(outputOf("late"))) texts = lines;
    EXPECT_EQ(texts, (Texts{"| beginning", "| middle", "| end"}));
}

} // namespace
