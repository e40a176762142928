#include "app/lgServiceLimits.h"

#include "app/lgLimit.h"
#include "base/lgLog.h"
#include "base/lgQueue.h"
#include "support/runningLogger.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <list>
#include <string>
#include <vector>

namespace
{

using Zu::LgLimit;

Zu::LgQueue* theQueue = nullptr;

class LgServiceLimits : public testing::Test
{
protected:
    LgServiceLimits()
    {
        theQueue = &_queue;
        // What other tests have left.
        LgLimit::visitAll([](LgLimit& limit) { limit.takeLeftOut(); });
        Zu::LgLog::setQueueFunction([] { return theQueue; });
        Zu::LgLog::setLoggerActivation(true);
    }

    ~LgServiceLimits() override
    {
        Zu::LgLog::setLoggerActivation(false);
        taken();
    }

    static void leaveOut(LgLimit& limit, int times, Zu::LgTypes::Level level)
    {
        for (int i = 0; i <= times; ++i) limit.letsThroughIn(1, level);
    }

    // Loses one event.
    void fill()
    {
        while (_queue.reserveEntry(Zu::LgTypes::Warning))
        {
            _queue.getStream() << "x" << Zu::ends;
            _queue.addEntry();
        }
    }

    // Empty for an entry of losses.
    static std::string takeOne()
    {
        std::string text;
        const Zu::LgQueue::Entry& entry = theQueue->readEntry();
        if (!entry.isOverflowEntry())
        {
            std::vector<char> characters(Zu::LgStream::BufSize);
            theQueue->getStream() >> characters.data();
            text = Zu::LgTypes::levelToString(entry.getLevel()) + std::string(": ") +
                   characters.data();
        }
        theQueue->removeEntry();
        return text;
    }

    std::vector<std::string> taken()
    {
        std::vector<std::string> texts;
        while (!_queue.isEmpty())
            if (const std::string text = takeOne(); !text.empty()) texts.push_back(text);
        return texts;
    }

    support::RunningLogger _logger;
    Zu::LgQueue _queue;
};

TEST_F(LgServiceLimits, EachStatementThatOwesACountHasOneEvent)
{
    static LgLimit first(LgLimit::Kind::PerSecond, 1, "src\\shop/first.cpp", 3, "First");
    static LgLimit second(LgLimit::Kind::PerSecond, 1, "second.cpp", 4, "Second");
    static LgLimit third(LgLimit::Kind::PerSecond, 1, "C:\\third.cpp", 5, "Third");
    leaveOut(first, 2, Zu::LgTypes::Warning);
    leaveOut(second, 0, Zu::LgTypes::Warning);
    leaveOut(third, 1, Zu::LgTypes::Profiling);
    EXPECT_EQ(Zu::lgReportLimits(), 0U);
    EXPECT_EQ(taken(), (std::vector<std::string>{"Profiling: Third (1 left out, third.cpp:5)",
                                                 "Warning: First (2 left out, first.cpp:3)"}));
    EXPECT_EQ(Zu::lgReportLimits(), 0U);
    EXPECT_TRUE(taken().empty()) << "it is reported once";
}

TEST_F(LgServiceLimits, WithoutRoomTheCountStays)
{
    static LgLimit limit(LgLimit::Kind::PerSecond, 1, "room.cpp", 3, "Room");
    leaveOut(limit, 2, Zu::LgTypes::Warning);
    fill();
    const std::uint64_t lost = _queue.getLostCount();
    EXPECT_EQ(Zu::lgReportLimits(), 1U);
    EXPECT_EQ(limit.getOwedCount(), 2U);
    EXPECT_EQ(_queue.getLostCount(), lost) << "a report that waits is not lost";
}

TEST_F(LgServiceLimits, WithinAnInsertionTheCountStays)
{
    static LgLimit limit(LgLimit::Kind::PerSecond, 1, "inside.cpp", 3, "Inside");
    leaveOut(limit, 2, Zu::LgTypes::Warning);
    ASSERT_TRUE(_queue.reserveEntry(Zu::LgTypes::Warning));
    _queue.beginInsertion();
    EXPECT_EQ(Zu::lgReportLimits(), 1U);
    EXPECT_EQ(limit.getOwedCount(), 2U);
    EXPECT_EQ(_queue.getLostCount(), 0U) << "a report that waits is not lost";
    _queue.cancelInsertion();
    EXPECT_EQ(Zu::lgReportLimits(), 0U);
}

TEST_F(LgServiceLimits, MoreThanAQueueTakesAreReportedInTurns)
{
    constexpr int COUNT = 40;
    static std::list<LgLimit> limits;
    for (int i = 0; i < COUNT; ++i)
        leaveOut(limits.emplace_back(LgLimit::Kind::PerSecond, 1, "turn.cpp", i, "Turn"), 1,
                 Zu::LgTypes::Warning);
    // Room for three at a time.
    fill();
    static std::vector<std::string> texts;
    const auto drain = []
    {
        for (int i = 0; i < 3; ++i) texts.push_back(takeOne());
    };
    EXPECT_TRUE(Zu::lgReportAllLimits(drain));
    while (!_queue.isEmpty()) texts.push_back(takeOne());
    EXPECT_EQ(std::count_if(texts.begin(), texts.end(),
                            [](const std::string& text)
                            { return text.rfind("Warning: Turn (1 left out", 0) == 0; }),
              COUNT);
    EXPECT_EQ(_queue.getLostCount(), 1U) << "that of fill()";
}

TEST_F(LgServiceLimits, ADrainThatMakesNoRoomIsTheLastOne)
{
    static LgLimit limit(LgLimit::Kind::PerSecond, 1, "stuck.cpp", 3, "Stuck");
    leaveOut(limit, 2, Zu::LgTypes::Warning);
    fill();
    static int drains = 0;
    EXPECT_FALSE(Zu::lgReportAllLimits([] { ++drains; }));
    EXPECT_EQ(drains, 1);
    EXPECT_EQ(limit.getOwedCount(), 2U);
}

TEST_F(LgServiceLimits, NothingIsReportedWithoutALogger)
{
    static LgLimit limit(LgLimit::Kind::PerSecond, 1, "inactive.cpp", 3, "Inactive");
    leaveOut(limit, 2, Zu::LgTypes::Warning);
    Zu::LgLog::setLoggerActivation(false);
    EXPECT_EQ(Zu::lgReportLimits(), 0U);
    EXPECT_EQ(limit.getOwedCount(), 2U);
}

TEST_F(LgServiceLimits, TheHealthHasTheirSums)
{
    Zu::LgServiceHealth before;
    Zu::lgAddLimits(before);
    static LgLimit limit(LgLimit::Kind::PerSecond, 1, "dir/sums.cpp", 3, "Sums");
    static LgLimit other(LgLimit::Kind::EveryNth, 1, "other.cpp", 3, "Other");
    leaveOut(limit, 2, Zu::LgTypes::Error);
    leaveOut(other, 4, Zu::LgTypes::Error);
    Zu::LgServiceHealth health;
    Zu::lgAddLimits(health);
    EXPECT_EQ(health._perSecond._statements - before._perSecond._statements, 1U);
    EXPECT_EQ(health._perSecond._written - before._perSecond._written, 1U);
    EXPECT_EQ(health._perSecond._leftOut - before._perSecond._leftOut, 2U);
    EXPECT_EQ(health._everyNth._statements - before._everyNth._statements, 1U);
    EXPECT_EQ(health._everyNth._written - before._everyNth._written, 5U);
    EXPECT_EQ(health._everyNth._leftOut - before._everyNth._leftOut, 0U);
    ASSERT_EQ(health._limits.size(), before._limits.size() + 1) << "the other left out nothing";
    const Zu::LgServiceHealth::Limit& part = health._limits.front();
    EXPECT_EQ(part._file, "dir/sums.cpp");
    EXPECT_EQ(part._line, 3);
    EXPECT_EQ(part._group, "Sums");
    EXPECT_EQ(part._level, Zu::LgTypes::Error);
    EXPECT_TRUE(part._isPerSecond);
    EXPECT_EQ(part._number, 1U);
    EXPECT_EQ(part._written, 1U);
    EXPECT_EQ(part._leftOut, 2U);
    EXPECT_EQ(part._owed, 2U);
}

} // namespace
