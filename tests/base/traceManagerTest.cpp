#include "base/traceManager.h"

#include "base/exInternalError.h"
#include "base/trace.h"
#include "base/traceLevel.h"
#include "base/traceStatement.h"

#include "support/traceTest.h"

#include <gtest/gtest.h>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

namespace
{

ZU_TRACE_LEVEL(Main);

using support::coutOf;
using Zu::Trace;
using Zu::TraceManager;

using Texts = std::vector<std::string>;

static_assert(std::is_abstract_v<TraceManager>);
static_assert(!std::is_copy_constructible_v<TraceManager>);
static_assert(!std::is_copy_assignable_v<TraceManager>);

// Keeps the lines.
class Recording : public TraceManager
{
public:
    explicit Recording(int priority) : TraceManager(priority) {}

    Trace& getTrace() override
    {
        ++_asked;
        return _trace;
    }

    void print(const char* text) const override
    {
        _lines.push_back(text);
    }

    Trace _trace;
    int _asked = 0;
    mutable Texts _lines;
};

// Gives each thread a Trace, and prints as managers do.
class PerThread : public TraceManager
{
public:
    PerThread() : TraceManager(1) {}

    Trace& getTrace() override
    {
        static thread_local Trace trace;
        return trace;
    }
};

// Counts how often the output is flushed.
class CountingBuffer : public std::stringbuf
{
public:
    int _flushes = 0;

protected:
    int sync() override
    {
        ++_flushes;
        return 0;
    }
};

class TraceManagerTest : public support::TracingTest
{
protected:
    TraceManagerTest()
    {
        // The first manager of a process is current whatever its priority; later tests could not
        // check that.
        const Recording first(1);
    }

    ~TraceManagerTest() override
    {
        EXPECT_TRUE(isCurrent(_default));
    }

    static bool isCurrent(const TraceManager& manager)
    {
        return &TraceManager::getInstance() == &manager;
    }

    TraceManager& _default = TraceManager::getInstance();
};

TEST_F(TraceManagerTest, TheDefaultManagerHasOneTraceForAllThreads)
{
    Trace& trace = _default.getTrace();
    EXPECT_EQ(&_default.getTrace(), &trace);
    const Trace* ofThread = nullptr;
    std::thread([&] { ofThread = &TraceManager::getInstance().getTrace(); }).join();
    EXPECT_EQ(ofThread, &trace);
}

TEST_F(TraceManagerTest, AnEqualOrLowerPriorityDoesNotDisplaceTheDefault)
{
    for (const int priority : {0, -1, -2147483647 - 1})
    {
        const Recording manager(priority);
        EXPECT_TRUE(isCurrent(_default)) << priority;
    }
}

TEST_F(TraceManagerTest, AHigherPriorityDisplacesTheDefault)
{
    for (const int priority : {1, 2147483647})
    {
        const Recording manager(priority);
        EXPECT_TRUE(isCurrent(manager)) << priority;
    }
}

TEST_F(TraceManagerTest, AnEqualPriorityDoesNotDisplace)
{
    auto first = std::make_unique<Recording>(1);
    const Recording second(1);
    EXPECT_TRUE(isCurrent(*first));
    first.reset();
    EXPECT_TRUE(isCurrent(_default));
}

TEST_F(TraceManagerTest, OnlyAStrictlyHigherPriorityDisplaces)
{
    const Recording first(5);
    const Recording lower(4);
    EXPECT_TRUE(isCurrent(first));
    const Recording equal(5);
    EXPECT_TRUE(isCurrent(first));
    const Recording higher(6);
    EXPECT_TRUE(isCurrent(higher));
    const Recording lowerAgain(5);
    EXPECT_TRUE(isCurrent(higher));
}

TEST_F(TraceManagerTest, AnEarlierManagerIsNotRestored)
{
    const Recording first(1);
    {
        const Recording second(2);
        EXPECT_TRUE(isCurrent(second));
    }
    EXPECT_TRUE(isCurrent(_default));
}

TEST_F(TraceManagerTest, TheEndOfAManagerThatIsNotCurrentChangesNothing)
{
    auto displaced = std::make_unique<Recording>(1);
    const Recording current(2);
    auto leftOut = std::make_unique<Recording>(2);
    displaced.reset();
    EXPECT_TRUE(isCurrent(current));
    leftOut.reset();
    EXPECT_TRUE(isCurrent(current));
}

TEST_F(TraceManagerTest, AfterAManagersEndPrioritiesAreThoseBesideTheDefault)
{
    {
        const Recording ended(7);
    }
    const Recording same(0);
    EXPECT_TRUE(isCurrent(_default));
    const Recording higher(1);
    EXPECT_TRUE(isCurrent(higher));
}

TEST_F(TraceManagerTest, PrintsALine)
{
    EXPECT_EQ(coutOf([&] { _default.print("text"); }), "text\n");
    EXPECT_EQ(coutOf([&] { _default.print("100%s %n"); }), "100%s %n\n");
    EXPECT_EQ(coutOf([&] { _default.print("two\nlines\n"); }), "two\nlines\n\n");
    EXPECT_EQ(coutOf([&] { _default.print(" "); }), " \n");
    const std::string longText(100000, 'x');
    EXPECT_EQ(coutOf([&] { _default.print(longText.c_str()); }), longText + '\n');
}

TEST_F(TraceManagerTest, NullAndEmptyTextsPrintNothing)
{
    EXPECT_EQ(coutOf([&] { _default.print(nullptr); }), "");
    EXPECT_EQ(coutOf([&] { _default.print(""); }), "");
}

TEST_F(TraceManagerTest, ALineIsWrittenInOnePiece)
{
    support::PieceRecorder recorder;
    {
        const support::BufferGuard guard(std::cout, recorder);
        TraceManager::getInstance().print("text");
    }
    EXPECT_EQ(recorder.pieces(), (std::vector<std::string>{"text\n", "|"}));
}

TEST_F(TraceManagerTest, EachLineIsFlushed)
{
    CountingBuffer buffer;
    {
        const support::BufferGuard guard(std::cout, buffer);
        _default.print("one");
        EXPECT_EQ(buffer._flushes, 1);
        _default.print("two\nlines");
        EXPECT_EQ(buffer._flushes, 2);
    }
    EXPECT_EQ(buffer.str(), "one\ntwo\nlines\n");
}

TEST_F(TraceManagerTest, PrintsWhateverTheOptionsAre)
{
    set("off,hide=all");
    EXPECT_EQ(coutOf([&] { _default.print("text"); }), "text\n");
}

TEST_F(TraceManagerTest, TheCurrentManagerGetsAllLines)
{
    Recording manager(1);
    const std::string out = coutOf(
        [&]
        {
            ZU_TRACE_SCOPE(Main, "scope");
            ZU_TRACE(Main, "text");
            const Zu::ExInternalError exception("file.cpp", 7, "why");
            manager._trace.printException(exception, "file.cpp", 7);
        });
    EXPECT_EQ(out, "");
    EXPECT_EQ(manager._lines,
              (Texts{"+ scope", "  | text",
                     "  | Throwing exception [Exception Type = Zu::ExInternalError, File = "
                     "file.cpp, Line=7]\nwhy",
                     "  /"}));
}

TEST_F(TraceManagerTest, NothingIsAskedOfAManagerForALevelThatIsOff)
{
    Recording manager(1);
    set("hide=Main");
    ZU_TRACE(Main, "text");
    EXPECT_EQ(manager._asked, 0);
    EXPECT_TRUE(manager._lines.empty());
}

TEST_F(TraceManagerTest, AManagerThatIsNotCurrentGetsNoLine)
{
    const Recording current(2);
    const Recording leftOut(1);
    ZU_TRACE(Main, "text");
    EXPECT_EQ(current._lines, (Texts{"| text"}));
    EXPECT_TRUE(leftOut._lines.empty());
}

TEST_F(TraceManagerTest, AManagersTraceHasItsOwnIndentation)
{
    const std::string out = coutOf(
        []
        {
            ZU_TRACE_SCOPE(Main, "of the default");
            {
                const Recording manager(1);
                ZU_TRACE(Main, "of another");
                EXPECT_EQ(manager._lines, (Texts{"| of another"}));
            }
            ZU_TRACE(Main, "of the default again");
        });
    EXPECT_EQ(out, "+ of the default\n  | of the default again\n  /\n");
}

// Two threads, one after the other, the second within a scope of the first.
std::string linesOfTwoThreads()
{
    return coutOf(
        []
        {
            ZU_TRACE_SCOPE(Main, "first");
            std::thread([] { ZU_TRACE_SCOPE(Main, "second"); }).join();
        });
}

TEST_F(TraceManagerTest, ByDefaultThreadsShareTheIndentation)
{
    EXPECT_EQ(linesOfTwoThreads(), "+ first\n  + second\n  | /\n  /\n");
}

TEST_F(TraceManagerTest, AManagerMayGiveEachThreadATreeOfItsOwn)
{
    const PerThread manager;
    EXPECT_EQ(linesOfTwoThreads(), "+ first\n+ second\n  /\n  /\n");
}

TEST(TraceManager, TheFirstManagerIsCurrentWhateverItsPriority)
{
    EXPECT_EQ(support::traceOutputOf({"manager", "-1", "trace", "text"}),
              "main\nmanager -1: | text\nend of main\n");
    EXPECT_EQ(support::traceOutputOf({"manager", "-1", "manager", "0", "trace", "text"}),
              "main\nmanager 0: | text\nend of main\n");
}

TEST(TraceManager, AManagerReplacesTheDefaultThatHasAlreadyTraced)
{
    EXPECT_EQ(support::traceOutputOf({"trace", "one", "manager", "1", "trace", "two"}),
              "main\n| one\nmanager 1: | two\nend of main\n");
    // The default has priority 0.
    EXPECT_EQ(support::traceOutputOf({"trace", "one", "manager", "0", "trace", "two"}),
              "main\n| one\n| two\nend of main\n");
}

} // namespace
